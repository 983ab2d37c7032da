// The internet state from real routes, in a network of the test's own.
#include "networknamespace.h"
#include "privatebus.h"
#include "utilitydaemon.h"

#include <QtCore/QStandardPaths>
#include <QtDBus/QDBusConnection>
#include <QtTest/QtTest>

#include <utility>

class DaemonRoutesTest : public QObject
{
    Q_OBJECT

public:
    explicit DaemonRoutesTest(const QString &obstacle)
        : m_obstacle(obstacle)
    {
    }

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void theStateIsThatOfTheRoutes_data();
    void theStateIsThatOfTheRoutes();
    void theStateAtTheStartIsThatOfTheRoutes();
    void aChangeIsToldOnce_data();
    void aChangeIsToldOnce();
    void aChangeThatLeavesAWayIsNotTold();
    void aCheckIsToldAlways();
    void aFixedStateIgnoresTheRoutes();
    void changesThatTheKernelCouldNotTellAreFound();
    void nothingIsDoneWhileNothingChanges();

private:
    /// Runs ip(8) with each of the lines, which must succeed.
    void ip(const QStringList &lines);
    void removeNetwork();
    bool isConnected() const;

    QString m_obstacle;
    PrivateBus m_bus{openRules()};
    std::unique_ptr<UtilityDaemon> m_daemon;
    std::unique_ptr<QSignalSpy> m_told;
};

namespace {

QString ipProgram()
{
    const QString found = QStandardPaths::findExecutable(QStringLiteral("ip"));
    return found.isEmpty()
        ? QStandardPaths::findExecutable(QStringLiteral("ip"), {QStringLiteral("/usr/sbin")})
        : found;
}

/// Runs ip(8) with each of the lines.
bool runIp(const QStringList &options, const QStringList &lines, QString *said)
{
    ChildProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(ipProgram(), options + QStringList{QStringLiteral("-batch"), QStringLiteral("-")});
    process.write(lines.join(QLatin1Char('\n')).toUtf8() + '\n');
    process.closeWriteChannel();
    const bool isFinished = process.waitForFinished(30000);
    *said = QString::fromUtf8(process.readAll());
    return isFinished && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

bool hasInternetProtocol6()
{
    QFile disabled(QStringLiteral("/proc/sys/net/ipv6/conf/all/disable_ipv6"));
    return disabled.open(QIODevice::ReadOnly) && disabled.readAll().trimmed() == "0";
}

/// How many messages the kernel could not deliver to netlink sockets of this network, all sockets together.
qint64 lostNetlinkMessages()
{
    QFile file(QStringLiteral("/proc/self/net/netlink"));
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    qint64 sum = 0;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines.mid(1)) {
        const QList<QByteArray> columns = line.simplified().split(' ');
        if (columns.size() > 8)
            sum += columns[8].toLongLong();
    }
    return sum;
}

/// How often the threads of a process have given up the processor to wait for something.
qint64 waits(qint64 processId)
{
    qint64 sum = 0;
    const QDir tasks(QStringLiteral("/proc/%1/task").arg(processId));
    for (const QString &task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile status(tasks.filePath(task + QStringLiteral("/status")));
        if (!status.open(QIODevice::ReadOnly))
            continue;
        for (const QByteArray &line : status.readAll().split('\n')) {
            if (line.startsWith("voluntary_ctxt_switches:"))
                sum += line.mid(line.indexOf(':') + 1).trimmed().toLongLong();
        }
    }
    return sum;
}

} // namespace

void DaemonRoutesTest::initTestCase()
{
    if (!m_obstacle.isEmpty())
        QSKIP(qPrintable(m_obstacle));
    if (ipProgram().isEmpty())
        QSKIP("the program ip, of the package iproute2, is not installed");
    QVERIFY2(m_bus.start(), qPrintable(m_bus.errorText()));
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toLatin1());
    QVERIFY(QDBusConnection::systemBus().isConnected());
    ip({QStringLiteral("link set lo up")});
}

