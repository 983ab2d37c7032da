// The options of the program.
#pragma once

#include "earlyend.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <variant>

struct Options
{
    QString stateDirectory;
    QString printer; ///< URI of the scheduler's queue
    bool isVirtualDevice = false;
    bool hasScheduler = true;
    int historyLimit = 0;
    int jobs = 0; ///< so many believable ones are there at the start, at least
};

/**
 * Reads the command line. \a arguments start with the name of the program. \a stateDirectoryOfUnit is the
 * value of the environment variable STATE_DIRECTORY, by which systemd names the folder that it has made for
 * the service.
 */
std::variant<Options, EarlyEnd> readCommandLine(const QStringList &arguments,
                                                const QString &stateDirectoryOfUnit);
