// Looks for room on the disk before a file is replaced.
#include "diskroom.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

// For what is written beside the file: the lock file, and the folder's own growth.
constexpr qint64 margin = 64 * 1024;

} // namespace

bool hasRoomFor(const QByteArray &fileName, qint64 growth)
{
    struct stat file = {};
    const qint64 size = growth + (stat(fileName.constData(), &file) == 0 ? file.st_size : 0);

    rlimit limit = {};
    if (getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY
        && rlim_t(size) > limit.rlim_cur)
        return false;

    const QByteArray folder = fileName.left(fileName.lastIndexOf('/') + 1);
    struct statvfs disk = {};
    if (statvfs(folder.constData(), &disk) != 0 || disk.f_blocks == 0)
        return true;
    const fsblkcnt_t blocks = geteuid() == 0 ? disk.f_bfree : disk.f_bavail;
    return double(blocks) * double(disk.f_frsize) >= double(size + margin);
}
