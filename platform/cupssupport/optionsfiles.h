// Where lpoptions files are, as libcups finds them.
#pragma once

#include <QtCore/QByteArray>

/// "$HOME/.cups/lpoptions", where HOME is not set with the home folder that the system knows of the user.
/// Empty when the user has none.
QByteArray userOptionsFile();
/// "/etc/cups/lpoptions", or in the folder that CUPS_SERVERROOT names.
QByteArray systemOptionsFile();
