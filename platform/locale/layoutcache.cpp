// Keeps the finished list of keyboard layouts in a file of the user's cache folder, since making it (parsing
// and validating XML, translating, sorting) is most of what starting an application with this library costs.
//
// The file: the format's name, the fingerprint, and the number of bytes and of texts that follow, each on a
// line of its own; then the packed layouts. The file takes its place in one step but is not forced to
// storage: the two numbers tell when a power cut left it short or filled with zeros.
#include "layoutcache.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryFile>

#include <sys/stat.h>

#include <cstdio>

namespace {

QByteArray timeText(const timespec &time)
{
    return QByteArray::number(qint64(time.tv_sec)) + '.' + QByteArray::number(qint64(time.tv_nsec));
}

QByteArray firstLines(const QByteArray &fingerprint)
{
    return "ZBLocaleLanguages keyboard layouts 1\n" + fingerprint + '\n';
}

QByteArray sizeLine(const QByteArray &packed)
{
    return QByteArray::number(packed.size()) + ' ' + QByteArray::number(packed.count('\0')) + '\n';
}

// As the XDG base directories are defined, a relative path is to be ignored. QStandardPaths takes it, and the
// list would land in whatever folder the process stands in.
QString cacheFolder()
{
    const QString folder = QFile::decodeName(qgetenv("XDG_CACHE_HOME"));
    if (folder.startsWith(QLatin1Char('/')))
        return folder;
    const QString home = QFile::decodeName(qgetenv("HOME"));
    return home.startsWith(QLatin1Char('/')) ? home + QStringLiteral("/.cache") : QString();
}

// Empty for a process without a home, which would else write to the root of the file system.
QString cachePath()
{
    const QString folder = cacheFolder();
    return folder.isEmpty() ? QString()
                            : folder + QStringLiteral("/Corvanta/ZBLocaleLanguages/keyboard-layouts");
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void replaceFile(const QString &path, const QByteArray &bytes)
{
    if (!QDir().mkpath(QFileInfo(path).path()))
        return;
    QTemporaryFile file(path + QStringLiteral(".XXXXXX"));
    if (!file.open() || file.write(bytes) != bytes.size() || !file.flush())
        return;
    if (std::rename(QFile::encodeName(file.fileName()).constData(), QFile::encodeName(path).constData()) == 0)
        file.setAutoRemove(false);
}

} // namespace

QByteArray fingerprintOf(const QByteArrayList &paths)
{
    QByteArray fingerprint;
    for (const QByteArray &path : paths) {
        struct stat status = {};
        if (stat(path.constData(), &status) != 0)
            continue;
        fingerprint += path + ' ' + QByteArray::number(quint64(status.st_ino)) + ' '
            + QByteArray::number(qint64(status.st_size)) + ' ' + timeText(status.st_mtim) + ' '
            + timeText(status.st_ctim) + ' ';
    }
    return fingerprint;
}

QByteArray cacheOf(const QByteArray &packed, const QByteArray &fingerprint)
{
    return firstLines(fingerprint) + sizeLine(packed) + packed;
}

QByteArray layoutsIn(const QByteArray &cache, const QByteArray &fingerprint)
{
    const QByteArray start = firstLines(fingerprint);
    const int bodyAt = cache.startsWith(start) ? cache.indexOf('\n', start.size()) + 1 : 0;
    if (bodyAt == 0)
        return QByteArray();
    const QByteArray packed = cache.mid(bodyAt);
    return cache.mid(start.size(), bodyAt - start.size()) == sizeLine(packed) ? packed : QByteArray();
}

QByteArray cachedLayouts(const QByteArray &fingerprint, const std::function<QByteArray()> &make)
{
    const QString path = cachePath();
    if (path.isEmpty())
        return make();
    QByteArray packed = layoutsIn(contentOf(path), fingerprint);
    if (packed.isEmpty()) {
        packed = make();
        if (!packed.isEmpty())
            replaceFile(path, cacheOf(packed, fingerprint));
    }
    return packed;
}
