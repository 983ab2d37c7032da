// Fills, reads and removes the settings files of the benchmarks.
#include "stage.h"

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace {

const QString organization = QStringLiteral("Corvanta");

// Every key of the device's file, as the applications of the device write them.
constexpr char typicalSettings[] = R"([General]
mountSharedFolder=true
sendAnalytics=false

[locale]
keyboardLayout=de
language=de_de
units=1

[display]
brightnessLevel=%LEVEL%
dimmingInactive=4
powerInactive=6

[dateTime]
24Hour=true
automaticDateTime=false
dateFormat=dd.MM.yyyy
timezone=Europe/Berlin

[updates]
automaticUpdateCheck=false
lastUpdateCheck=2024-03-01T09:30:00

[initialization]
firstBootApplication=true
firstBootDefaultPage=3

[lockscreen]
lockscreenAuto=false

[home]
appFirstLaunchList=ZBHome, ZBSettings, ZBEditor
appListCollapsed=true
doubleClickOpen=true
zoomLevel=3
)";

} // namespace

namespace Stage {

SettingsFile::SettingsFile(const QString &application)
    : m_application(application)
    , m_path(open().fileName())
{
}

SettingsFile SettingsFile::library()
{
    return SettingsFile(QStringLiteral("Brindlemark"));
}

SettingsFile SettingsFile::plain()
{
    return SettingsFile(QStringLiteral("Brindlepath"));
}

QSettings SettingsFile::open() const
{
    return QSettings(QSettings::IniFormat, QSettings::UserScope, organization, m_application);
}

QByteArray SettingsFile::content() const
{
    QFile file(m_path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void SettingsFile::fill(int brightnessLevel) const
{
    static qint64 lastTime = 1000000000;
    QDir().mkpath(QFileInfo(m_path).path());
    QFile file(m_path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        qFatal("Cannot write %s", qPrintable(m_path));
    file.write(QByteArray(typicalSettings).replace("%LEVEL%", QByteArray::number(brightnessLevel)));
    file.flush();
    file.setFileTime(QDateTime::fromSecsSinceEpoch(++lastTime), QFileDevice::FileModificationTime);
}

void SettingsFile::remove() const
{
    QFile::remove(m_path);
}

} // namespace Stage
