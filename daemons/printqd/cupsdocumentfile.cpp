// Written, synced, renamed, and the folder synced.
#include "cupsdocumentfile.h"

#include <QtCore/QFileInfo>

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
    ::close(folder);
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
    if (m_file.isOpen())
        unlink(m_newName.constData());
}

bool CupsDocumentFile::open()
{
    unlink(m_newName.constData());
    const int file = ::open(m_newName.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW,
                            S_IRUSR | S_IWUSR);
    if (file < 0)
        return fail(systemReason());
    return m_file.open(file, QIODevice::WriteOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle)
        || fail(m_file.errorString());
}

bool CupsDocumentFile::write(const char *bytes, qint64 size)
{
    if (m_file.size() + size > m_largest)
        return fail(QStringLiteral("it has more than %1 bytes").arg(m_largest));
    return m_file.write(bytes, size) == size || fail(m_file.errorString());
}

bool CupsDocumentFile::keep()
{
    if (!m_reason.isEmpty())
        return false;
    const QByteArray to = QFile::encodeName(m_path);
    if (fsync(m_file.handle()) != 0 || std::rename(m_newName.constData(), to.constData()) != 0)
        return fail(systemReason());
    m_file.close();
    return syncFolderOf(m_path) == 0 || fail(systemReason());
}

bool CupsDocumentFile::fail(const QString &reason)
{
    m_reason = reason;
    return false;
}
