// The daemon's state file as a test sees it from outside.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QJsonObject>
#include <QtCore/QString>

/// Path of the state file in the folder that the daemon was started with.
QString stateFilePath(const QString &stateDirectory);

/// The text of the file; empty if there is none.
QByteArray stateText(const QString &stateDirectory);

/// The values in the file; empty if it cannot be read as JSON.
QJsonObject stateObject(const QString &stateDirectory);

bool writeFile(const QString &path, const QByteArray &content);
