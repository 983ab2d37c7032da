// Plain file operations on the compositor's environment file.
#include "keyboardenvironment.h"

#include "filebytes.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>

QString KeyboardEnvironment::folder()
{
    // Never the file of the machine that the test runs on.
    if (!qEnvironmentVariableIsSet("ZBVIRTUALDEVICE_CLOCK_LOG"))
        qFatal("This test runs in a whole virtual device only: zbvirtualdevice -- %s",
               qPrintable(QCoreApplication::applicationFilePath()));
    return QStringLiteral("/etc/corvanta");
}

QString KeyboardEnvironment::path()
{
    return folder() + QStringLiteral("/wayland.env");
}

QByteArray KeyboardEnvironment::content()
{
    return FileBytes::read(path());
}

bool KeyboardEnvironment::write(const QByteArray &content)
{
    return FileBytes::write(path(), content);
}

bool KeyboardEnvironment::clear()
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
