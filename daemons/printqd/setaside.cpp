// Finds a name and renames.
#include "setaside.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <array>
#include <cerrno>
#include <cstdio>
#include <optional>
#include <sys/stat.h>

namespace {

// A device that damages the file at every power cut must not fill its disk with them.
constexpr int mostSetAside = 5;

const std::array<const char *, 2> folders{"documents", "pictures"};

QString folderBeside(const QString &path, const char *name)
{
    return QFileInfo(path).absolutePath() + QLatin1Char('/') + QLatin1String(name);
}

QString folderOf(const QString &place, const char *name)
{
    return place + QLatin1Char('.') + QLatin1String(name);
}

bool isThere(const QString &path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0;
}

bool isFolder(const QString &path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool isEmpty(const QString &folder)
{
    return QDir(folder).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
}

bool isFree(const QString &place)
{
    bool isTaken = isThere(place) || isThere(place + QStringLiteral("-wal"));
    for (const char *const name : folders)
        isTaken = isTaken || isThere(folderOf(place, name));
    return !isTaken;
}

std::optional<QString> freePlace(const QString &path)
{
    std::optional<QString> replaced;
    for (int number = 1; number <= mostSetAside; ++number) {
        const QString place = path + QStringLiteral(".damaged-%1").arg(number);
        if (isFree(place))
            return place;
        if (!isFolder(place))
            replaced = place;
    }
    return replaced;
}

void removeAllAt(const QString &place)
{
    QFile::remove(place);
    QFile::remove(place + QStringLiteral("-wal"));
    for (const char *const name : folders)
        QDir(folderOf(place, name)).removeRecursively();
}

QString renameOne(const QString &from, const QString &to)
{
    const bool isDone = ::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
    return isDone || errno == ENOENT ? QString() : QStringLiteral("%1: %2").arg(to, qt_error_string(errno));
}

QString renameFolder(const QString &from, const QString &to)
{
    struct stat status = {};
    const QByteArray name = QFile::encodeName(from);
    if (::stat(name.constData(), &status) != 0 || isEmpty(from))
        return {};
    const QString failure = renameOne(from, to);
    if (!failure.isEmpty())
        return failure;
    const bool isReplaced =
        ::mkdir(name.constData(), 0700) == 0 && ::chmod(name.constData(), status.st_mode & 0777) == 0;
    return isReplaced ? QString() : QStringLiteral("%1: %2").arg(from, qt_error_string(errno));
}

} // namespace

bool SetAside::hasFilesBeside(const QString &path)
{
    bool hasFiles = false;
    for (const char *const name : folders) {
        const QString folder = folderBeside(path, name);
        hasFiles = hasFiles || (isFolder(folder) && !isEmpty(folder));
    }
    return hasFiles;
}

QString SetAside::rename(const QString &path, QString *place)
{
    const std::optional<QString> free = freePlace(path);
    if (!free)
        return QStringLiteral("all names that it could get are those of folders");
    *place = *free;
    removeAllAt(*free);
    const QString log = QStringLiteral("-wal");
    // The database first: whatever is left beside it, by a power cut in between, is set aside at the next
    // start.
    QString failure = renameOne(path, *free);
    if (failure.isEmpty()) {
        failure = renameOne(path + log, *free + log);
        if (!failure.isEmpty())
            renameOne(*free, path);
    }
    QFile::remove(path + QStringLiteral("-shm"));
    for (const char *const name : folders) {
        if (failure.isEmpty())
            failure = renameFolder(folderBeside(path, name), folderOf(*free, name));
    }
    return failure;
}
