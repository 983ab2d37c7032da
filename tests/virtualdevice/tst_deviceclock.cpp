// The real timedatectl in the whole device: what it refuses, from when on it accepts, and what it sets.
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtDBus/QtDBus>
#include <QtTest/QtTest>

class DeviceClockTest : public QObject
{
    Q_OBJECT

public slots:
    void takeChange(const QString &interface, const QVariantMap &values, const QStringList &invalid);

private slots:
    void initTestCase();
    void init();
    void networkTimeIsOnFromTheBeginning();
    void timeIsRefusedWhileNetworkTimeIsOn();
    void timeIsRefusedUntilNetworkTimeIsReallyOff();
    void timeIsAcceptedOnceNetworkTimeIsSaidToBeOff();
    void jobTimeDecidesWhenNetworkTimeIsOff();
    void timesAreSetAndWrittenDown_data();
    void timesAreSetAndWrittenDown();
    void nonsenseIsRefused_data();
    void nonsenseIsRefused();
    void unknownUnitsAreRefused();
    void toolNeedsNoAddress();

private:
    void setNetworkTime(bool on);

    QStringList m_changes;
};

namespace {

struct Run
{
    int status = -1;
    QByteArray output;
    QByteArray errors;
};

Run timedatectl(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral("timedatectl"), arguments);
    if (!process.waitForFinished())
        return {};
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

QByteArray clockProperty(const char *name)
{
    return timedatectl({QStringLiteral("show"), QStringLiteral("--value"),
                        QStringLiteral("--property=") + QLatin1String(name)})
        .output.trimmed();
}

QByteArrayList clockLog()
{
    QFile file(qEnvironmentVariable("ZBVIRTUALDEVICE_CLOCK_LOG"));
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().split('\n') : QByteArrayList();
}

QDBusMessage callManager(const QString &path, const QString &interface, const QString &method,
                         const QVariantList &arguments)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.systemd1"), path, interface, method);
    call.setArguments(arguments);
    return QDBusConnection::systemBus().call(call);
}

bool setJobTime(uint milliseconds)
{
    return callManager(QStringLiteral("/com/corvanta/VirtualServiceManager"),
                       QStringLiteral("com.corvanta.VirtualServiceManager1"), QStringLiteral("SetJobTime"),
                       {milliseconds})
               .type()
        == QDBusMessage::ReplyMessage;
}

} // namespace

void DeviceClockTest::takeChange(const QString &, const QVariantMap &values, const QStringList &)
{
    if (values.contains(QStringLiteral("NTP")))
        m_changes.append(values.value(QStringLiteral("NTP")).toBool() ? QStringLiteral("on")
                                                                      : QStringLiteral("off"));
}

void DeviceClockTest::initTestCase()
{
    QVERIFY(QDBusConnection::systemBus().connect(QString(), QStringLiteral("/org/freedesktop/timedate1"),
                                                 QStringLiteral("org.freedesktop.DBus.Properties"),
                                                 QStringLiteral("PropertiesChanged"), this,
                                                 SLOT(takeChange(QString, QVariantMap, QStringList))));
}

void DeviceClockTest::init()
{
    QVERIFY(setJobTime(50));
}

void DeviceClockTest::setNetworkTime(bool on)
{
    if ((clockProperty("NTP") == "yes") == on)
        return;
    m_changes.clear();
    QCOMPARE(timedatectl({QStringLiteral("set-ntp"), on ? QStringLiteral("1") : QStringLiteral("0")}).status,
             0);
    QTRY_COMPARE(m_changes, QStringList{on ? QStringLiteral("on") : QStringLiteral("off")});
}

void DeviceClockTest::networkTimeIsOnFromTheBeginning()
{
    QCOMPARE(clockProperty("CanNTP"), QByteArray("yes"));
    QCOMPARE(clockProperty("NTP"), QByteArray("yes"));
}

void DeviceClockTest::timeIsRefusedWhileNetworkTimeIsOn()
{
    setNetworkTime(true);
    const QByteArrayList before = clockLog();
    const Run refused = timedatectl({QStringLiteral("set-time"), QStringLiteral("09:05")});
    QCOMPARE(refused.status, 1);
    QCOMPARE(refused.errors, QByteArray("Failed to set time: Automatic time synchronization is enabled\n"));
    QCOMPARE(clockLog(), before);
}

