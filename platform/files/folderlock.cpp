// Takes a number where there are others, and waits for its turn without ever sleeping in the kernel for it.
#include "folderlock.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QElapsedTimer>
#include <QtCore/QThread>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <optional>
#include <sys/file.h>

namespace {

// Less than a write takes.
constexpr unsigned long microsecondsBetweenTries = 100;
// Who is first and awake looks hundreds of times meanwhile.
constexpr qint64 longestIdleMilliseconds = 50;

struct flock bytes(short type, off_t begin, off_t count)
{
    struct flock result = {};
    result.l_type = type;
    result.l_whence = SEEK_SET;
    result.l_start = begin;
    result.l_len = count;
    return result;
}

/// What another process holds from \a begin on, of \a count bytes, or of all when that is 0.
std::optional<struct flock> lockOfOther(int folder, off_t begin, off_t count)
{
    struct flock found = bytes(F_WRLCK, begin, count);
    if (::fcntl(folder, F_OFD_GETLK, &found) != 0 || found.l_type == F_UNLCK)
        return std::nullopt;
    return found;
}

/// Whether \a lock is a number that another one can come after. Any program that may open the folder may lock
/// ranges of it, too, which may begin before the byte that was asked about.
bool isNumber(const struct flock &lock)
{
    return lock.l_len == 1 && lock.l_start < std::numeric_limits<off_t>::max();
}

/// The number after those of the others; none where there are no numbers, or no time.
std::optional<off_t> takeNumber(int folder, const QDeadlineTimer &deadline)
{
    off_t number = 0;
    while (const std::optional<struct flock> other = lockOfOther(folder, number, 0)) {
        if (!isNumber(*other) || deadline.hasExpired())
            return std::nullopt;
        number = other->l_start + 1;
    }
    struct flock own = bytes(F_RDLCK, number, 1);
    if (::fcntl(folder, F_OFD_SETLK, &own) != 0)
        return std::nullopt;
    return number;
}

/// The place of one process among those that wait, until it ends.
class Place
{
public:
    Place(int folder, const QDeadlineTimer &deadline)
        : m_folder(folder)
        , m_number(takeNumber(folder, deadline))
    {
    }
    ~Place()
    {
        if (!m_number)
            return;
        struct flock own = bytes(F_UNLCK, *m_number, 1);
        ::fcntl(m_folder, F_OFD_SETLK, &own);
    }
    Place(const Place &) = delete;
    Place &operator=(const Place &) = delete;

    /// Whether no number is before this one. Who has none waits in no order.
    bool isFirst() const { return m_number.value_or(0) == 0 || !lockOfOther(m_folder, 0, *m_number); }

private:
    const int m_folder;
    const std::optional<off_t> m_number;
};

/// Whether somebody has the lock. Looking is a shared lock for a moment, which those who look allow each
/// other; who tries for it in this moment tries again.
bool isTaken(int folder)
{
    if (::flock(folder, LOCK_SH | LOCK_NB) != 0)
        return errno == EWOULDBLOCK;
    ::flock(folder, LOCK_UN);
    return false;
}

/// 0, or EWOULDBLOCK when it is taken.
int tryFor(int folder)
{
    if (::flock(folder, LOCK_EX | LOCK_NB) == 0)
        return 0;
    return errno == EINTR ? EWOULDBLOCK : errno;
}

} // namespace

int FolderLock::take(int folder, int patience)
{
    const QDeadlineTimer deadline(patience, Qt::PreciseTimer);
    if (!lockOfOther(folder, 0, 0)) {
        const int error = tryFor(folder);
        if (error != EWOULDBLOCK)
            return error;
    }
    const Place place(folder, deadline);
    const qint64 longestIdle = std::min<qint64>(longestIdleMilliseconds, patience / 2);
    QElapsedTimer idle;
    idle.start();
    for (;;) {
        const bool isFirst = place.isFirst();
        if (!isFirst && isTaken(folder))
            idle.restart();
        if (isFirst || idle.elapsed() >= longestIdle) {
            const int error = tryFor(folder);
            if (error != EWOULDBLOCK)
                return error;
        }
        if (deadline.hasExpired())
            return EWOULDBLOCK;
        QThread::usleep(microsecondsBetweenTries);
    }
}

void FolderLock::release(int folder)
{
    ::flock(folder, LOCK_UN);
}

QString FolderLock::reasonOf(int error)
{
    return error == EWOULDBLOCK ? QStringLiteral("another process holds it") : qt_error_string(error);
}

void LockPatience::noteOutcome(int error)
{
    m_wasInVain = error == EWOULDBLOCK;
}
