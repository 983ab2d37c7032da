// Prints and ends.
#include "earlyend.h"

#include <QtCore/QDebug>

#include <cstdio>
#include <cstdlib>

int printAndEnd(const EarlyEnd &end)
{
    if (end.exitStatus == EXIT_SUCCESS)
        std::puts(qUtf8Printable(end.text));
    else
        qCritical().noquote() << end.text;
    return end.exitStatus;
}
