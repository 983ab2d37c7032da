// Runs one of the device's own tools, for a test to compare with.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// What \a program printed; null when it could not be run or failed.
QByteArray outputOfSystemTool(const QString &program, const QStringList &arguments);
/// Whether \a program ran and ended well.
bool runSystemTool(const QString &program, const QStringList &arguments);
