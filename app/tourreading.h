// What the tour compares the pages with: files, and what the system's own tools print.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// What the program prints in the language C; empty where it cannot be started or takes too long.
QString outputOf(const QString &program, const QStringList &arguments);

/// Empty where the file cannot be read.
QByteArray contentOf(const QString &fileName);

/// Where the settings are stored.
QString settingsFile();
