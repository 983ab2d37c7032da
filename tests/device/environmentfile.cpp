// Plain file operations on the compositor's environment file.
#include "environmentfile.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>

QString EnvironmentFile::folder()
{
    // Never the file of the machine that the test runs on.
    if (!qEnvironmentVariableIsSet("ZBVIRTUALDEVICE_CLOCK_LOG"))
        qFatal("This test runs in a whole virtual device only: zbvirtualdevice -- %s",
               qPrintable(QCoreApplication::applicationFilePath()));
    return QStringLiteral("/etc/corvanta");
}

QString EnvironmentFile::path()
{
    return folder() + QStringLiteral("/wayland.env");
}

QByteArray EnvironmentFile::content()
{
    QFile file(path());
    return file.open(QIODevice::ReadOnly) ? QByteArray("").append(file.readAll()) : QByteArray();
}

bool EnvironmentFile::write(const QByteArray &content)
{
    QFile file(path());
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(content) == content.size()
        && file.flush();
}

bool EnvironmentFile::clear()
{
    bool isClear = true;
    const QFileInfoList entries =
        QDir(folder()).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        const bool isFolder = entry.isDir() && !entry.isSymLink();
        isClear = (isFolder ? QDir(entry.filePath()).removeRecursively() : QFile::remove(entry.filePath()))
            && isClear;
    }
    return isClear;
}
