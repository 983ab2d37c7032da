// Takes the spool's lock without ever sleeping in the kernel for it.
#include "spoollock.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QThread>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>

namespace {

// Several times the time that another process needs for one event.
constexpr unsigned long microsecondsBetweenTries = 100;

int lockWithin(int file, int patience)
{
    const QDeadlineTimer deadline(patience, Qt::PreciseTimer);
    while (flock(file, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR)
            return errno;
        if (deadline.hasExpired())
            return EWOULDBLOCK;
        QThread::usleep(microsecondsBetweenTries);
    }
    return 0;
}

} // namespace

SpoolLock::SpoolLock(int folder, int patience)
    : m_file(openat(folder, "events.lock", O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600))
    , m_error(m_file.error() != 0 ? m_file.error() : lockWithin(m_file.get(), patience))
{
}
