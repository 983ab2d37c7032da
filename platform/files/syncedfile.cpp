// New file, fsync, rename, fsync of the folder.
#include "syncedfile.h"

#include "filedescriptor.h"
#include "wholefile.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

FileDescriptor openNewFile(int folder, const QByteArray &name, mode_t mode)
{
    return FileDescriptor(
        ::openat(folder, name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
}

FileDescriptor openOnlyFile(int folder, const QByteArray &name, mode_t mode)
{
    FileDescriptor file = openNewFile(folder, name, mode);
    if (file.error() != EEXIST || ::unlinkat(folder, name.constData(), 0) != 0)
        return file;
    return openNewFile(folder, name, mode);
}

int fill(int file, const QByteArray &content, const FileFinish &finish)
{
    int error = writeBytes(file, content);
    if (error == 0 && finish)
        error = finish(file);
    return error == 0 && ::fsync(file) != 0 ? errno : error;
}

} // namespace

int writeSyncedFile(int folder, const QByteArray &name, const QByteArray &content, mode_t mode,
                    const FileFinish &finish)
{
    const FileDescriptor file = openOnlyFile(folder, name, mode);
    if (file.error() != 0)
        return file.error();
    const int error = fill(file.get(), content, finish);
    if (error != 0)
        ::unlinkat(folder, name.constData(), 0);
    return error;
}

int moveIntoPlace(int folder, const QByteArray &from, const QByteArray &to)
{
    if (::renameat(folder, from.constData(), folder, to.constData()) == 0)
        return 0;
    const int error = errno;
    ::unlinkat(folder, from.constData(), 0);
    return error;
}

int syncFolder(int folder)
{
    // Some file systems cannot do it for folders, and keep the names without.
    return ::fsync(folder) == 0 || errno == EINVAL ? 0 : errno;
}
