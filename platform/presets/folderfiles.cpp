// Lock, new file, fsync, rename. No symbolic link in the place of a file is followed, no device is waited
// for.
#include "folderfiles.h"

#include "presetfilename.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QFile>
#include <QtCore/QThread>

#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Short, so that a process that saves again and again does not keep the others out.
constexpr unsigned long microsecondsBetweenTries = 100;

class OpenFile
{
public:
    explicit OpenFile(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    ~OpenFile()
    {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    int get() const { return m_descriptor; }

private:
    Q_DISABLE_COPY(OpenFile)
    int m_descriptor;
};

int errorOf(int result)
{
    return result < 0 ? errno : 0;
}

// False with errno telling why.
bool makeFolder(const QByteArray &path)
{
    if (mkdir(path.constData(), 0700) == 0 || errno == EEXIST)
        return true;
    const int slash = path.lastIndexOf('/');
    if (errno != ENOENT || slash <= 0 || !makeFolder(path.left(slash)))
        return false;
    return mkdir(path.constData(), 0700) == 0 || errno == EEXIST;
}

int openFolder(const QByteArray &path)
{
    return open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

int lockWithin(int folder, int patience)
{
    const QDeadlineTimer deadline(patience, Qt::PreciseTimer);
    while (flock(folder, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR)
            return errno;
        if (deadline.hasExpired())
            return EWOULDBLOCK;
        QThread::usleep(microsecondsBetweenTries);
    }
    return 0;
}

int readAll(int file, QByteArray *content)
{
    struct stat status = {};
    if (fstat(file, &status) != 0)
        return errno;
    if (!S_ISREG(status.st_mode))
        return EINVAL;
    if (status.st_size > FolderFiles::largestFile)
        return EFBIG;
    // One byte more than the size, so that the end is seen without a second buffer.
    *content = QByteArray(int(status.st_size) + 1, Qt::Uninitialized);
    int done = 0;
    while (done < content->size()) {
        const ssize_t count = ::read(file, content->data() + done, size_t(content->size() - done));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return errno;
        if (count == 0)
            break;
        done += int(count);
    }
    content->truncate(done);
    return 0;
}

int writeAll(int file, const QByteArray &content)
{
    int done = 0;
    while (done < content.size()) {
        const ssize_t count = write(file, content.constData() + done, size_t(content.size() - done));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return count < 0 ? errno : ENOSPC;
        done += int(count);
    }
    return errorOf(fsync(file));
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

FolderFiles::FolderFiles(const QString &path, Opening opening)
{
    const QByteArray encoded = QFile::encodeName(path);
    m_folder = openFolder(encoded);
    if (m_folder < 0 && errno == ENOENT && opening == Opening::MadeAndLocked && makeFolder(encoded))
        m_folder = openFolder(encoded);
    m_error = errorOf(m_folder);
    if (m_error == 0 && opening != Opening::Existing)
        m_error = lockWithin(m_folder, patience);
}

FolderFiles::~FolderFiles()
{
    if (m_folder >= 0)
        close(m_folder);
}

int FolderFiles::list(QStringList *names) const
{
    names->clear();
    // A descriptor of its own, since reading moves its position.
    const std::unique_ptr<DIR, int (*)(DIR *)> entries(
        fdopendir(openat(m_folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)), closedir);
    if (!entries)
        return errno;
    errno = 0;
    while (const dirent *entry = readdir(entries.get())) {
        const QString name = QString::fromUtf8(entry->d_name);
        if (name.toUtf8() == entry->d_name && !isFolder(m_folder, *entry))
            names->append(name);
        errno = 0;
    }
    names->sort();
    return errno;
}

int FolderFiles::read(const QString &name, QByteArray *content) const
{
    const OpenFile file(
        openat(m_folder, name.toUtf8().constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    return file.get() < 0 ? errno : readAll(file.get(), content);
}

int FolderFiles::replace(const QString &name, const QByteArray &content)
{
    int error = prepare(content);
    if (error != 0)
        return error;
    error = errorOf(
        renameat(m_folder, unfinishedFileName().toUtf8().constData(), m_folder, name.toUtf8().constData()));
    if (error != 0)
        unlinkat(m_folder, unfinishedFileName().toUtf8().constData(), 0);
    m_hasChanged = m_hasChanged || error == 0;
    return error;
}

// A fixed name, used under the lock only: a process that is killed leaves one such file at most.
int FolderFiles::prepare(const QByteArray &content)
{
    if (content.size() > largestFile)
        return EFBIG;
    const QByteArray name = unfinishedFileName().toUtf8();
    unlinkat(m_folder, name.constData(), 0);
    const OpenFile file(
        openat(m_folder, name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    const int error = file.get() < 0 ? errno : writeAll(file.get(), content);
    if (error != 0)
        unlinkat(m_folder, name.constData(), 0);
    return error;
}

int FolderFiles::rename(const QString &from, const QString &to)
{
    const int error = renameToFreeName(m_folder, from.toUtf8(), to.toUtf8());
    m_hasChanged = m_hasChanged || error == 0;
    return error;
}

int FolderFiles::remove(const QString &name)
{
    const int error = errorOf(unlinkat(m_folder, name.toUtf8().constData(), 0));
    m_hasChanged = m_hasChanged || error == 0;
    return error == ENOENT ? 0 : error;
}

int FolderFiles::sync() const
{
    return errorOf(fsync(m_folder));
}
