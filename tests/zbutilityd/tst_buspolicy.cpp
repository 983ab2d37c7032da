// The files that a distribution installs: rights on the bus, activation by the bus, the unit of systemd.
#include "privatebus.h"
#include "statefile.h"

#include <QtCore/QStandardPaths>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusServiceWatcher>
#include <QtTest/QtTest>

#include <unistd.h>

class BusPolicyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();

    void rootMayOwnTheNameAndCallEverything_data();
    void rootMayOwnTheNameAndCallEverything();
    void othersMayCallTheOwnInterfaceOnly_data();
    void othersMayCallTheOwnInterfaceOnly();
    void othersMayNotOwnTheName();
    void anotherUsersDaemonSaysThatTheBusRefuses();
    void theBusStartsTheDaemon();
    void activationFileAndUnitBelongTogether();
    void theUnitIsOneThatSystemdKnows();

private:
    struct Result
    {
        int exitCode = -1;
        QString output;
    };

    /// Runs dbus-send; as an ordinary user if \a isOrdinaryUser.
    Result dbusSend(bool isOrdinaryUser, const QStringList &arguments);
    Result run(const QString &program, const QStringList &arguments);

    PrivateBus m_bus{QStringLiteral("<include>%1/com.corvanta.zbutility.conf</include>")
                         .arg(QStringLiteral(DBUS_SOURCE_DIRECTORY))};
    QTemporaryDir m_state;
    ChildProcess m_daemon;
};

namespace {

const QString connectionName = QStringLiteral("BusPolicyTest");
const QString service = QStringLiteral("com.corvanta.zbutility");

/// "nobody": a user without rights, on every machine.
constexpr int ordinaryUser = 65534;

QString fileText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// The values of \a key in a file of lines "key=value".
QStringList valuesOf(const QString &text, const QString &key)
{
    QStringList values;
    for (const QString &line : text.split(QLatin1Char('\n'))) {
        if (line.startsWith(key + QLatin1Char('=')))
            values += line.mid(key.size() + 1);
    }
    return values;
}

} // namespace

void BusPolicyTest::initTestCase()
{
    QVERIFY2(m_bus.start(), qPrintable(m_bus.errorText()));
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toLatin1());
    if (::geteuid() != 0)
        return;

    QDBusConnection bus = QDBusConnection::systemBus();
    QDBusServiceWatcher watcher(service, bus, QDBusServiceWatcher::WatchForRegistration);
    QSignalSpy registered(&watcher, &QDBusServiceWatcher::serviceRegistered);
    // The answer to this call comes after the bus has taken up the watch.
    QVERIFY(!bus.interface()->isServiceRegistered(service));
    m_daemon.start(qEnvironmentVariable("ZBVIRTUALDEVICE_UTILITYD"),
                   {QStringLiteral("--virtual-device"), QStringLiteral("--state-directory"), m_state.path()});
    QVERIFY(!registered.isEmpty() || registered.wait(10000));
}

void BusPolicyTest::cleanupTestCase()
{
    m_daemon.terminate();
    m_daemon.waitForFinished(10000);
}

BusPolicyTest::Result BusPolicyTest::run(const QString &program, const QStringList &arguments)
{
    ChildProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(10000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAll())};
}

BusPolicyTest::Result BusPolicyTest::dbusSend(bool isOrdinaryUser, const QStringList &arguments)
{
    const QStringList command =
        QStringList{QStringLiteral("dbus-send"), QStringLiteral("--system"), QStringLiteral("--print-reply")}
        + arguments;
    if (!isOrdinaryUser)
        return run(command.first(), command.mid(1));
    return run(QStringLiteral("setpriv"),
               QStringList{QStringLiteral("--reuid=%1").arg(ordinaryUser),
                           QStringLiteral("--regid=%1").arg(ordinaryUser), QStringLiteral("--clear-groups")}
                   + command);
}

void BusPolicyTest::rootMayOwnTheNameAndCallEverything_data()
{
    QTest::addColumn<QString>("member");
    QTest::newRow("own interface") << QStringLiteral("local.ZBUtilityd.UtilityDaemon.getShip");
    QTest::newRow("introspection") << QStringLiteral("org.freedesktop.DBus.Introspectable.Introspect");
    QTest::newRow("control interface") << QStringLiteral("com.corvanta.VirtualDevice1.Calls");
}

