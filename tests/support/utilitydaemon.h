// A utility daemon of the test's own: starts the real program on the bus that the test sees as its system
// bus, steers it over its control interface, stops, hangs and kills it, and leaves no process behind.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QProcess>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>
#include <QtCore/QVariantList>
#include <QtCore/QVector>
#include <QtDBus/QDBusMessage>

#include <memory>

/**
 * The daemon of one test.
 *
 * \code
 * UtilityDaemon daemon;
 * QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
 * QVERIFY(daemon.failNextCall(QStringLiteral("com.example.Error"), QStringLiteral("on purpose")));
 * ...
 * QCOMPARE(daemon.calls().first().method, QStringLiteral("setDisplayBrightness"));
 * \endcode
 *
 * The program is the one that ZBVIRTUALDEVICE_UTILITYD names, as the virtual device sets it. Its state lies
 * in a folder that lives as long as this object, so that it survives a restart, unless the test names a
 * folder.
 *
 * Every function that waits does so on signals, for ten seconds at most, and runs the event loop meanwhile.
 * The functions that steer the daemon answer false, and say why in errorText(), when the daemon did not do
 * it.
 */
class UtilityDaemon : public QObject
{
    Q_OBJECT

public:
    /// One call of the daemon's own interface as it arrived.
    struct Call
    {
        QString method;
        QString signature; ///< D-Bus signature of the arguments, "" for none
        QVariantList arguments; ///< with the types of the wire: "u" is a uint, "i" an int, "s" a QString
    };

    explicit UtilityDaemon(QObject *parent = nullptr);
    /// Kills the daemon, if it still runs, and reaps it.
    ~UtilityDaemon() override;

    /**
     * Starts the daemon and waits until its name is on the bus.
     *
     * \a arguments are those of the program; with the default the control interface is there. Without a
     * \a stateDirectory the daemon keeps its state in stateDirectory() of this object.
     */
    bool start(const QStringList &arguments = {QStringLiteral("--virtual-device")},
               const QString &stateDirectory = {});
    /// Starts the program and waits for its end, for a daemon that is expected not to start.
    bool startAndWaitForEnd(const QStringList &arguments = {QStringLiteral("--virtual-device")});

    /// Asks the daemon to end (SIGTERM) and waits until process and name are gone.
    bool terminate();
    /// Kills the daemon (SIGKILL) and waits until process and name are gone.
    bool kill();
    /// Halts the daemon (SIGSTOP): its name stays on the bus, nothing is answered.
    bool stop();
    /// Lets a halted daemon go on (SIGCONT).
    bool resume();
    /// Waits until process and name are gone, for a daemon that ends by itself.
    bool waitForEnd();

    bool isRunning() const;
    qint64 processId() const;
    /// Exit status of the ended program; -1 while it runs and when a signal ended it.
    int exitCode() const;
    /// What the program wrote to its standard error since it was started.
    QString standardError();
    /// The folder in which the daemon keeps its state by default.
    QString stateDirectory() const;
    /// Why the last function answered false.
    QString errorText() const;

    // The control interface; each function returns after the daemon has answered.

    /// Fixes the internet state; the daemon sends onInternetConnectionChanged.
    bool setInternetState(bool connected);
    /// Lets the internet state follow the machine's routes again.
    bool followRoutes();
    bool setShip(int mode);
    // A fault waits for the next call. Faults that are set one after the other meet one call each, in that
    // order.
    bool failNextCall(const QString &errorName, const QString &message);
    bool delayNextCall(uint milliseconds);
    bool ignoreNextCall();
    bool dieInNextCall();
    /// The daemon gives its name away and ends; returns when both are gone.
    bool vanish();
    /// Every call of the daemon's own interface since the start or the last clearCalls().
    QVector<Call> calls();
    bool clearCalls();
    /// Waits until calls() has at least \a count entries.
    bool waitForCalls(int count);

    /// Calls \a method of the daemon's own interface and returns the reply or the error.
    static QDBusMessage call(const QString &method, const QVariantList &arguments = {});

Q_SIGNALS:
    /// The daemon's own interface was called.
    void called(const QString &method, const QString &signature, const QVariantList &arguments);
    /// The daemon sent its signal of the same name.
    void onInternetConnectionChanged(bool connected);

private:
    bool launch(const QStringList &arguments, const QString &stateDirectory);
    bool sendSignal(int number);
    bool control(const QString &method, const QVariantList &arguments = {});
    bool fail(const QString &text);

    QTemporaryDir m_stateDirectory;
    std::unique_ptr<QProcess> m_process;
    QString m_standardError;
    QString m_errorText;
};
