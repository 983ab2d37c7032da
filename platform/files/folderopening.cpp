// Makes folders from the top down.
#include "folderopening.h"

#include "syncedfile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

FileDescriptor openExisting(const QByteArray &path)
{
    return FileDescriptor(::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

QByteArray withoutLastSlashes(QByteArray path)
{
    while (path.size() > 1 && path.endsWith('/'))
        path.chop(1);
    return path;
}

QByteArray parentOf(const QByteArray &path)
{
    const int slash = path.lastIndexOf('/');
    if (slash < 0)
        return QByteArrayLiteral(".");
    return slash == 0 ? QByteArrayLiteral("/") : withoutLastSlashes(path.left(slash));
}

int makeFolder(const QByteArray &path, MissingFolders missing)
{
    if (::mkdir(path.constData(), 0700) == 0) {
        const FileDescriptor parent = openExisting(parentOf(path));
        // A folder that may be written and not read cannot be synced.
        return parent.error() == 0 ? syncFolder(parent.get()) : 0;
    }
    if (errno == EEXIST)
        return 0;
    if (errno != ENOENT || missing != MissingFolders::AllAreMade || parentOf(path) == path)
        return errno;
    const int error = makeFolder(parentOf(path), missing);
    return error != 0 ? error : makeFolder(path, MissingFolders::LastIsMade);
}

} // namespace

FileDescriptor openFolder(const QByteArray &path, MissingFolders missing)
{
    FileDescriptor folder = openExisting(path);
    if (folder.error() != ENOENT || missing == MissingFolders::Fail)
        return folder;
    errno = makeFolder(withoutLastSlashes(path), missing);
    return errno == 0 ? openExisting(path) : FileDescriptor(-1);
}