void BusPolicyTest::rootMayOwnTheNameAndCallEverything()
{
    if (::geteuid() != 0)
        QSKIP("only root may own the name on a bus with these rules");
    QFETCH(QString, member);
    const Result result = dbusSend(false, {QStringLiteral("--dest=") + service, QStringLiteral("/"), member});
    QVERIFY2(result.exitCode == 0, qPrintable(result.output));
}

void BusPolicyTest::othersMayCallTheOwnInterfaceOnly_data()
{
    QTest::addColumn<QStringList>("call");
    QTest::addColumn<bool>("isAllowed");
    const auto row = [](const char *name, const QStringList &call, bool isAllowed) {
        QTest::newRow(name) << call << isAllowed;
    };
    const QString own = QStringLiteral("local.ZBUtilityd.UtilityDaemon.");
    const QString control = QStringLiteral("com.corvanta.VirtualDevice1.");
    row("getter", {own + QStringLiteral("getShip")}, true);
    row("setter", {own + QStringLiteral("setDisplayBrightness"), QStringLiteral("uint32:5")}, true);
    row("check", {own + QStringLiteral("checkInternetConnection")}, true);
    row("introspection", {QStringLiteral("org.freedesktop.DBus.Introspectable.Introspect")}, true);
    row("ping", {QStringLiteral("org.freedesktop.DBus.Peer.Ping")}, true);
    row("properties",
        {QStringLiteral("org.freedesktop.DBus.Properties.GetAll"),
         QStringLiteral("string:local.ZBUtilityd.UtilityDaemon")},
        true);
    row("control interface: records", {control + QStringLiteral("Calls")}, false);
    row("control interface: ship mode", {control + QStringLiteral("SetShip"), QStringLiteral("int32:2")},
        false);
    row("control interface: end", {control + QStringLiteral("Vanish")}, false);
    row("another interface", {QStringLiteral("com.example.Other.Method")}, false);
}

void BusPolicyTest::othersMayCallTheOwnInterfaceOnly()
{
    if (::geteuid() != 0)
        QSKIP("only root can become another user");
    QFETCH(QStringList, call);
    QFETCH(bool, isAllowed);
    const Result result =
        dbusSend(true, QStringList{QStringLiteral("--dest=") + service, QStringLiteral("/")} + call);
    QVERIFY2((result.exitCode == 0) == isAllowed, qPrintable(result.output));
    if (!isAllowed)
        QVERIFY2(result.output.startsWith(QLatin1String("Error org.freedesktop.DBus.Error.AccessDenied: ")),
                 qPrintable(result.output));
    QCOMPARE(m_daemon.state(), QProcess::Running);
}

void BusPolicyTest::othersMayNotOwnTheName()
{
    const QStringList request{QStringLiteral("--dest=org.freedesktop.DBus"), QStringLiteral("/"),
                              QStringLiteral("org.freedesktop.DBus.RequestName"),
                              QStringLiteral("string:") + service, QStringLiteral("uint32:4")};
    const Result result = dbusSend(::geteuid() == 0, request);
    QCOMPARE(result.exitCode, 1);
    QVERIFY2(result.output.startsWith(QLatin1String("Error org.freedesktop.DBus.Error.AccessDenied: ")),
             qPrintable(result.output));
}

void BusPolicyTest::anotherUsersDaemonSaysThatTheBusRefuses()
{
    // A bus on which nobody may own anything.
    PrivateBus bus({});
    QVERIFY2(bus.start(), qPrintable(bus.errorText()));
    QTemporaryDir state;
    ChildProcess daemon;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), bus.address());
    daemon.setProcessEnvironment(environment);
    daemon.start(qEnvironmentVariable("ZBVIRTUALDEVICE_UTILITYD"),
                 {QStringLiteral("--state-directory"), state.path()});
    QVERIFY(daemon.waitForFinished(10000));
    QCOMPARE(daemon.exitCode(), 1);
    const QString said = QString::fromUtf8(daemon.readAllStandardError());
    QVERIFY2(said.startsWith(QLatin1String("zbutilityd: the bus refuses the name com.corvanta.zbutility: ")),
             qPrintable(said));
    QCOMPARE(said.count(QLatin1Char('\n')), 1);
}

