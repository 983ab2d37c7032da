// Setting the clock with the real timedatectl(1) and systemd-timedated: what reaches the device's clock, and
// that a refusal changes nothing.
#include "emissionrecorder.h"
#include "keyboardenvironment.h"
#include "messagelog.h"
#include "patience.h"
#include "zbsettingsmain.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QProcess>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVariant>
#include <QtTest/QtTest>

#include <csignal>
#include <limits>
#include <memory>

namespace {

constexpr int secondsOfADay = 24 * 60 * 60;

const QString service = QStringLiteral("org.freedesktop.timedate1");

/// The clock settings so far, in whole seconds since 1970.
QVector<qint64> clockSettings()
{
    QVector<qint64> result;
    QFile log(qEnvironmentVariable("ZBVIRTUALDEVICE_CLOCK_LOG"));
    if (log.open(QIODevice::ReadOnly)) {
        const QList<QByteArray> lines = log.readAll().split('\n');
        for (const QByteArray &line : lines) {
            if (!line.isEmpty())
                result.append(line.split('.').first().toLongLong());
        }
    }
    return result;
}

bool isNetworkTimeOn()
{
    QDBusMessage call = QDBusMessage::createMethodCall(service, QStringLiteral("/org/freedesktop/timedate1"),
                                                       QStringLiteral("org.freedesktop.DBus.Properties"),
                                                       QStringLiteral("Get"));
    call.setArguments({service, QStringLiteral("NTP")});
    const QDBusMessage reply = QDBusConnection::systemBus().call(call);
    return reply.arguments().value(0).value<QDBusVariant>().variant().toBool();
}

bool setJobTime(uint milliseconds)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.systemd1"), QStringLiteral("/com/corvanta/VirtualServiceManager"),
        QStringLiteral("com.corvanta.VirtualServiceManager1"), QStringLiteral("SetJobTime"));
    call.setArguments({milliseconds});
    return QDBusConnection::systemBus().call(call).type() == QDBusMessage::ReplyMessage;
}

/// timedated adds the time that has passed since the request.
bool isAbout(qint64 seconds, qint64 expected)
{
    return seconds >= expected && seconds <= expected + 2;
}

} // namespace

class TestRealClock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void networkTimeIsTurnedOffAndOn();
    void dateReachesTheClockBeforeTheCallReturns();
    void hoursComeFirst();
    void dateThatTheCalendarDoesNotHaveIsTheToolsAffair();
    void refusalChangesNothing_data();
    void refusalChangesNothing();
    void timeIsRefusedWhileNetworkTimeIsOn();
    void timeIsRefusedWhileNetworkTimeIsBeingTurnedOff();
    void dateIsWaitedForHalfASecondWhenNobodyAnswers();

private:
    QProcess *clockProcess() const { return m_settings->findChildren<QProcess *>().first(); }
    /// Turns network time off and waits until it really is.
    void turnNetworkTimeOff();
    int exitStatusOfTheTool();

    std::unique_ptr<ZBSettingsMain> m_settings;
};

void TestRealClock::initTestCase()
{
    KeyboardEnvironment::folder();
}

void TestRealClock::init()
{
    m_settings = std::make_unique<ZBSettingsMain>(nullptr, false);
    m_settings->setAutoTime(true);
    QCOMPARE(exitStatusOfTheTool(), 0);
    QTRY_VERIFY(isNetworkTimeOn());
}

void TestRealClock::cleanup()
{
    setJobTime(50);
    m_settings.reset();
}

int TestRealClock::exitStatusOfTheTool()
{
    return QTest::qWaitFor([this] { return clockProcess()->state() == QProcess::NotRunning; })
        ? clockProcess()->exitCode()
        : -1;
}

void TestRealClock::turnNetworkTimeOff()
{
    m_settings->setAutoTime(false);
    QCOMPARE(exitStatusOfTheTool(), 0);
    QTRY_VERIFY(!isNetworkTimeOn());
}

void TestRealClock::networkTimeIsTurnedOffAndOn()
{
    const MessageLog log;
    const EmissionRecorder recorder(m_settings.get());
    turnNetworkTimeOff();
    m_settings->setAutoTime(true);
    QCOMPARE(exitStatusOfTheTool(), 0);
    QTRY_VERIFY(isNetworkTimeOn());
    QCOMPARE(log.texts(), QStringList());
    QCOMPARE(recorder.names(), QStringList());
}

void TestRealClock::dateReachesTheClockBeforeTheCallReturns()
{
    turnNetworkTimeOff();
    const int count = clockSettings().size();
    m_settings->setDate(QStringLiteral("2024"), QStringLiteral("02"), QStringLiteral("29"));
    const QVector<qint64> settings = clockSettings();
    QCOMPARE(settings.size(), count + 1);
    // Midnight: the tool takes a date alone so.
    QVERIFY2(isAbout(settings.last(), 1709164800), QByteArray::number(settings.last()).constData());
    QCOMPARE(clockProcess()->exitCode(), 0);
}

