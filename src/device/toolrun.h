// The one way to run a system tool and read it back, and the one to start it and look no further.
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

/// Starts \a process, whose program and arguments are set, and drops what the tool prints. Refused by the
/// process object while an earlier run of it has not ended.
void startUnread(QProcess &process);
