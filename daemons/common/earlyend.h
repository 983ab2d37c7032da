// The end of a program that does not come to run: help, or a wrong command line.
#pragma once

#include <QtCore/QString>

/// What to print instead of running, and the exit status after that.
struct EarlyEnd
{
    QString text;
    int exitStatus;
};

/// Prints the text, to the standard output only where nothing is wrong, and returns the exit status.
int printAndEnd(const EarlyEnd &end);
