// Reads the daemon's state file.
#include "statefile.h"

#include <QtCore/QFile>
#include <QtCore/QJsonDocument>

QString stateFilePath(const QString &stateDirectory)
{
    return stateDirectory + QStringLiteral("/state.json");
}

QByteArray stateText(const QString &stateDirectory)
{
    QFile file(stateFilePath(stateDirectory));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QJsonObject stateObject(const QString &stateDirectory)
{
    return QJsonDocument::fromJson(stateText(stateDirectory)).object();
}

bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush();
}
