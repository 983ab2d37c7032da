// Takes a number where there are others, and waits for its turn without ever sleeping in the kernel for it.
#include "folderlock.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QThread>

#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <sys/file.h>

namespace {

// Less than a write takes.
constexpr unsigned long microsecondsBetweenTries = 100;

struct flock bytes(short type, off_t begin, off_t count)
{
    struct flock result = {};
    result.l_type = type;
    result.l_whence = SEEK_SET;
    result.l_start = begin;
    result.l_len = count;
    return result;
}

/// A number of another process from \a begin on, among \a count ones, or all when that is 0.
std::optional<off_t> numberOfOther(int folder, off_t begin, off_t count)
{
    struct flock found = bytes(F_WRLCK, begin, count);
    if (::fcntl(folder, F_OFD_GETLK, &found) != 0 || found.l_type == F_UNLCK)
        return std::nullopt;
    return found.l_start;
}

/// The place of one process among those that wait, until it ends.
class Place
{
public:
    explicit Place(int folder)
        : m_folder(folder)
    {
        while (const std::optional<off_t> other = numberOfOther(folder, m_number, 0))
            m_number = *other + 1;
        struct flock own = bytes(F_RDLCK, m_number, 1);
        ::fcntl(folder, F_OFD_SETLK, &own);
    }
    ~Place()
    {
        struct flock own = bytes(F_UNLCK, m_number, 1);
        ::fcntl(m_folder, F_OFD_SETLK, &own);
    }
    Place(const Place &) = delete;
    Place &operator=(const Place &) = delete;

    bool isFirst() const { return m_number == 0 || !numberOfOther(m_folder, 0, m_number); }

private:
    const int m_folder;
    off_t m_number = 0;
};

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
    if (!numberOfOther(folder, 0, 0)) {
        const int error = tryFor(folder);
        if (error != EWOULDBLOCK)
            return error;
    }
    const QDeadlineTimer deadline(patience, Qt::PreciseTimer);
    const Place place(folder);
    for (;;) {
        if (place.isFirst() || deadline.remainingTime() < patience / 2) {
            const int error = tryFor(folder);
            if (error != EWOULDBLOCK)
                return error;
        }
        if (deadline.hasExpired())
            return EWOULDBLOCK;
        QThread::usleep(microsecondsBetweenTries);
    }
}

QString FolderLock::reasonOf(int error)
{
    return error == EWOULDBLOCK ? QStringLiteral("another process holds it") : qt_error_string(error);
}

void LockPatience::noteOutcome(int error)
{
    m_wasInVain = error == EWOULDBLOCK;
}
