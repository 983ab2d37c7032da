// Makes, locks and tidies the folder.
#include "statefolder.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSet>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

int openDirectory(const QString &path)
{
    return ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

QString reason(const QString &path)
{
    return QStringLiteral("%1: %2").arg(path, qt_error_string(errno));
}

} // namespace

StateFolder::StateFolder(const QString &path)
    : m_path(QDir(path).absolutePath())
{
}

QString StateFolder::open()
{
    if (!QDir().mkpath(m_path))
        return QStringLiteral("the folder %1 cannot be created").arg(m_path);
    FileDescriptor folder(openDirectory(m_path));
    if (folder.get() < 0)
        return reason(m_path);
    if (::flock(folder.get(), LOCK_EX | LOCK_NB) != 0) {
        return errno == EWOULDBLOCK
            ? QStringLiteral("the state directory %1 is in use by another process").arg(m_path)
            : reason(m_path);
    }
    m_lock.emplace(std::move(folder));
    const QString failure = makeFolder(m_path + QStringLiteral("/documents"), 0700);
    return failure.isEmpty() ? makeFolder(m_path + QStringLiteral("/pictures"), 0755) : failure;
}

/// The mode is set whatever the process masks, and where somebody has changed it.
QString StateFolder::makeFolder(const QString &path, unsigned int mode) const
{
    const QByteArray name = QFile::encodeName(path);
    const bool isThere = ::mkdir(name.constData(), mode) == 0 || errno == EEXIST;
    if (!isThere)
        return reason(path);
    const FileDescriptor folder(::open(name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    return folder.get() >= 0 && ::fchmod(folder.get(), mode) == 0 ? QString() : reason(path);
}

void StateFolder::sync() const
{
    ::fsync(m_lock->get());
    const FileDescriptor above(openDirectory(QFileInfo(m_path).absolutePath()));
    if (above.get() >= 0)
        ::fsync(above.get());
}

QString StateFolder::databasePath() const
{
    return m_path + QStringLiteral("/jobs.db");
}

QString StateFolder::suppliesPath() const
{
    return m_path + QStringLiteral("/supplies.json");
}

QString StateFolder::notificationSocketPath() const
{
    return m_path + QStringLiteral("/notifications.sock");
}

QString StateFolder::documentPath(const QString &name) const
{
    return m_path + QStringLiteral("/documents/") + name;
}

QString StateFolder::picturePath(const QString &guid) const
{
    return m_path + QStringLiteral("/pictures/%1.png").arg(guid);
}

void StateFolder::keepOnly(const QStringList &documents, const QStringList &picturePaths) const
{
    QSet<QString> wanted(picturePaths.cbegin(), picturePaths.cend());
    for (const QString &name : documents)
        wanted.insert(documentPath(name));
    for (const char *const folder : {"/documents", "/pictures"}) {
        const QDir directory(m_path + QLatin1String(folder));
        for (const QString &name : directory.entryList(QDir::Files | QDir::Hidden | QDir::System)) {
            const QString path = directory.filePath(name);
            if (!wanted.contains(path))
                QFile::remove(path);
        }
    }
}