/// Two pairs of interfaces, each as good as a cable: lan0 with a router's address behind it, and lan1 as a
/// second way.
void DaemonRoutesTest::init()
{
    ip({
        QStringLiteral("link add lan0 type veth peer name router0"),
        QStringLiteral("link add lan1 type veth peer name router1"),
        QStringLiteral("link set lan0 up"),
        QStringLiteral("link set router0 up"),
        QStringLiteral("link set lan1 up"),
        QStringLiteral("link set router1 up"),
        QStringLiteral("address add 192.0.2.2/24 dev lan0"),
        QStringLiteral("address add 198.51.100.2/24 dev lan1"),
    });
    if (hasInternetProtocol6())
        ip({QStringLiteral("address add 2001:db8::2/64 dev lan0 nodad")});

    m_daemon = std::make_unique<UtilityDaemon>();
    m_told = std::make_unique<QSignalSpy>(m_daemon.get(), &UtilityDaemon::onInternetConnectionChanged);
    QVERIFY2(m_daemon->start(), qPrintable(m_daemon->errorText()));
    QVERIFY(!isConnected());
}

void DaemonRoutesTest::cleanup()
{
    m_told.reset();
    m_daemon.reset();
    removeNetwork();
}

void DaemonRoutesTest::ip(const QStringList &lines)
{
    QString said;
    QVERIFY2(runIp({}, lines, &said), qPrintable(said));
}

void DaemonRoutesTest::removeNetwork()
{
    // Removing the interfaces removes the routes through them. What is gone already does not count.
    QString said;
    runIp({QStringLiteral("-force")},
          {QStringLiteral("link del lan0"), QStringLiteral("link del lan1"),
           QStringLiteral("route flush root 0/0"), QStringLiteral("route flush root ::/0")},
          &said);
}

bool DaemonRoutesTest::isConnected() const
{
    const QDBusMessage reply = UtilityDaemon::call(QStringLiteral("getInternetConnection"));
    return reply.type() == QDBusMessage::ReplyMessage && reply.arguments().constFirst().toBool();
}

void DaemonRoutesTest::theStateIsThatOfTheRoutes_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("connected");
    const auto row = [](const char *name, const char *line, bool connected) {
        QTest::newRow(name) << QString::fromLatin1(line) << connected;
    };
    row("default route with a gateway", "route add default via 192.0.2.1", true);
    row("default route without one", "route add default dev lan0", true);
    row("default route with a high metric", "route add default via 192.0.2.1 metric 4000000000", true);
    row("two next hops", "route add default nexthop via 192.0.2.1 nexthop via 198.51.100.1", true);
    row("another table", "route add default via 192.0.2.1 table 100", false);
    row("through the loopback", "route add default dev lo", false);
    row("unreachable", "route add unreachable default", false);
    row("blackhole", "route add blackhole default", false);
    row("prohibit", "route add prohibit default", false);
    row("half of the addresses", "route add 0.0.0.0/1 via 192.0.2.1", false);
    row("a subnet", "route add 203.0.113.0/24 via 192.0.2.1", false);
    row("IPv6: default route", "route add ::/0 via 2001:db8::1", true);
    row("IPv6: unreachable", "route add unreachable ::/0 metric 1", false);
    row("IPv6: a subnet", "route add 2001:db8:1::/48 via 2001:db8::1", false);
}

void DaemonRoutesTest::theStateIsThatOfTheRoutes()
{
    QFETCH(QString, line);
    QFETCH(bool, connected);
    if (line.contains(QLatin1Char(':')) && !hasInternetProtocol6())
        QSKIP("this machine has no IPv6");
    ip({line});
    if (connected)
        QTRY_COMPARE(*m_told, QList<QVariantList>{{true}});
    // The check is told last, so everything that the change has brought is there with it.
    QCOMPARE(UtilityDaemon::call(QStringLiteral("checkInternetConnection")).type(),
             QDBusMessage::ReplyMessage);
    QTRY_COMPARE(m_told->size(), connected ? 2 : 1);
    QCOMPARE(m_told->last(), QVariantList{connected});
    QCOMPARE(isConnected(), connected);
}

void DaemonRoutesTest::theStateAtTheStartIsThatOfTheRoutes()
{
    QVERIFY(m_daemon->terminate());
    ip({QStringLiteral("route add default via 192.0.2.1")});
    QVERIFY2(m_daemon->start(), qPrintable(m_daemon->errorText()));
    QVERIFY(isConnected());
    QCoreApplication::processEvents();
    QVERIFY(m_told->isEmpty());
}

void DaemonRoutesTest::aChangeIsToldOnce_data()
{
    QTest::addColumn<QString>("loss");
    QTest::newRow("route removed") << QStringLiteral("route del default");
    QTest::newRow("interface down") << QStringLiteral("link set lan0 down");
    QTest::newRow("interface removed") << QStringLiteral("link del lan0");
    QTest::newRow("cable unplugged") << QStringLiteral("link set router0 down");
    QTest::newRow("address removed") << QStringLiteral("address del 192.0.2.2/24 dev lan0");
    QTest::newRow("route replaced") << QStringLiteral("route replace unreachable default");
}

