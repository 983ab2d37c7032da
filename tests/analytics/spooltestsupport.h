// What several tests of the spool need: reading it back and listening to the log.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

#include <optional>

/// Content of the file; empty when there is none.
QByteArray contentOf(const QString &fileName);
/// Makes or replaces the file.
bool writeFile(const QString &fileName, const QByteArray &content);
/// Permission bits of a file or folder, for example 0600; -1 when there is none.
int modeOf(const QString &fileName);

/// A line of \a size bytes with its line end that begins with \a name.
QByteArray lineOf(const QByteArray &name, int size);

/// The numbers of the events that the writer \a writer (see writerprocess.h) put into \a lines, in their
/// order. Nothing when any line is no whole event.
std::optional<QVector<int>> numbersOf(const QByteArray &lines, const QString &writer);

/// How many of \a lines are no whole events.
int brokenLineCount(const QByteArray &lines);

/// The numbers from \a first up to and without \a end.
QVector<int> numbersBetween(int first, int end);

/// Keeps what is logged while it lives, instead of printing it.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    const QStringList &messages() const { return m_messages; }

private:
    Q_DISABLE_COPY(LogCapture)
    static void keep(QtMsgType type, const QMessageLogContext &context, const QString &message);

    static LogCapture *s_current;
    QtMessageHandler m_previous;
    QStringList m_messages;
};
