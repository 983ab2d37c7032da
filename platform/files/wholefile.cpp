// Reads and writes until all is done.
#include "wholefile.h"

#include <cerrno>
#include <unistd.h>

int statusOfFile(int file, off_t largest, struct stat *status)
{
    if (::fstat(file, status) != 0)
        return errno;
    if (!S_ISREG(status->st_mode))
        return EINVAL;
    return status->st_size > largest ? EFBIG : 0;
}

int readBytes(int file, off_t size, QByteArray *content)
{
    *content = QByteArray(int(size), Qt::Uninitialized);
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

int writeBytes(int file, const QByteArray &content)
{
    int done = 0;
    while (done < content.size()) {
        const ssize_t count = ::write(file, content.constData() + done, size_t(content.size() - done));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return count < 0 ? errno : ENOSPC;
        done += int(count);
    }
    return 0;
}
