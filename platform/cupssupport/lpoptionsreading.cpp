// Reading, and reading again.
#include "lpoptionsreading.h"

#include "age.h"
#include "filedescriptor.h"
#include "wholefile.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QThread>

#include <cerrno>
#include <fcntl.h>

namespace {

constexpr int longestWritingMilliseconds = 100;
constexpr unsigned long millisecondsBetweenTries = 5;
// A file of a hundred queues has a tenth of it. What is larger is none of lpoptions'.
constexpr off_t largestFile = 1 << 20;

/// Only what the file itself is stays so until the file changes. Anything else, such as too many open files,
/// may be over the next time.
LpOptionsReading failed(const FileState &state, int error)
{
    LpOptionsReading result;
    result.state = state;
    result.isSettled = (error == EINVAL || error == EFBIG) && state.isSettledAt(presentTime());
    result.failure = error == EINVAL ? QStringLiteral("not a file")
        : error == EFBIG             ? QStringLiteral("too large")
                                     : qt_error_string(error);
    return result;
}

/// One reading; \a isUnchanged is whether the file stayed as it was.
LpOptionsReading readOnce(const QByteArray &path, bool *isUnchanged)
{
    *isUnchanged = true;
    const timespec begin = presentTime();
    const FileDescriptor file(::open(path.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (file.error() == ENOENT)
        return {};
    if (file.error() != 0)
        return failed(FileState::of(path.constData()), file.error());

    struct stat before = {};
    struct stat after = {};
    if (const int error = statusOfFile(file.get(), largestFile, &before))
        return failed(FileState(before), error);
    const FileState state(before);
    LpOptionsReading result{QByteArray(), state, state.isSettledAt(begin), QString()};
    int error = readBytes(file.get(), before.st_size, &result.text);
    if (error == 0)
        error = ::fstat(file.get(), &after) != 0 ? errno : 0;
    if (error != 0)
        return failed(state, error);
    // A file that was replaced meanwhile is whole, and is seen to be old the next time.
    *isUnchanged = result.text.size() == before.st_size && before.st_size == after.st_size
        && isSameTime(before.st_mtim, after.st_mtim);
    return result;
}

/// Whether \a reading is all that its file is going to be.
bool isWhole(const LpOptionsReading &reading, const QByteArray &known)
{
    const bool isKnown = !known.isNull() && reading.text == known;
    return !reading.failure.isEmpty() || !reading.state.isThere() || reading.text.endsWith('\n') || isKnown
        || millisecondsFrom(reading.state.modified(), presentTime()) > longestWritingMilliseconds;
}

} // namespace

LpOptionsReading readLpOptions(const QByteArray &path, const QByteArray &known)
{
    QElapsedTimer waited;
    waited.start();
    for (;;) {
        bool isUnchanged = true;
        LpOptionsReading reading = readOnce(path, &isUnchanged);
        if ((isUnchanged && isWhole(reading, known)) || waited.hasExpired(longestWritingMilliseconds))
            return reading;
        QThread::msleep(millisecondsBetweenTries);
    }
}
