// Plain file operations on the settings file.
#include "settingsfile.h"

#include "filebytes.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace {

QDateTime nextModificationTime()
{
    static qint64 seconds = 1000000000;
    return QDateTime::fromSecsSinceEpoch(++seconds);
}

} // namespace

QString SettingsFile::folder()
{
    // Never the settings of the user who runs the test by hand.
    if (!qEnvironmentVariableIsSet("ZBVIRTUALDEVICE_DIRECTORY"))
        qFatal("This test runs in a virtual device only: zbvirtualdevice --without-daemon -- %s",
               qPrintable(QCoreApplication::applicationFilePath()));
    return qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/Corvanta");
}

QString SettingsFile::path()
{
    return folder() + QStringLiteral("/Brindlemark.ini");
}

bool SettingsFile::exists()
{
    return QFileInfo::exists(path());
}

QByteArray SettingsFile::content()
{
    return FileBytes::read(path());
}

bool SettingsFile::write(const QByteArray &content)
{
    QFile file(path());
    return QDir().mkpath(folder()) && file.open(QIODevice::WriteOnly | QIODevice::Truncate)
        && file.write(content) == content.size() && file.flush()
        && file.setFileTime(nextModificationTime(), QFileDevice::FileModificationTime);
}

void SettingsFile::removeAll()
{
    QDir(folder()).removeRecursively();
    QFile::remove(folder());
}
