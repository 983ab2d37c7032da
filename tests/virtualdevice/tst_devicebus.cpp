// The device's bus and daemon, used as a program outside uses them, and the device as it is without a
// command.
#include "launch.h"
#include "processtable.h"

#include <QtDBus/QtDBus>
#include <QtTest/QtTest>

#include <csignal>

class DeviceBusTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void daemonAnswersAndFollowsTheControlInterface();
    void daemonIsThereBeforeTheCommandRuns();
    void withoutDaemonTheNameIsFree();
    void anybodyMayOwnAndCallAnything();
    void onlyTheClockIsStartedByBeingCalled();
    void busHasTheLimitsOfASystemBus();
    void twoDevicesDoNotMeet();
    void environmentTextIsReadByAShell();
    void withoutCommandItEndsWhenTold_data();
    void withoutCommandItEndsWhenTold();
    void crashOfTheDaemonIsAFailure();
    void killedDaemonIsSaidButIsNoFailure();
    void daemonLogIsKeptWhileTheDeviceRuns();
    void startsInWellUnderASecond();

private:
    static void endDaemonWith(int signalNumber, Launch *launch);
};

namespace {

const QString service = QStringLiteral("com.corvanta.zbutility");

// A running device without a command, and a connection to its bus.
class Device
{
public:
    explicit Device(const QStringList &options = {})
    {
        m_launch.start(options);
        QByteArray line;
        do {
            line = m_launch.readLine();
            m_text += line + '\n';
        } while (!line.isEmpty() && line != "# The device is ready.");
    }
    ~Device() { QDBusConnection::disconnectFromBus(m_launch.place()); }
    Device(const Device &) = delete;
    Device &operator=(const Device &) = delete;

    Launch &launch() { return m_launch; }
    QByteArray text() const { return m_text; }
    QString directory() const { return m_launch.place() + QLatin1Char('/') + m_launch.folders().value(0); }
    QString address() const { return QStringLiteral("unix:path=%1/bus/socket").arg(directory()); }
    QDBusConnection bus() const { return QDBusConnection::connectToBus(address(), m_launch.place()); }

private:
    Launch m_launch;
    QByteArray m_text;
};

QDBusMessage call(const QDBusConnection &bus, const QString &interface, const QString &method,
                  const QVariantList &arguments = {})
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, QStringLiteral("/"), interface, method);
    message.setArguments(arguments);
    return bus.call(message);
}

QDBusMessage getShip(const QDBusConnection &bus)
{
    return call(bus, QStringLiteral("local.ZBUtilityd.UtilityDaemon"), QStringLiteral("getShip"));
}

} // namespace

void DeviceBusTest::initTestCase()
{
    SKIP_WHERE_DEVICES_ARE_FORBIDDEN();
}

void DeviceBusTest::daemonAnswersAndFollowsTheControlInterface()
{
    Device device;
    const QDBusConnection bus = device.bus();
    QVERIFY2(bus.isConnected(), qPrintable(bus.lastError().message()));
    const QDBusMessage answer = getShip(bus);
    QCOMPARE(answer.type(), QDBusMessage::ReplyMessage);
    QCOMPARE(answer.signature(), QStringLiteral("i"));

    const QDBusMessage done =
        call(bus, QStringLiteral("com.corvanta.VirtualDevice1"), QStringLiteral("SetShip"), {2});
    QVERIFY2(done.type() == QDBusMessage::ReplyMessage, qPrintable(done.errorMessage()));
    QCOMPARE(getShip(bus).arguments(), QVariantList{2});
}

void DeviceBusTest::daemonIsThereBeforeTheCommandRuns()
{
    // One question without any patience.
    for (int round = 0; round < 5; ++round) {
        Launch launch;
        launch.run({QStringLiteral("dbus-send"), QStringLiteral("--system"),
                    QStringLiteral("--print-reply=literal"), QStringLiteral("--dest=com.corvanta.zbutility"),
                    QStringLiteral("/"), QStringLiteral("local.ZBUtilityd.UtilityDaemon.getShip")});
        QCOMPARE(launch.readErrors(), QByteArray());
        QCOMPARE(launch.exitStatus(), 0);
        QVERIFY(launch.readOutput().contains("int32"));
    }
}

void DeviceBusTest::withoutDaemonTheNameIsFree()
{
    Device device({QStringLiteral("--without-daemon")});
    QDBusConnection bus = device.bus();
    QVERIFY(bus.isConnected());
    QVERIFY(!bus.interface()->isServiceRegistered(service));
    QVERIFY(bus.registerService(service));
}

