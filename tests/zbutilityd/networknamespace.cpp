// Namespaces; see user_namespaces(7).
#include "networknamespace.h"

#include <QtCore/QByteArray>

#include <cerrno>
#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

namespace {

bool write(const char *path, const QByteArray &text)
{
    const int file = ::open(path, O_WRONLY | O_CLOEXEC);
    if (file < 0)
        return false;
    const bool isWritten = ::write(file, text.constData(), static_cast<size_t>(text.size())) == text.size();
    ::close(file);
    return isWritten;
}

/// Makes the user root within a new user namespace.
bool enterUserNamespace(int flags)
{
    const QByteArray user = QByteArray::number(::geteuid());
    const QByteArray group = QByteArray::number(::getegid());
    return ::unshare(CLONE_NEWUSER | flags) == 0 && write("/proc/self/setgroups", "deny")
        && write("/proc/self/uid_map", "0 " + user + " 1")
        && write("/proc/self/gid_map", "0 " + group + " 1");
}

} // namespace

QString enterPrivateNetwork()
{
    if (::unshare(CLONE_NEWNET) == 0 || enterUserNamespace(CLONE_NEWNET))
        return {};
    return QStringLiteral("this machine allows no private network namespace: ") + qt_error_string(errno);
}