void BusPolicyTest::theBusStartsTheDaemon()
{
    // The installed file, with the program and the state folder of this test.
    QString activation = fileText(QStringLiteral(DBUS_BUILD_DIRECTORY "/com.corvanta.zbutility.service"));
    const QStringList commands = valuesOf(activation, QStringLiteral("Exec"));
    QCOMPARE(commands.size(), 1);
    QTemporaryDir services;
    const QString program = qEnvironmentVariable("ZBVIRTUALDEVICE_UTILITYD");
    activation.replace(
        QStringLiteral("Exec=") + commands.first(),
        QStringLiteral("Exec=%1 --virtual-device --state-directory %2/state").arg(program, services.path()));
    QVERIFY(
        writeFile(services.filePath(QStringLiteral("com.corvanta.zbutility.service")), activation.toUtf8()));

    PrivateBus bus(openRules() + QStringLiteral("<servicedir>%1</servicedir>").arg(services.path()));
    QVERIFY2(bus.start(), qPrintable(bus.errorText()));
    QDBusConnection connection = QDBusConnection::connectToBus(bus.address(), connectionName);
    const auto call = [&connection](const char *interface, const char *method,
                                    const QVariantList &arguments) {
        QDBusMessage message = QDBusMessage::createMethodCall(
            service, QStringLiteral("/"), QLatin1String(interface), QLatin1String(method));
        message.setArguments(arguments);
        return connection.call(message);
    };
    const QDBusMessage reply = call("local.ZBUtilityd.UtilityDaemon", "setDisplayBrightness", {5U});
    QVERIFY2(reply.type() == QDBusMessage::ReplyMessage, qPrintable(reply.errorMessage()));
    QCOMPARE(
        stateObject(services.filePath(QStringLiteral("state"))).value(QStringLiteral("displayBrightness")),
        QJsonValue(5));
    QCOMPARE(call("com.corvanta.VirtualDevice1", "Vanish", {}).type(), QDBusMessage::ReplyMessage);
    QTRY_VERIFY(!connection.interface()->isServiceRegistered(service));
    QDBusConnection::disconnectFromBus(connectionName);
}

void BusPolicyTest::activationFileAndUnitBelongTogether()
{
    const QString activation =
        fileText(QStringLiteral(DBUS_BUILD_DIRECTORY "/com.corvanta.zbutility.service"));
    const QString unit = fileText(QStringLiteral(DBUS_BUILD_DIRECTORY "/zbutilityd.service"));
    QCOMPARE(valuesOf(activation, QStringLiteral("Name")), QStringList{service});
    QCOMPARE(valuesOf(activation, QStringLiteral("SystemdService")),
             QStringList{QStringLiteral("zbutilityd.service")});
    QCOMPARE(valuesOf(activation, QStringLiteral("User")), QStringList{QStringLiteral("root")});
    QCOMPARE(valuesOf(unit, QStringLiteral("Type")), QStringList{QStringLiteral("dbus")});
    QCOMPARE(valuesOf(unit, QStringLiteral("BusName")), QStringList{service});
    QCOMPARE(valuesOf(unit, QStringLiteral("StateDirectory")), QStringList{QStringLiteral("zbutilityd")});
    QCOMPARE(valuesOf(unit, QStringLiteral("ExecStart")), valuesOf(activation, QStringLiteral("Exec")));
    QVERIFY(valuesOf(unit, QStringLiteral("ExecStart")).first().startsWith(QLatin1Char('/')));
    QVERIFY(valuesOf(unit, QStringLiteral("ExecStart")).first().endsWith(QLatin1String("/bin/zbutilityd")));
}

void BusPolicyTest::theUnitIsOneThatSystemdKnows()
{
    const QString analyze = QStandardPaths::findExecutable(QStringLiteral("systemd-analyze"));
    if (analyze.isEmpty())
        QSKIP("systemd-analyze, of the package systemd, is not installed");
    QTemporaryDir directory;
    QString unit = fileText(QStringLiteral(DBUS_BUILD_DIRECTORY "/zbutilityd.service"));
    const QStringList commands = valuesOf(unit, QStringLiteral("ExecStart"));
    QCOMPARE(commands.size(), 1);
    // The program that is named need not be installed here.
    unit.replace(QStringLiteral("ExecStart=") + commands.first(), QStringLiteral("ExecStart=/bin/true"));
    const QString path = directory.filePath(QStringLiteral("zbutilityd.service"));
    QVERIFY(writeFile(path, unit.toUtf8()));
    const Result result = run(analyze, {QStringLiteral("verify"), QStringLiteral("--man=no"), path});
    QVERIFY2(result.exitCode == 0 && !result.output.contains(QLatin1String("zbutilityd.service")),
             qPrintable(result.output));
}

QTEST_GUILESS_MAIN(BusPolicyTest)
#include "tst_buspolicy.moc"
