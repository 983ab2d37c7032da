// One run of the launcher, in a folder of its own, which the test finds empty again when nothing is left.
#pragma once

// For initTestCase(): the machine may allow no whole device.
#define SKIP_WHERE_DEVICES_ARE_FORBIDDEN()                                                                   \
    do {                                                                                                     \
        const QByteArray reason = reasonAgainstLaunches();                                                   \
        if (!reason.isEmpty())                                                                               \
            QSKIP(reason.constData());                                                                       \
    } while (false)

#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

/// The launcher that is under test: the environment variable LAUNCHER_UNDER_TEST may name another one.
QString launcher();

/// Why this machine does not allow what the launcher makes; empty if it does.
QByteArray reasonAgainstLaunches();

/// Whether that launcher makes devices with a bus only.
bool launchesAreBusOnly();

class Launch
{
public:
    Launch();
    /// Kills the launcher if it still runs, and waits until its device is gone.
    ~Launch();
    Launch(const Launch &) = delete;
    Launch &operator=(const Launch &) = delete;

    /// The folder in which the device makes its own: $TMPDIR of the launcher.
    QString place() const { return m_place.path(); }
    /// What is in place().
    QStringList folders() const;
    /// Processes of the launcher and its device that still run.
    QStringList processes() const;

    void setVariable(const QString &name, const QString &value) { m_environment.insert(name, value); }
    void unsetVariable(const QString &name) { m_environment.remove(name); }
    /// The launcher with ARGUMENTS.
    void start(const QStringList &arguments);
    /// The same, but the launcher is the child of a shell, whose number processId() then is.
    void startFromShell(const QStringList &arguments);
    /// PROGRAM, which may become the launcher or start it, in the launcher's environment.
    void startProgram(const QString &program, const QStringList &arguments);
    /// start() and waitForEnd().
    void run(const QStringList &arguments);

    void write(const QByteArray &text) { m_process.write(text); }
    void closeInput() { m_process.closeWriteChannel(); }
    /// The next line of the standard output, without its end; empty if none comes.
    QByteArray readLine();
    QByteArray readOutput() { return m_process.readAllStandardOutput(); }
    QByteArray readErrors() { return m_process.readAllStandardError(); }
    void sendSignal(int number) const;
    qint64 processId() const { return m_process.processId(); }
    bool waitForEnd();
    /// Exit status, or -1 if the launcher runs or was killed.
    int exitStatus() const;

private:
    QTemporaryDir m_place;
    QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
    QProcess m_process;
};
