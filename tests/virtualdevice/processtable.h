// What the kernel knows of processes.
#pragma once

#include <QtCore/QString>
#include <QtCore/QVector>

/// Processes, but this one, whose command line or environment holds TEXT. One that has ended and waits for
/// its parent to notice does not count: it has neither any more.
QVector<qint64> processesThatMention(const QString &text);

/// Number and command line, for messages.
QString describeProcess(qint64 process);

/// The process numbers of the children of PARENT.
QVector<qint64> childrenOf(qint64 parent);

/// The processes whose command line holds TEXT.
QVector<qint64> processesWithCommandLine(const QString &text);
