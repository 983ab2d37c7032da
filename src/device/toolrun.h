// The ways to run a system tool: read back, not read, and on its own.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

class QProcess;

/// How long a tool that is read back is waited for, in milliseconds.
constexpr int toolPatience = 500;

/**
 * Runs \a program with \a process, which must be idle, and returns what it has printed on its standard output
 * when it ends or after \ref toolPatience: decoded as UTF-8 up to the first NUL byte, not trimmed. A tool
 * that still runs then keeps running, and what it prints later is dropped. Exit status and standard error are
 * not looked at; a tool that cannot start gives empty text; of one that prints more than 16 MB the rest is
 * dropped. The tool runs in the locale "C".
 */
QString outputOfTool(QProcess &process, const QString &program, const QStringList &arguments);

/// Starts \a process, whose program is set, with \a arguments, and drops what the tool prints. The request is
/// lost when an earlier run of \a process has not ended.
void startUnread(QProcess &process, const QStringList &arguments);

/// Starts \a program as a process of its own, which outlives this one. Whether it starts, how it ends and
/// what it prints is not looked at.
void startDetached(const QString &program, const QStringList &arguments);
