// The options of the program.
#pragma once

#include "earlyend.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <variant>

struct Options
{
    QString stateDirectory;
    bool isVirtualDevice = false;
};

/**
 * Reads the command line. \a arguments start with the name of the program. \a stateDirectoryOfUnit is the
 * value of the environment variable STATE_DIRECTORY, by which systemd names the folder that it has made for
 * the service.
 */
std::variant<Options, EarlyEnd> readCommandLine(const QStringList &arguments,
                                                const QString &stateDirectoryOfUnit);
