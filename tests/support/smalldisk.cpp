// Mounts, fills and remounts.
#include "smalldisk.h"

#include "filebytes.h"

#include <QtCore/QFile>

#include <sched.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

constexpr char options[] = "size=512k,mode=0700";

bool enterNamespace()
{
    const uid_t user = getuid();
    const gid_t group = getgid();
    if (user == 0)
        return unshare(CLONE_NEWNS) == 0;
    const QByteArray oneUser = "0 " + QByteArray::number(user) + " 1";
    const QByteArray oneGroup = "0 " + QByteArray::number(group) + " 1";
    return unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0
        && FileBytes::write(QStringLiteral("/proc/self/setgroups"), "deny")
        && FileBytes::write(QStringLiteral("/proc/self/uid_map"), oneUser)
        && FileBytes::write(QStringLiteral("/proc/self/gid_map"), oneGroup);
}

QString fillFile(const QString &folder)
{
    return folder + QStringLiteral("/fill");
}

} // namespace

namespace SmallDisk {

bool mountOn(const QByteArray &folder)
{
    return enterNamespace() && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
        && mount("tmpfs", folder.constData(), "tmpfs", 0, options) == 0;
}

bool fill(const QString &folder, int kilobytes)
{
    struct statvfs disk = {};
    if (statvfs(QFile::encodeName(folder).constData(), &disk) != 0)
        return false;
    const qint64 rest = qint64(disk.f_bfree) * qint64(disk.f_frsize) - qint64(kilobytes) * 1024;
    return rest >= 0 && FileBytes::write(fillFile(folder), QByteArray(int(rest), 'x'));
}

bool clear(const QString &folder)
{
    return QFile::remove(fillFile(folder));
}

bool makeReadOnly(const QByteArray &folder, bool isReadOnly)
{
    return mount("tmpfs", folder.constData(), "tmpfs", MS_REMOUNT | (isReadOnly ? MS_RDONLY : 0), options)
        == 0;
}

} // namespace SmallDisk
