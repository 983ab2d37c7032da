// The folder lock, the step of the modification time, and the removal of an abandoned lock file.
#include "settingsfilelock.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QThread>

#include <fcntl.h>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A clock that was set back further than this has nothing to do with writes that follow one another closely;
// the file then simply gets the new time.
constexpr qint64 longestStep = 60 * 1000;

qint64 milliseconds(const timespec &time)
{
    return qint64(time.tv_sec) * 1000 + time.tv_nsec / 1000000;
}

/// What tells one state of a file from another.
struct FileState
{
    dev_t device;
    ino_t inode;
    off_t size;
    qint64 modified; // milliseconds
    timespec changed;
};

std::optional<FileState> stateOf(const QByteArray &fileName)
{
    struct stat file = {};
    if (stat(fileName.constData(), &file) != 0 || !S_ISREG(file.st_mode))
        return std::nullopt;
    return FileState{file.st_dev, file.st_ino, file.st_size, milliseconds(file.st_mtim), file.st_ctim};
}

bool isSame(const std::optional<FileState> &left, const std::optional<FileState> &right)
{
    return left && right && left->device == right->device && left->inode == right->inode
        && left->size == right->size && left->modified == right->modified
        && left->changed.tv_sec == right->changed.tv_sec && left->changed.tv_nsec == right->changed.tv_nsec;
}

/// How this process's last write left the file. As long as the file is in this state, nobody has replaced it
/// while QSettings read it, and its cached copy is right.
std::optional<FileState> &lastWritten()
{
    static std::optional<FileState> state;
    return state;
}

bool lockFolder(int folder)
{
    QElapsedTimer waited;
    waited.start();
    while (flock(folder, LOCK_EX | LOCK_NB) != 0) {
        if (waited.hasExpired(SettingsFileLock::patience))
            return false;
        QThread::usleep(500);
    }
    return true;
}

} // namespace

SettingsFileLock::SettingsFileLock(const QString &fileName)
    : m_fileName(QFile::encodeName(fileName))
{
    const QString folder = QFileInfo(fileName).absolutePath();
    m_folder = open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (m_folder < 0 && QDir().mkpath(folder))
        m_folder = open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (m_folder >= 0 && lockFolder(m_folder))
        removeAbandonedLockFile();

    const std::optional<FileState> before = stateOf(m_fileName);
    if (!before)
        return;
    m_timeBefore = before->modified;
    if (!isSame(before, lastWritten()))
        setModificationTime(++m_timeBefore);
}

SettingsFileLock::~SettingsFileLock()
{
    std::optional<FileState> after = stateOf(m_fileName);
    if (after && m_timeBefore >= 0 && after->modified <= m_timeBefore
        && m_timeBefore - after->modified < longestStep) {
        setModificationTime(m_timeBefore + 1);
        after = stateOf(m_fileName);
    }
    lastWritten() = after;
    if (m_folder >= 0)
        close(m_folder);
}

void SettingsFileLock::setModificationTime(qint64 milliseconds) const
{
    timespec times[] = {{0, UTIME_OMIT}, {}};
    times[1].tv_sec = time_t(milliseconds / 1000);
    times[1].tv_nsec = long(milliseconds % 1000) * 1000000;
    utimensat(AT_FDCWD, m_fileName.constData(), times, 0);
}

void SettingsFileLock::removeAbandonedLockFile() const
{
    const QByteArray lockFile = m_fileName + ".lock";
    struct stat seen = {};
    if (stat(lockFile.constData(), &seen) != 0 || seen.st_size != 0)
        return;

    // A living owner locks the file right after creating it and fills it right after that. Being able to lock
    // it twice, some time apart, while it stays empty means that nobody is there to fill it.
    const int file = open(lockFile.constData(), O_RDWR | O_CLOEXEC | O_NOFOLLOW);
    if (file < 0)
        return;
    bool abandoned = flock(file, LOCK_EX | LOCK_NB) == 0;
    if (abandoned) {
        flock(file, LOCK_UN);
        QThread::msleep(20);
        struct stat later = {};
        abandoned = flock(file, LOCK_EX | LOCK_NB) == 0 && stat(lockFile.constData(), &later) == 0
            && later.st_ino == seen.st_ino && later.st_size == 0;
    }
    if (abandoned)
        unlink(lockFile.constData());
    close(file);
}