void DeviceClockTest::timeIsRefusedUntilNetworkTimeIsReallyOff()
{
    setNetworkTime(true);
    const QByteArrayList before = clockLog();
    // Longer than any machine takes for the two calls that follow.
    QVERIFY(setJobTime(3000));
    m_changes.clear();
    QCOMPARE(timedatectl({QStringLiteral("set-ntp"), QStringLiteral("0")}).status, 0);
    const Run refused = timedatectl({QStringLiteral("set-time"), QStringLiteral("09:05")});
    QCOMPARE(refused.status, 1);
    QCOMPARE(refused.errors, QByteArray("Failed to set time: Previous request is not finished, refusing.\n"));
    QCOMPARE(clockLog(), before);
    QCOMPARE(m_changes, QStringList());
    QTRY_COMPARE_WITH_TIMEOUT(m_changes, QStringList{QStringLiteral("off")}, 20000);
}

void DeviceClockTest::timeIsAcceptedOnceNetworkTimeIsSaidToBeOff()
{
    setNetworkTime(true);
    setNetworkTime(false);
    const Run accepted = timedatectl({QStringLiteral("set-time"), QStringLiteral("09:05")});
    QCOMPARE(accepted.errors, QByteArray());
    QCOMPARE(accepted.status, 0);
    QCOMPARE(clockProperty("NTP"), QByteArray("no"));
}

void DeviceClockTest::jobTimeDecidesWhenNetworkTimeIsOff()
{
    setNetworkTime(true);
    QVERIFY(setJobTime(700));
    QElapsedTimer timer;
    timer.start();
    setNetworkTime(false);
    QVERIFY2(timer.elapsed() >= 700, qPrintable(QString::number(timer.elapsed())));
}

void DeviceClockTest::timesAreSetAndWrittenDown_data()
{
    QTest::addColumn<QString>("time");
    QTest::addColumn<QByteArray>("seconds");
    QTest::newRow("date and time") << QStringLiteral("2024-02-29 09:05:30") << QByteArray("1709197530");
    QTest::newRow("a date alone is its midnight") << QStringLiteral("2024-02-29") << QByteArray("1709164800");
    QTest::newRow("a day too many is the next") << QStringLiteral("2023-02-29") << QByteArray("1677628800");
    QTest::newRow("long ago") << QStringLiteral("1970-01-02") << QByteArray("86400");
}

void DeviceClockTest::timesAreSetAndWrittenDown()
{
    QFETCH(QString, time);
    QFETCH(QByteArray, seconds);
    setNetworkTime(true);
    setNetworkTime(false);
    const int before = clockLog().size();
    const Run set = timedatectl({QStringLiteral("set-time"), time});
    QCOMPARE(set.errors, QByteArray());
    QCOMPARE(set.status, 0);
    const QByteArrayList lines = clockLog();
    QVERIFY(lines.size() >= before);
    const QList<QByteArray> parts = lines.constLast().split('.');
    QCOMPARE(parts.value(0), seconds);
    QCOMPARE(parts.value(1).size(), 9);
}

void DeviceClockTest::nonsenseIsRefused_data()
{
    QTest::addColumn<QString>("time");
    QTest::newRow("25:00") << QStringLiteral("25:00");
    QTest::newRow("empty") << QString();
    QTest::newRow("words") << QStringLiteral("half past nine");
}

void DeviceClockTest::nonsenseIsRefused()
{
    QFETCH(QString, time);
    const QByteArrayList before = clockLog();
    const Run refused = timedatectl({QStringLiteral("set-time"), time});
    QCOMPARE(refused.status, 1);
    QVERIFY2(refused.errors.startsWith("Failed to parse time "), refused.errors.constData());
    QCOMPARE(clockLog(), before);
}

void DeviceClockTest::unknownUnitsAreRefused()
{
    const QDBusMessage answer = callManager(
        QStringLiteral("/org/freedesktop/systemd1"), QStringLiteral("org.freedesktop.systemd1.Manager"),
        QStringLiteral("StartUnit"), {QStringLiteral("other.service"), QStringLiteral("replace")});
    QCOMPARE(answer.errorName(), QStringLiteral("org.freedesktop.systemd1.NoSuchUnit"));
}

void DeviceClockTest::toolNeedsNoAddress()
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral("timedatectl"),
                  {QStringLiteral("show"), QStringLiteral("--property=CanNTP")});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QCOMPARE(process.readAllStandardOutput(), QByteArray("CanNTP=yes\n"));
}

QTEST_GUILESS_MAIN(DeviceClockTest)
#include "tst_deviceclock.moc"