void DaemonRoutesTest::aChangeIsToldOnce()
{
    QFETCH(QString, loss);
    ip({QStringLiteral("route add default via 192.0.2.1")});
    QTRY_COMPARE(*m_told, QList<QVariantList>{{true}});
    m_told->clear();

    ip({loss});
    QTRY_COMPARE(*m_told, QList<QVariantList>{{false}});
    QVERIFY(!isConnected());
}

void DaemonRoutesTest::aChangeThatLeavesAWayIsNotTold()
{
    ip({QStringLiteral("route add default via 192.0.2.1 metric 100")});
    QTRY_COMPARE(*m_told, QList<QVariantList>{{true}});
    m_told->clear();

    ip({QStringLiteral("route add default via 198.51.100.1 metric 200"),
        QStringLiteral("route del default metric 100"), QStringLiteral("link set lan0 down"),
        QStringLiteral("address add 203.0.113.7/24 dev lan1")});
    QCOMPARE(UtilityDaemon::call(QStringLiteral("checkInternetConnection")).type(),
             QDBusMessage::ReplyMessage);
    QTRY_VERIFY(!m_told->isEmpty());
    QCOMPARE(*m_told, QList<QVariantList>{{true}});
}

void DaemonRoutesTest::aCheckIsToldAlways()
{
    for (int round = 1; round <= 3; ++round) {
        QCOMPARE(UtilityDaemon::call(QStringLiteral("checkInternetConnection")).type(),
                 QDBusMessage::ReplyMessage);
        QTRY_COMPARE(m_told->size(), round);
        QCOMPARE(m_told->last(), QVariantList{false});
    }
}

void DaemonRoutesTest::aFixedStateIgnoresTheRoutes()
{
    QVERIFY(m_daemon->setInternetState(false));
    QTRY_COMPARE(m_told->size(), 1);
    m_told->clear();
    ip({QStringLiteral("route add default via 192.0.2.1")});
    QCOMPARE(UtilityDaemon::call(QStringLiteral("checkInternetConnection")).type(),
             QDBusMessage::ReplyMessage);
    QTRY_VERIFY(!m_told->isEmpty());
    QCOMPARE(*m_told, QList<QVariantList>{{false}});
    QVERIFY(!isConnected());

    m_told->clear();
    QVERIFY(m_daemon->followRoutes());
    QTRY_COMPARE(*m_told, QList<QVariantList>{{true}});
    QVERIFY(isConnected());
}

void DaemonRoutesTest::changesThatTheKernelCouldNotTellAreFound()
{
    const qint64 lostBefore = lostNetlinkMessages();
    QVERIFY(lostBefore >= 0);
    // More news than the socket of the halted daemon can hold, and the one that counts at the end.
    QVERIFY(m_daemon->stop());
    QStringList lines;
    for (int number = 0; number < 2000; ++number) {
        const QString address = QStringLiteral("10.%1.%2.0/24").arg(number / 250).arg(number % 250);
        lines += QStringLiteral("route add %1 dev lan0").arg(address);
    }
    ip(lines + QStringList{QStringLiteral("route add default via 192.0.2.1")});
    QVERIFY(lostNetlinkMessages() > lostBefore);

    QVERIFY(m_daemon->resume());
    QTRY_COMPARE(*m_told, QList<QVariantList>{{true}});
    // It still hears what comes after.
    ip({QStringLiteral("route del default")});
    QTRY_COMPARE(m_told->size(), 2);
    QCOMPARE(m_told->last(), QVariantList{false});
    QCOMPARE(m_daemon->standardError(), QString());
}

void DaemonRoutesTest::nothingIsDoneWhileNothingChanges()
{
    // New interfaces keep the kernel busy for a while: it looks for neighbours and routers, and tells of it.
    removeNetwork();
    QVERIFY(!isConnected());
    // The threads of the daemon need a moment to fall asleep after the call.
    qint64 before = waits(m_daemon->processId());
    const auto isAsleep = [this, &before] {
        QTest::qWait(100);
        const qint64 now = waits(m_daemon->processId());
        return now == std::exchange(before, now);
    };
    QTRY_VERIFY(isAsleep());
    QTest::qWait(1000);
    QCOMPARE(waits(m_daemon->processId()), before);
}

int main(int argc, char **argv)
{
    const QString obstacle = enterPrivateNetwork();
    QCoreApplication application(argc, argv);
    DaemonRoutesTest test(obstacle);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_daemonroutes.moc"
