// Looks at the environment and at the system's list of users.
#include "optionsfiles.h"

#include <QtCore/QtGlobal>

#include <array>
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

namespace {

/// Null when there is none. HOME may be empty, which to libcups is a home folder like any other.
QByteArray homeFolder()
{
    if (const char *const home = std::getenv("HOME"))
        return QByteArray("").append(home);
    // A user's line has a few hundred bytes. A service that the system starts for root has no HOME.
    constexpr size_t roomForUser = 16384;
    std::array<char, roomForUser> room{};
    passwd user = {};
    passwd *found = nullptr;
    const int error = ::getpwuid_r(::getuid(), &user, room.data(), room.size(), &found);
    return error == 0 && found && found->pw_dir ? QByteArray("").append(found->pw_dir) : QByteArray();
}

} // namespace

QByteArray userOptionsFile()
{
    const QByteArray home = homeFolder();
    return home.isNull() ? QByteArray() : home + "/.cups/lpoptions";
}

QByteArray systemOptionsFile()
{
    const QByteArray folder = qgetenv("CUPS_SERVERROOT");
    return (folder.isEmpty() ? QByteArrayLiteral("/etc/cups") : folder) + "/lpoptions";
}
