// Written, synced, renamed, and the folder synced.
#include "cupsdocumentfile.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QString systemReason()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

int syncFolderOf(const QString &path)
{
    const int folder =
        ::open(QFile::encodeName(QFileInfo(path).path()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return -1;
    const int outcome = fsync(folder);
    const int error = errno;
    ::close(folder);
    errno = error;
    return outcome;
}

} // namespace

CupsDocumentFile::CupsDocumentFile(const QString &path, qint64 largest)
    : m_path(path)
    , m_largest(largest)
    , m_newName(QFile::encodeName(path) + ".new")
{
}

CupsDocumentFile::~CupsDocumentFile()
{
    if (m_file < 0)
        return;
    close();
    unlink(m_newName.constData());
}

bool CupsDocumentFile::open()
{
    unlink(m_newName.constData());
    m_file = ::open(m_newName.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW,
                    S_IRUSR | S_IWUSR);
    return m_file >= 0 || failWithError();
}

bool CupsDocumentFile::write(const char *bytes, qint64 size)
{
    m_size += size;
    if (m_size > m_largest)
        return fail(QStringLiteral("it has more than %1 bytes").arg(m_largest));
    while (size > 0) {
        const ssize_t written = ::write(m_file, bytes, size_t(size));
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return failWithError();
        bytes += written;
        size -= written;
    }
    return true;
}

bool CupsDocumentFile::keep()
{
    if (!m_reason.isEmpty())
        return false;
    const QByteArray to = QFile::encodeName(m_path);
    if (fsync(m_file) != 0 || std::rename(m_newName.constData(), to.constData()) != 0)
        return failWithError();
    close();
    if (syncFolderOf(m_path) == 0)
        return true;
    failWithError();
    unlink(to.constData());
    return false;
}

void CupsDocumentFile::close()
{
    ::close(m_file);
    m_file = -1;
}

bool CupsDocumentFile::fail(const QString &reason)
{
    m_reason = reason;
    return false;
}

bool CupsDocumentFile::failWithError()
{
    constexpr int passingErrors[] = {ENOSPC, EDQUOT, EIO, ENOMEM, EMFILE, ENFILE};
    m_mayBeKeptLater = std::count(std::begin(passingErrors), std::end(passingErrors), errno) > 0;
    return fail(systemReason());
}
