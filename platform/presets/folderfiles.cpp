// Lock, new file, fsync, rename. No symbolic link in the place of a file is followed, no device is waited
// for.
#include "folderfiles.h"

#include "folderlock.h"
#include "folderopening.h"
#include "presetfilename.h"
#include "syncedfile.h"
#include "wholefile.h"

#include <QtCore/QFile>

#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t forTheUserAlone = 0600;

int errorOf(int result)
{
    return result < 0 ? errno : 0;
}

int renameToFreeName(int folder, const QByteArray &from, const QByteArray &to)
{
    if (renameat2(folder, from.constData(), folder, to.constData(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL)
        return errno;
    // A file system without this call. The lock keeps away all who know of it.
    struct stat status = {};
    if (fstatat(folder, to.constData(), &status, AT_SYMLINK_NOFOLLOW) == 0)
        return EEXIST;
    return errorOf(renameat(folder, from.constData(), folder, to.constData()));
}

// A file whose kind the file system does not tell may be one.
bool isFolder(int folder, const dirent &entry)
{
    struct stat status = {};
    return entry.d_type == DT_DIR
        || (entry.d_type == DT_UNKNOWN && fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0
            && S_ISDIR(status.st_mode));
}

} // namespace

FolderFiles::FolderFiles(const QString &path, Opening opening, int patience)
    : m_folder(
        openFolder(QFile::encodeName(path),
                   opening == Opening::MadeAndLocked ? MissingFolders::AllAreMade : MissingFolders::Fail))
    , m_error(m_folder.error())
{
    if (m_error != 0 || opening == Opening::Existing)
        return;
    m_error = FolderLock::take(m_folder.get(), patience);
    m_isLocked = m_error == 0;
}

FolderFiles::~FolderFiles()
{
    if (m_isLocked)
        FolderLock::release(m_folder.get());
}

int FolderFiles::list(QStringList *names) const
{
    names->clear();
    // A descriptor of its own, since reading moves its position.
    FileDescriptor own(openat(m_folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (own.error() != 0)
        return own.error();
    const std::unique_ptr<DIR, int (*)(DIR *)> entries(fdopendir(own.get()), closedir);
    if (!entries)
        return errno;
    own.release();
    errno = 0;
    while (const dirent *entry = readdir(entries.get())) {
        const QString name = QString::fromUtf8(entry->d_name);
        if (name.toUtf8() == entry->d_name && !isFolder(m_folder.get(), *entry))
            names->append(name);
        errno = 0;
    }
    const int error = errno;
    names->sort();
    return error;
}

int FolderFiles::read(const QString &name, QByteArray *content) const
{
    const FileDescriptor file(
        openat(m_folder.get(), name.toUtf8().constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (file.error() != 0)
        return file.error();
    struct stat status = {};
    const int error = statusOfFile(file.get(), largestFile, &status);
    return error != 0 ? error : readBytes(file.get(), status.st_size, content);
}

int FolderFiles::replace(const QString &name, const QByteArray &content)
{
    int error = prepare(content);
    if (error == 0)
        error = moveIntoPlace(m_folder.get(), unfinishedFileName().toUtf8(), name.toUtf8());
    m_hasChanged = m_hasChanged || error == 0;
    return error;
}

// A fixed name, used under the lock only: a process that is killed leaves one such file at most.
int FolderFiles::prepare(const QByteArray &content)
{
    if (content.size() > largestFile)
        return EFBIG;
    return writeSyncedFile(m_folder.get(), unfinishedFileName().toUtf8(), content, forTheUserAlone);
}

int FolderFiles::rename(const QString &from, const QString &to)
{
    const int error = renameToFreeName(m_folder.get(), from.toUtf8(), to.toUtf8());
    m_hasChanged = m_hasChanged || error == 0;
    return error;
}

int FolderFiles::remove(const QString &name)
{
    const int error = errorOf(unlinkat(m_folder.get(), name.toUtf8().constData(), 0));
    m_hasChanged = m_hasChanged || error == 0;
    return error == ENOENT ? 0 : error;
}

int FolderFiles::sync() const
{
    return syncFolder(m_folder.get());
}
