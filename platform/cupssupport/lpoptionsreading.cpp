// Reading, and reading again.
#include "lpoptionsreading.h"

#include "filedescriptor.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QThread>

#include <cerrno>
#include <ctime>
#include <fcntl.h>

namespace {

constexpr int longestWritingMilliseconds = 100;
constexpr unsigned long millisecondsBetweenTries = 5;
// A file of a hundred queues has a tenth of it. What is larger is none of lpoptions'.
constexpr off_t largestFile = 1024 * 1024;

/// Reads what is there of \a file up to \a size bytes and one more; false on an error.
bool readBytes(int file, off_t size, QByteArray &bytes)
{
    bytes.resize(int(size) + 1);
    int filled = 0;
    while (filled < bytes.size()) {
        const ssize_t count = ::read(file, bytes.data() + filled, size_t(bytes.size() - filled));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return false;
        if (count == 0)
            break;
        filled += int(count);
    }
    bytes.truncate(filled);
    return true;
}

LpOptionsReading failed(const FileState &state, const QString &reason)
{
    return {QByteArray(), state, reason};
}

/// One reading; \a isWhole is whether the file stayed as it was and ends as it should.
LpOptionsReading readOnce(const QByteArray &path, bool &isWhole)
{
    isWhole = true;
    const FileDescriptor file(::open(path.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen()) {
        const int error = errno;
        return error == ENOENT ? LpOptionsReading()
                               : failed(FileState::of(path.constData()), qt_error_string(error));
    }

    struct stat before = {};
    struct stat after = {};
    QByteArray text;
    if (::fstat(file.number(), &before) != 0)
        return failed(FileState(), qt_error_string(errno));
    if (!S_ISREG(before.st_mode))
        return failed(FileState(before), QStringLiteral("not a file"));
    if (before.st_size > largestFile)
        return failed(FileState(before), QStringLiteral("too large"));
    if (!readBytes(file.number(), before.st_size, text) || ::fstat(file.number(), &after) != 0)
        return failed(FileState(before), qt_error_string(errno));
    // A file that was replaced meanwhile is whole, and is seen to be old the next time.
    isWhole = text.size() == before.st_size && before.st_size == after.st_size
        && before.st_mtim.tv_sec == after.st_mtim.tv_sec && before.st_mtim.tv_nsec == after.st_mtim.tv_nsec
        && text.endsWith('\n');
    return {text, FileState(before), QString()};
}

/// Whether the file was written so long ago that its writer has ended.
bool isLeftAlone(const FileState &state)
{
    timespec now = {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const timespec modified = state.modified();
    const qint64 milliseconds =
        qint64(now.tv_sec - modified.tv_sec) * 1000 + (now.tv_nsec - modified.tv_nsec) / 1000000;
    return milliseconds > longestWritingMilliseconds;
}

} // namespace

LpOptionsReading readLpOptions(const QByteArray &path)
{
    QElapsedTimer waited;
    waited.start();
    for (;;) {
        bool isWhole = true;
        LpOptionsReading reading = readOnce(path, isWhole);
        if (isWhole || isLeftAlone(reading.state) || waited.hasExpired(longestWritingMilliseconds))
            return reading;
        QThread::msleep(millisecondsBetweenTries);
    }
}
