// Runs tools and reads files for the tour.
#include "tourreading.h"

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QSettings>

namespace {
constexpr int toolMilliseconds = 5000;
}

QString outputOf(const QString &program, const QStringList &arguments)
{
    QProcess tool;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    tool.setProcessEnvironment(environment);
    tool.start(program, arguments);
    tool.waitForFinished(toolMilliseconds);
    return QString::fromUtf8(tool.readAllStandardOutput());
}

QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString settingsFile()
{
    return QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Corvanta"),
                     QStringLiteral("Brindlemark"))
        .fileName();
}
