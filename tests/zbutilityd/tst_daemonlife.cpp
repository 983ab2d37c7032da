// How the daemon starts and ends, and what it says when it cannot start.
#include "privatebus.h"
#include "utilitydaemon.h"

#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusServiceWatcher>
#include <QtTest/QtTest>

#include <algorithm>
#include <csignal>

class DaemonLifeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsInTime();
    void endsCleanlyOnRequest_data();
    void endsCleanlyOnRequest();
    void aSecondDaemonDoesNotStartAndTouchesNoState();
    void withoutABusItEndsWithOneLine_data();
    void withoutABusItEndsWithOneLine();
    void aWrongCommandLineEndsWithOneLine();
    void whenTheBusGoesItEnds();
    void aHaltedDaemonKeepsItsNameAndGoesOn();
};

namespace {

/// The result of a run of the program that ends by itself.
struct Run
{
    int exitCode = -1;
    QString standardOutput;
    QString standardError;
};

Run runToEnd(const QStringList &arguments, const QString &busAddress)
{
    ChildProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), busAddress);
    process.setProcessEnvironment(environment);
    process.start(qEnvironmentVariable("ZBVIRTUALDEVICE_UTILITYD"), arguments);
    if (!process.waitForFinished(10000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

} // namespace

void DaemonLifeTest::startsInTime()
{
    QVector<qint64> microseconds;
    for (int round = 0; round < 9; ++round) {
        UtilityDaemon daemon;
        QElapsedTimer clock;
        clock.start();
        QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
        microseconds.append(clock.nsecsElapsed() / 1000);
        QVERIFY2(daemon.terminate(), qPrintable(daemon.errorText()));
    }
    std::sort(microseconds.begin(), microseconds.end());
    qInfo("start of the process to its name on the bus: median %lld us, longest %lld us", microseconds[4],
          microseconds[8]);
    QVERIFY(microseconds[4] < 1000000);
}

void DaemonLifeTest::endsCleanlyOnRequest_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void DaemonLifeTest::endsCleanlyOnRequest()
{
    QFETCH(int, signal);
    UtilityDaemon daemon;
    QVERIFY2(daemon.start({}), qPrintable(daemon.errorText()));
    QCOMPARE(::kill(static_cast<pid_t>(daemon.processId()), signal), 0);
    QVERIFY2(daemon.waitForEnd(), qPrintable(daemon.errorText()));
    QCOMPARE(daemon.exitCode(), 0);
    QCOMPARE(daemon.standardError(), QString());
}

void DaemonLifeTest::aSecondDaemonDoesNotStartAndTouchesNoState()
{
    UtilityDaemon first;
    QVERIFY2(first.start(), qPrintable(first.errorText()));

    QTemporaryDir directory;
    QFile damaged(directory.filePath(QStringLiteral("state.json")));
    QVERIFY(damaged.open(QIODevice::WriteOnly));
    damaged.close();
    const Run second = runToEnd({QStringLiteral("--state-directory"), directory.path()},
                                qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS"));
    QCOMPARE(second.exitCode, 1);
    QCOMPARE(second.standardError,
             QStringLiteral("zbutilityd: another process has the name com.corvanta.zbutility already\n"));
    QCOMPARE(QDir(directory.path()).entryList(QDir::Files), QStringList{QStringLiteral("state.json")});

    QCOMPARE(UtilityDaemon::call(QStringLiteral("getShip")).type(), QDBusMessage::ReplyMessage);
    QVERIFY(first.calls().size() == 1);
}

void DaemonLifeTest::withoutABusItEndsWithOneLine_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("no socket") << QStringLiteral("unix:path=/nonexistent/bus");
    QTest::newRow("no address") << QStringLiteral("rubbish");
}

void DaemonLifeTest::withoutABusItEndsWithOneLine()
{
    QFETCH(QString, address);
    QTemporaryDir directory;
    const Run run = runToEnd({QStringLiteral("--state-directory"), directory.path()}, address);
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.standardError.startsWith(QLatin1String("zbutilityd: no system bus: ")),
             qPrintable(run.standardError));
    QCOMPARE(run.standardError.count(QLatin1Char('\n')), 1);
}

void DaemonLifeTest::aWrongCommandLineEndsWithOneLine()
{
    const Run run = runToEnd({QStringLiteral("--rubbish")}, qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS"));
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.standardError, QStringLiteral("zbutilityd: Unknown option 'rubbish'.\n"));
    const Run help = runToEnd({QStringLiteral("--help")}, QStringLiteral("rubbish"));
    QCOMPARE(help.exitCode, 0);
    QVERIFY(help.standardOutput.contains(QLatin1String("--virtual-device")));
}

void DaemonLifeTest::whenTheBusGoesItEnds()
{
    PrivateBus bus(openRules());
    QVERIFY2(bus.start(), qPrintable(bus.errorText()));
    QTemporaryDir directory;
    ChildProcess daemon;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), bus.address());
    daemon.setProcessEnvironment(environment);
    {
        QDBusConnection connection =
            QDBusConnection::connectToBus(bus.address(), QStringLiteral("whenTheBusGoes"));
        QVERIFY2(connection.isConnected(), qPrintable(connection.lastError().message()));
        QDBusServiceWatcher watcher(QStringLiteral("com.corvanta.zbutility"), connection,
                                    QDBusServiceWatcher::WatchForRegistration);
        QSignalSpy registered(&watcher, &QDBusServiceWatcher::serviceRegistered);
        // The answer to this call comes after the bus has taken up the watch.
        QVERIFY(!connection.interface()->isServiceRegistered(QStringLiteral("com.corvanta.zbutility")));
        daemon.start(qEnvironmentVariable("ZBVIRTUALDEVICE_UTILITYD"),
                     {QStringLiteral("--state-directory"), directory.path()});
        QVERIFY(!registered.isEmpty() || registered.wait(10000));
    }
    QDBusConnection::disconnectFromBus(QStringLiteral("whenTheBusGoes"));
    bus.kill();
    QVERIFY(daemon.waitForFinished(10000));
    QCOMPARE(daemon.exitStatus(), QProcess::NormalExit);
    QCOMPARE(daemon.exitCode(), 1);
    QCOMPARE(QString::fromUtf8(daemon.readAllStandardError()),
             QStringLiteral("zbutilityd: the system bus has gone\n"));
}

void DaemonLifeTest::aHaltedDaemonKeepsItsNameAndGoesOn()
{
    UtilityDaemon daemon;
    QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
    QVERIFY(daemon.stop());
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("com.corvanta.zbutility"), QStringLiteral("/"),
        QStringLiteral("local.ZBUtilityd.UtilityDaemon"), QStringLiteral("getShip"));
    const QDBusMessage late = QDBusConnection::systemBus().call(message, QDBus::Block, 100);
    QCOMPARE(late.errorName(), QStringLiteral("org.freedesktop.DBus.Error.NoReply"));
    QVERIFY(daemon.resume());
    QCOMPARE(UtilityDaemon::call(QStringLiteral("getShip")).type(), QDBusMessage::ReplyMessage);
    // A halted daemon does not outlive the test either.
    QVERIFY(daemon.stop());
}

QTEST_GUILESS_MAIN(DaemonLifeTest)
#include "tst_daemonlife.moc"
