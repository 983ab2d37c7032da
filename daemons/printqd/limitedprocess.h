// A program that reads one file, writes another, and may not take much of the machine.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>
#include <sys/types.h>

class QSocketNotifier;

/**
 * Started with posix_spawn(3) and not with QProcess: whoever is killed in the middle of a fork leaves a child
 * that holds all that was open, the name on the bus and the lock of the folder too, and the next daemon would
 * not get them. setpriv(1), prlimit(1) and nice(1) set the limits.
 */
class LimitedProcess : public QObject
{
    Q_OBJECT

public:
    explicit LimitedProcess(QObject *parent);
    /// Kills the program, if it still runs, and reaps it.
    ~LimitedProcess() override;

    /// False where it cannot be started; finished() follows otherwise.
    bool start(const QString &program, const QStringList &arguments, const QString &input,
               const QString &output);
    void kill();

    /// -1 when it does not run.
    pid_t processId() const { return m_process; }
    QString program() const { return m_program; }
    bool hasCrashed() const { return m_hasCrashed; }
    /// 127 where there is no such program.
    int exitCode() const { return m_exitCode; }

Q_SIGNALS:
    void finished();

private:
    void reap();

    QString m_program;
    pid_t m_process = -1;
    int m_descriptor = -1;
    std::unique_ptr<QSocketNotifier> m_end;
    bool m_hasCrashed = false;
    int m_exitCode = 0;
};
