// System calls on the spool's folder and files. Nothing here follows a symbolic link or waits for a device.
#include "spoolfiles.h"

#include "spooltrimming.h"
#include "wholefile.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr char spoolName[] = "events.jsonl";
// A fixed name, used under the lock only: a process that is killed while it replaces the spool leaves one
// such file, and the next one takes its place.
constexpr char replacementName[] = "events.new";
constexpr int neverElsewhere = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

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

FileDescriptor openFolder(const QByteArray &path)
{
    return FileDescriptor(open(path.constData(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

// 0 and the size, or why this is no file to write events to.
int sizeOfSpool(const FileDescriptor &file, qint64 *size)
{
    if (file.error() != 0)
        return file.error();
    struct stat status = {};
    if (fstat(file.get(), &status) != 0)
        return errno;
    if (!S_ISREG(status.st_mode))
        return EINVAL;
    *size = status.st_size;
    return 0;
}

int readAll(int file, qint64 from, QByteArray *text)
{
    int done = 0;
    while (done < text->size()) {
        const ssize_t count =
            pread(file, text->data() + done, size_t(text->size() - done), off_t(from + done));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return errno;
        if (count == 0)
            break;
        done += int(count);
    }
    text->truncate(done);
    return 0;
}

// A disk that is full in the middle of the line must not leave half of it behind.
int appendWhole(int file, const QByteArray &text, qint64 size)
{
    const int error = writeBytes(file, text);
    if (error != 0) {
        // When this fails as well, the next line still begins on a line of its own.
        [[maybe_unused]] const int undone = ftruncate(file, off_t(size));
    }
    return error;
}

bool endsInsideLine(int file, qint64 size)
{
    char last = '\n';
    return size > 0 && pread(file, &last, 1, off_t(size - 1)) == 1 && last != '\n';
}

// The end of the file, not more than limit bytes of it however large the file became by other hands. The
// first line may then be a piece of one, which goes with the older half.
int readNewest(int file, qint64 size, qint64 limit, QByteArray *lines)
{
    const qint64 count = qMin(size, limit);
    *lines = QByteArray(int(count), Qt::Uninitialized);
    return readAll(file, size - count, lines);
}

int replaceSpool(int folder, const QByteArray &text)
{
    unlinkat(folder, replacementName, 0);
    const FileDescriptor file(
        openat(folder, replacementName, O_WRONLY | O_CREAT | O_EXCL | neverElsewhere, 0600));
    int error = file.error() != 0 ? file.error() : writeBytes(file.get(), text);
    if (error == 0 && renameat(folder, replacementName, folder, spoolName) != 0)
        error = errno;
    if (error != 0)
        unlinkat(folder, replacementName, 0);
    return error;
}

} // namespace

FileDescriptor openSpoolFolder(const QByteArray &path)
{
    FileDescriptor folder = openFolder(path);
    if (folder.error() != ENOENT)
        return folder;
    return makeFolder(path) ? openFolder(path) : FileDescriptor(-1);
}

int addToSpool(int folder, const QByteArray &line, qint64 limit)
{
    const FileDescriptor file(openat(folder, spoolName, O_RDWR | O_APPEND | O_CREAT | neverElsewhere, 0600));
    qint64 size = 0;
    if (const int error = sizeOfSpool(file, &size))
        return error;
    const QByteArray text = endsInsideLine(file.get(), size) ? '\n' + line : line;
    if (size + text.size() <= limit)
        return appendWhole(file.get(), text, size);
    QByteArray newest;
    if (const int error = readNewest(file.get(), size, limit, &newest))
        return error;
    return replaceSpool(folder, trimmedToFit(newest, limit - line.size()) + line);
}
