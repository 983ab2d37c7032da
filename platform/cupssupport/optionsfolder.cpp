// Lock, new file, sync, rename, sync.
#include "optionsfolder.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QThread>

#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <sys/file.h>

namespace {

constexpr unsigned long microsecondsBetweenTries = 200;
constexpr mode_t usualMode = 0644;
constexpr long nanosecondsPerSecond = 1000000000;

bool syncFolder(int folder)
{
    // Some file systems cannot do it for folders, and keep the names without.
    return ::fsync(folder) == 0 || errno == EINVAL;
}

int openExistingFolder(const QByteArray &path)
{
    return ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

/// Opens the folder, made where it is missing; the name of a new one is on the disk as well.
int openFolder(const QByteArray &path)
{
    const int folder = openExistingFolder(path);
    if (folder >= 0 || errno != ENOENT || (::mkdir(path.constData(), 0700) != 0 && errno != EEXIST))
        return folder;
    const FileDescriptor parent(openExistingFolder(path + "/.."));
    if (parent.isOpen() && !syncFolder(parent.number()))
        return -1;
    return openExistingFolder(path);
}

/// 0, EWOULDBLOCK when another process kept the lock for too long, or another errno value.
int lockWithin(int folder, int patience)
{
    const QDeadlineTimer deadline(patience, Qt::PreciseTimer);
    while (::flock(folder, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR)
            return errno;
        if (deadline.hasExpired())
            return EWOULDBLOCK;
        QThread::usleep(microsecondsBetweenTries);
    }
    return 0;
}

bool writeBytes(int file, const QByteArray &content)
{
    int written = 0;
    while (written < content.size()) {
        const ssize_t count = ::write(file, content.constData() + written, size_t(content.size() - written));
        if (count < 0 && errno != EINTR)
            return false;
        written += count > 0 ? int(count) : 0;
    }
    return true;
}

bool isLater(const timespec &left, const timespec &right)
{
    return left.tv_sec != right.tv_sec ? left.tv_sec > right.tv_sec : left.tv_nsec > right.tv_nsec;
}

/// A clock's tick may be longer than a write takes and inodes are used again, so that a second file after
/// \a old might look like it. It gets a later time.
bool moveTimeOn(int file, const struct stat &old)
{
    timespec time = {};
    ::clock_gettime(CLOCK_REALTIME, &time);
    if (!isLater(time, old.st_mtim)) {
        time = old.st_mtim;
        if (++time.tv_nsec == nanosecondsPerSecond) {
            ++time.tv_sec;
            time.tv_nsec = 0;
        }
    }
    const timespec times[] = {{0, UTIME_OMIT}, time};
    return ::futimens(file, times) == 0;
}

/// Gives the new file what else belongs to \a old. That it stays another user's is not ours to see to where
/// the system does not let us.
bool takeOver(int file, const struct stat &old)
{
    struct stat present = {};
    if (::fstat(file, &present) != 0)
        return false;
    if (present.st_uid != old.st_uid || present.st_gid != old.st_gid) {
        if (::fchown(file, old.st_uid, old.st_gid) != 0 && errno != EPERM)
            return false;
    }
    if ((present.st_mode & 07777) != (old.st_mode & 0777) && ::fchmod(file, old.st_mode & 0777) != 0)
        return false;
    return moveTimeOn(file, old);
}

} // namespace

OptionsFolder::OptionsFolder(const QByteArray &path, int patience)
    : m_folder(openFolder(path))
{
    if (!m_folder.isOpen()) {
        m_failure = qt_error_string(errno);
        return;
    }
    const int error = lockWithin(m_folder.number(), patience);
    m_isHeldByOther = error == EWOULDBLOCK;
    if (error != 0)
        m_failure = m_isHeldByOther ? QStringLiteral("another process holds it") : qt_error_string(error);
}

QString OptionsFolder::replace(const QByteArray &name, const QByteArray &content) const
{
    const QByteArray newName = name + ".new";
    const QString failure = writeNewFile(name, newName, content);
    if (!failure.isEmpty()) {
        ::unlinkat(m_folder.number(), newName.constData(), 0);
        return failure;
    }
    return syncFolder(m_folder.number()) ? QString() : qt_error_string(errno);
}

QString OptionsFolder::writeNewFile(const QByteArray &name, const QByteArray &newName,
                                    const QByteArray &content) const
{
    const int folder = m_folder.number();
    // Left behind by a process that was killed: nobody else writes it without the lock.
    ::unlinkat(folder, newName.constData(), 0);
    const FileDescriptor file(::openat(folder, newName.constData(),
                                       O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, usualMode));
    struct stat old = {};
    const bool isThere = ::fstatat(folder, name.constData(), &old, AT_SYMLINK_NOFOLLOW) == 0;
    if (!file.isOpen() || !writeBytes(file.number(), content) || (isThere && !takeOver(file.number(), old))
        || ::fsync(file.number()) != 0
        || ::renameat(folder, newName.constData(), folder, name.constData()) != 0)
        return qt_error_string(errno);
    return {};
}