void TestRealClock::hoursComeFirst()
{
    turnNetworkTimeOff();
    const int count = clockSettings().size();
    m_settings->setTime(QStringLiteral("09"), QStringLiteral("05"));
    QCOMPARE(exitStatusOfTheTool(), 0);
    const QVector<qint64> settings = clockSettings();
    QCOMPARE(settings.size(), count + 1);
    QVERIFY2(isAbout(settings.last() % secondsOfADay, 9 * 3600 + 5 * 60),
             QByteArray::number(settings.last()).constData());
}

void TestRealClock::dateThatTheCalendarDoesNotHaveIsTheToolsAffair()
{
    turnNetworkTimeOff();
    m_settings->setDate(QStringLiteral("2023"), QStringLiteral("02"), QStringLiteral("29"));
    QCOMPARE(exitStatusOfTheTool(), 0);
    // 1 March 2023.
    QVERIFY(isAbout(clockSettings().last(), 1677628800));
}

void TestRealClock::refusalChangesNothing_data()
{
    QTest::addColumn<QStringList>("fields");
    QTest::newRow("hour out of range") << QStringList{QStringLiteral("25"), QStringLiteral("00")};
    QTest::newRow("no hour") << QStringList{QString(), QStringLiteral("05")};
    QTest::newRow("no minute") << QStringList{QStringLiteral("09"), QString()};
    QTest::newRow("word") << QStringList{QStringLiteral("noon"), QStringLiteral("00")};
    QTest::newRow("shell") << QStringList{QStringLiteral("$(date)"), QStringLiteral(";reboot")};
    QTest::newRow("no date") << QStringList{QString(), QString(), QString()};
    QTest::newRow("no month") << QStringList{QStringLiteral("2024"), QString(), QStringLiteral("29")};
    QTest::newRow("month out of range")
        << QStringList{QStringLiteral("2024"), QStringLiteral("13"), QStringLiteral("01")};
}

void TestRealClock::refusalChangesNothing()
{
    QFETCH(QStringList, fields);
    turnNetworkTimeOff();
    const QVector<qint64> before = clockSettings();
    const MessageLog log;
    if (fields.size() == 2)
        m_settings->setTime(fields.at(0), fields.at(1));
    else
        m_settings->setDate(fields.at(0), fields.at(1), fields.at(2));
    QCOMPARE(exitStatusOfTheTool(), 1);
    QCOMPARE(clockSettings(), before);
    QVERIFY(!isNetworkTimeOn());
    QCOMPARE(log.texts(), QStringList());
}

void TestRealClock::timeIsRefusedWhileNetworkTimeIsOn()
{
    const QVector<qint64> before = clockSettings();
    const MessageLog log;
    m_settings->setTime(QStringLiteral("09"), QStringLiteral("05"));
    QCOMPARE(exitStatusOfTheTool(), 1);
    m_settings->setDate(QStringLiteral("2024"), QStringLiteral("02"), QStringLiteral("29"));
    QCOMPARE(exitStatusOfTheTool(), 1);
    QCOMPARE(clockSettings(), before);
    QVERIFY(isNetworkTimeOn());
    QCOMPARE(log.texts(), QStringList());
}

void TestRealClock::timeIsRefusedWhileNetworkTimeIsBeingTurnedOff()
{
    const QVector<qint64> before = clockSettings();
    QVERIFY(setJobTime(1000));
    m_settings->setAutoTime(false);
    QCOMPARE(exitStatusOfTheTool(), 0);
    m_settings->setDate(QStringLiteral("2024"), QStringLiteral("02"), QStringLiteral("29"));
    QCOMPARE(exitStatusOfTheTool(), 1);
    QCOMPARE(clockSettings(), before);
    QTRY_VERIFY(!isNetworkTimeOn());
    m_settings->setDate(QStringLiteral("2024"), QStringLiteral("02"), QStringLiteral("29"));
    QCOMPARE(clockSettings().size(), before.size() + 1);
}

void TestRealClock::dateIsWaitedForHalfASecondWhenNobodyAnswers()
{
    turnNetworkTimeOff();
    const uint processId = QDBusConnection::systemBus().interface()->servicePid(service);
    QVERIFY(processId > 1);
    QCOMPARE(::kill(static_cast<pid_t>(processId), SIGSTOP), 0);
    qint64 shortest = std::numeric_limits<qint64>::max();
    // An attempt that follows is lost to the run of the first, and yet waits for it as long.
    const auto attempt = [&] {
        QElapsedTimer timer;
        timer.start();
        m_settings->setDate(QStringLiteral("2024"), QStringLiteral("02"), QStringLiteral("29"));
        const qint64 elapsed = timer.elapsed();
        shortest = qMin(shortest, elapsed);
        return elapsed;
    };
    const QByteArray complaint = complaintAbout(attempt, oneWait);
    m_settings.reset();
    QCOMPARE(::kill(static_cast<pid_t>(processId), SIGCONT), 0);
    QVERIFY2(shortest >= toolTime, QByteArray::number(shortest).constData());
    QVERIFY2(complaint.isEmpty(), complaint.constData());
}

QTEST_GUILESS_MAIN(TestRealClock)
#include "tst_realclock.moc"