void DeviceBusTest::anybodyMayOwnAndCallAnything()
{
    Device device({QStringLiteral("--without-daemon")});
    QDBusConnection bus = device.bus();
    QVERIFY(bus.registerService(QStringLiteral("org.example.Anything")));
    QVERIFY(bus.registerObject(QStringLiteral("/"), this, QDBusConnection::ExportAllSlots));
    QDBusConnection other = QDBusConnection::connectToBus(device.address(), QStringLiteral("other"));
    const QDBusMessage answer = other.call(
        QDBusMessage::createMethodCall(QStringLiteral("org.example.Anything"), QStringLiteral("/"),
                                       QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping")));
    QDBusConnection::disconnectFromBus(QStringLiteral("other"));
    bus.unregisterObject(QStringLiteral("/"));
    QVERIFY2(answer.type() == QDBusMessage::ReplyMessage, qPrintable(answer.errorMessage()));
}

void DeviceBusTest::onlyTheClockIsStartedByBeingCalled()
{
    Device device({QStringLiteral("--without-daemon")});
    const QDBusConnection bus = device.bus();
    const QDBusReply<QStringList> names = bus.interface()->call(QStringLiteral("ListActivatableNames"));
    QStringList startable = names.value();
    startable.sort();
    QStringList expected = {QStringLiteral("org.freedesktop.DBus")};
    if (!launchesAreBusOnly())
        expected += {QStringLiteral("org.freedesktop.systemd1"), QStringLiteral("org.freedesktop.timedate1")};
    QCOMPARE(startable, expected);
    QCOMPARE(getShip(bus).errorName(), QStringLiteral("org.freedesktop.DBus.Error.ServiceUnknown"));
}

void DeviceBusTest::busHasTheLimitsOfASystemBus()
{
    // A system bus has room for 128 calls of one connection that wait for their answers; a session bus for
    // 50000.
    Device device;
    const QDBusConnection bus = device.bus();
    QVERIFY(call(bus, QStringLiteral("com.corvanta.VirtualDevice1"), QStringLiteral("IgnoreNextCall")).type()
            == QDBusMessage::ReplyMessage);
    const QVector<qint64> daemons =
        processesWithCommandLine(device.directory() + QStringLiteral("/utilityd"));
    QCOMPARE(daemons.size(), 1);
    // Stopped, so that all the calls wait at the same time.
    QCOMPARE(::kill(static_cast<pid_t>(daemons.constFirst()), SIGSTOP), 0);
    QVector<QDBusPendingCall> calls;
    for (int number = 0; number < 200; ++number)
        calls.append(bus.asyncCall(QDBusMessage::createMethodCall(
            service, QStringLiteral("/"), QStringLiteral("local.ZBUtilityd.UtilityDaemon"),
            QStringLiteral("getShip"))));
    calls.last().waitForFinished();
    const bool refused = calls.last().isError();
    const QString error = calls.last().error().name();
    QCOMPARE(::kill(static_cast<pid_t>(daemons.constFirst()), SIGCONT), 0);
    QVERIFY(refused);
    QCOMPARE(error, QStringLiteral("org.freedesktop.DBus.Error.LimitsExceeded"));
}

void DeviceBusTest::twoDevicesDoNotMeet()
{
    Device first;
    Device second;
    QVERIFY(first.directory() != second.directory());
    const QString control = QStringLiteral("com.corvanta.VirtualDevice1");
    QVERIFY(call(first.bus(), control, QStringLiteral("SetShip"), {1}).type() == QDBusMessage::ReplyMessage);
    QVERIFY(call(second.bus(), control, QStringLiteral("SetShip"), {2}).type() == QDBusMessage::ReplyMessage);
    QCOMPARE(getShip(first.bus()).arguments(), QVariantList{1});
    QCOMPARE(getShip(second.bus()).arguments(), QVariantList{2});

    second.launch().sendSignal(SIGTERM);
    QVERIFY(second.launch().waitForEnd());
    QCOMPARE(getShip(first.bus()).arguments(), QVariantList{1});
}

void DeviceBusTest::environmentTextIsReadByAShell()
{
    QTemporaryDir strange(QStringLiteral("/tmp/zbvt it's $x-XXXXXX"));
    Launch launch;
    launch.setVariable(QStringLiteral("TMPDIR"), strange.path());
    launch.start({});
    QByteArray text;
    while (!text.endsWith("# The device is ready.\n")) {
        const QByteArray line = launch.readLine();
        QVERIFY2(!line.isEmpty(), launch.readErrors().constData());
        text += line + '\n';
    }
    QProcess shell;
    shell.start(
        QStringLiteral("/bin/sh"),
        {QStringLiteral("-eu"), QStringLiteral("-c"),
         QString::fromUtf8(text)
             + QStringLiteral("dbus-send --system --print-reply=literal --dest=com.corvanta.zbutility / "
                              "local.ZBUtilityd.UtilityDaemon.getShip; printf '%s' \"$HOME\"")});
    QVERIFY(shell.waitForFinished());
    QCOMPARE(shell.readAllStandardError(), QByteArray());
    const QByteArray output = shell.readAllStandardOutput();
    QVERIFY2(output.contains("int32"), output.constData());
    QVERIFY2(output.contains(QFile::encodeName(strange.path()) + "/zbvd-"), output.constData());
    QVERIFY(output.endsWith("/home"));
    launch.sendSignal(SIGTERM);
    QVERIFY(launch.waitForEnd());
}

void DeviceBusTest::withoutCommandItEndsWhenTold_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void DeviceBusTest::withoutCommandItEndsWhenTold()
{
    QFETCH(int, number);
    Device device;
    QVERIFY2(device.text().endsWith("# The device is ready.\n"), device.text().constData());
    QVERIFY(QFileInfo(device.directory()).isDir());
    // The input is not looked at: a device in the background has none.
    device.launch().closeInput();
    QVERIFY(getShip(device.bus()).type() == QDBusMessage::ReplyMessage);

    device.launch().sendSignal(number);
    QVERIFY(device.launch().waitForEnd());
    QCOMPARE(device.launch().exitStatus(), 0);
    QCOMPARE(device.launch().folders(), QStringList());
    QCOMPARE(device.launch().processes(), QStringList());
    QCOMPARE(device.launch().readErrors(), QByteArray());
}

/// Runs a device in \a launch whose daemon gets this signal, to the end.
void DeviceBusTest::endDaemonWith(int signalNumber, Launch *launch)
{
    launch->start({QStringLiteral("/bin/sh"), QStringLiteral("-c"),
                   QStringLiteral("echo $ZBVIRTUALDEVICE_DIRECTORY; read go")});
    const QString directory = QFile::decodeName(launch->readLine());
    const QVector<qint64> daemons = processesWithCommandLine(directory + QStringLiteral("/utilityd"));
    QCOMPARE(daemons.size(), 1);
    QCOMPARE(::kill(static_cast<pid_t>(daemons.constFirst()), signalNumber), 0);
    // A dying process loses its command line before its end is seen.
    QTRY_VERIFY(::kill(static_cast<pid_t>(daemons.constFirst()), 0) != 0);
    launch->write("go\n");
    QVERIFY(launch->waitForEnd());
}

void DeviceBusTest::crashOfTheDaemonIsAFailure()
{
    Launch launch;
    endDaemonWith(SIGABRT, &launch);
    QVERIFY(!QTest::currentTestFailed());
    QCOMPARE(launch.exitStatus(), 125);
    const QByteArray errors = launch.readErrors();
    QVERIFY2(errors.startsWith("zbvirtualdevice: zbutilityd was ended by signal 6 (Aborted)"),
             errors.constData());
}

void DeviceBusTest::killedDaemonIsSaidButIsNoFailure()
{
    Launch launch;
    endDaemonWith(SIGKILL, &launch);
    QVERIFY(!QTest::currentTestFailed());
    QCOMPARE(launch.exitStatus(), 0);
    QCOMPARE(launch.readErrors(), QByteArray("zbvirtualdevice: zbutilityd was ended by signal 9 (Killed)\n"));
}

void DeviceBusTest::daemonLogIsKeptWhileTheDeviceRuns()
{
    Device device;
    QVERIFY(QFileInfo::exists(device.directory() + QStringLiteral("/log/dbus-daemon.log")));
    QVERIFY(QFileInfo::exists(device.directory() + QStringLiteral("/log/zbutilityd.log")));
}

void DeviceBusTest::startsInWellUnderASecond()
{
    qint64 best = std::numeric_limits<qint64>::max();
    for (int round = 0; round < 5; ++round) {
        Launch launch;
        QElapsedTimer timer;
        timer.start();
        launch.run({QStringLiteral("true")});
        best = qMin(best, timer.elapsed());
    }
    qInfo("start and end with the daemon: %lld ms", best);
    QVERIFY2(best < 1000, qPrintable(QString::number(best)));
}

QTEST_GUILESS_MAIN(DeviceBusTest)
#include "tst_devicebus.moc"
