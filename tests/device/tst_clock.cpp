// Setting the clock: what timedatectl is started with, and what is waited for.
#include "emissionrecorder.h"
#include "messagelog.h"
#include "patience.h"
#include "recordingtools.h"
#include "settingsfile.h"
#include "zbsettingsmain.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QPointer>
#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <limits>
#include <memory>

namespace {

const QString tool = QStringLiteral("timedatectl");

QProcess *clockProcessOf(const ZBSettingsMain &settings)
{
    const QList<QProcess *> processes = settings.findChildren<QProcess *>();
    return processes.size() == 1 ? processes.first() : nullptr;
}

} // namespace

class TestClock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void firstArgumentGoesBeforeTheColon_data();
    void firstArgumentGoesBeforeTheColon();
    void dateIsYearMonthDay_data();
    void dateIsYearMonthDay();
    void networkTimeIsOneOrZero_data();
    void networkTimeIsOneOrZero();
    void dateIsWaitedForTimeAndNetworkTimeAreNot_data();
    void dateIsWaitedForTimeAndNetworkTimeAreNot();
    void dateIsWaitedForUntilItEndsOnly();
    void processIsIdleAfterTheDate();
    void busyClockProcessLosesTheRequest_data();
    void busyClockProcessLosesTheRequest();
    void lostDateStillWaitsForTheRunThatItIsLostTo();
    void lostDateWaitsHalfASecondForARunThatStays();
    void dateThatTakesTooLongLosesTheNextRequest();
    void oneProcessObjectServesEveryOperation();
    void toolIsStartedForReadingAndWriting_data();
    void toolIsStartedForReadingAndWriting();
    void nothingIsStoredEmittedOrLogged_data();
    void nothingIsStoredEmittedOrLogged();

private:
    void startAfresh();
    qint64 timeOf(const QString &operation);

    std::unique_ptr<RecordingTools> m_tools;
    std::unique_ptr<ZBSettingsMain> m_settings;
    std::unique_ptr<MessageLog> m_log;
};

void TestClock::init()
{
    SettingsFile::removeAll();
    m_tools = std::make_unique<RecordingTools>();
    QVERIFY(m_tools->isReady());
    m_settings = std::make_unique<ZBSettingsMain>(nullptr, false);
    QVERIFY(clockProcessOf(*m_settings));
    m_log = std::make_unique<MessageLog>();
}

void TestClock::cleanup()
{
    m_tools->letGo();
    m_settings.reset();
    m_log.reset();
    m_tools.reset();
    SettingsFile::removeAll();
}

/// A clock process that no earlier attempt keeps busy.
void TestClock::startAfresh()
{
    cleanup();
    init();
}

void TestClock::firstArgumentGoesBeforeTheColon_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const char *first, const char *second, const char *text) {
        QTest::newRow(name) << QString::fromUtf8(first) << QString::fromUtf8(second)
                            << QString::fromUtf8(text);
    };
    row("two digits", "09", "05", "09:05");
    row("nothing is padded", "9", "5", "9:5");
    row("nothing is trimmed", " 9", "5 ", " 9:5 ");
    row("first empty", "", "05", ":05");
    row("second empty", "09", "", "09:");
    row("both empty", "", "", ":");
    row("out of range", "25", "61", "25:61");
    row("word", "noon", "-1", "noon:-1");
    row("like an option", "--help", "00", "--help:00");
    row("place marker of the second in the first", "%2", "05", "%2:05");
    row("place marker of the first in the second", "09", "%1", "09:%1");
    row("each other's place marker", "%2", "%1", "%2:%1");
    row("own place marker", "%1", "%2", "%1:%2");
    row("later place marker", "%3", "%99", "%3:%99");
    row("locale's place marker", "%L1", "%L2", "%L1:%L2");
    row("per cent", "100%", "%", "100%:%");
    row("shell", "$(reboot)", "`a`;'\"|&", "$(reboot):`a`;'\"|&");
    row("line end", "09\n", "\n05", "09\n:\n05");
    row("Arabic-Indic digits", "٠٩", "٠٥", "٠٩:٠٥");
    row("beyond 16 bits", "😀", "é", "😀:é");
}

void TestClock::firstArgumentGoesBeforeTheColon()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(QString, text);
    m_settings->setTime(first, second);
    QVERIFY(m_tools->waitForRuns(1));
    QCOMPARE(m_tools->commands(), QList<QStringList>({{tool, QStringLiteral("set-time"), text}}));
}

void TestClock::dateIsYearMonthDay_data()
{
    QTest::addColumn<QString>("year");
    QTest::addColumn<QString>("month");
    QTest::addColumn<QString>("day");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const char *year, const char *month, const char *day,
                        const char *text) {
        QTest::newRow(name) << QString::fromUtf8(year) << QString::fromUtf8(month) << QString::fromUtf8(day)
                            << QString::fromUtf8(text);
    };
    row("leap day", "2024", "02", "29", "2024-02-29");
    row("nothing is padded", "24", "2", "9", "24-2-9");
    row("nothing is trimmed", " 2024", " 2 ", "9 ", " 2024- 2 -9 ");
    row("no such day", "2023", "02", "29", "2023-02-29");
    row("year empty", "", "02", "29", "-02-29");
    row("month empty", "2024", "", "29", "2024--29");
    row("day empty", "2024", "02", "", "2024-02-");
    row("all empty", "", "", "", "--");
    row("place markers", "%3", "%1", "%2", "%3-%1-%2");
    row("own place markers", "%1", "%2", "%3", "%1-%2-%3");
    row("later place markers", "%4", "%10", "%", "%4-%10-%");
    row("shell", "2024;", "$(a)", "\"29'", "2024;-$(a)-\"29'");
    row("non-Latin", "二〇二四", "٠٢", "é", "二〇二四-٠٢-é");
}

void TestClock::dateIsYearMonthDay()
{
    QFETCH(QString, year);
    QFETCH(QString, month);
    QFETCH(QString, day);
    QFETCH(QString, text);
    m_settings->setDate(year, month, day);
    QVERIFY(m_tools->waitForRuns(1));
    QCOMPARE(m_tools->commands(), QList<QStringList>({{tool, QStringLiteral("set-time"), text}}));
}

void TestClock::networkTimeIsOneOrZero_data()
{
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<QString>("text");
    QTest::newRow("on") << true << QStringLiteral("1");
    QTest::newRow("off") << false << QStringLiteral("0");
}

void TestClock::networkTimeIsOneOrZero()
{
    QFETCH(bool, enabled);
    QFETCH(QString, text);
    m_settings->setAutoTime(enabled);
    QVERIFY(m_tools->waitForRuns(1));
    QCOMPARE(m_tools->commands(), QList<QStringList>({{tool, QStringLiteral("set-ntp"), text}}));
}

void TestClock::dateIsWaitedForTimeAndNetworkTimeAreNot_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<bool>("isWaitedFor");
    QTest::newRow("date") << QStringLiteral("date") << true;
    QTest::newRow("time") << QStringLiteral("time") << false;
    QTest::newRow("network time on") << QStringLiteral("on") << false;
    QTest::newRow("network time off") << QStringLiteral("off") << false;
}

namespace {

void perform(ZBSettingsMain &settings, const QString &operation)
{
    if (operation == QLatin1String("date"))
        settings.setDate(QStringLiteral("2024"), QStringLiteral("02"), QStringLiteral("29"));
    else if (operation == QLatin1String("time"))
        settings.setTime(QStringLiteral("09"), QStringLiteral("05"));
    else
        settings.setAutoTime(operation == QLatin1String("on"));
}

} // namespace

qint64 TestClock::timeOf(const QString &operation)
{
    QElapsedTimer timer;
    timer.start();
    perform(*m_settings, operation);
    return timer.elapsed();
}

void TestClock::dateIsWaitedForTimeAndNetworkTimeAreNot()
{
    QFETCH(QString, operation);
    QFETCH(bool, isWaitedFor);
    qint64 shortest = std::numeric_limits<qint64>::max();
    const auto attempt = [&] {
        startAfresh();
        m_tools->setSteps(tool, {RecordingTools::stay()});
        return shortest = qMin(shortest, timeOf(operation));
    };
    const QByteArray complaint = complaintAbout(attempt, isWaitedFor ? oneWait : noWait);
    QVERIFY2(complaint.isEmpty(), complaint.constData());
    QVERIFY2(!isWaitedFor || shortest >= toolTime, QByteArray::number(shortest).constData());
    QVERIFY(clockProcessOf(*m_settings)->state() != QProcess::NotRunning);
    QVERIFY(m_tools->waitForRuns(1));

    // Left running, not killed.
    m_tools->letGo();
    QProcess *const process = clockProcessOf(*m_settings);
    QTRY_COMPARE(process->state(), QProcess::NotRunning);
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
}

void TestClock::dateIsWaitedForUntilItEndsOnly()
{
    m_tools->setSteps(tool, {RecordingTools::pauseFor(100)});
    const qint64 elapsed = timeOf(QStringLiteral("date"));
    QVERIFY2(elapsed >= 100 && elapsed < toolTime, QByteArray::number(elapsed).constData());
}

void TestClock::processIsIdleAfterTheDate()
{
    perform(*m_settings, QStringLiteral("date"));
    QCOMPARE(clockProcessOf(*m_settings)->state(), QProcess::NotRunning);
    QCOMPARE(m_tools->runs().size(), 1);
    perform(*m_settings, QStringLiteral("time"));
    QVERIFY(m_tools->waitForRuns(2));
    QCOMPARE(m_tools->commands(),
             QList<QStringList>({{tool, QStringLiteral("set-time"), QStringLiteral("2024-02-29")},
                                 {tool, QStringLiteral("set-time"), QStringLiteral("09:05")}}));
}

void TestClock::busyClockProcessLosesTheRequest_data()
{
    QTest::addColumn<QString>("running");
    QTest::addColumn<QString>("lost");
    for (const char *const running : {"time", "on"}) {
        for (const char *const lost : {"date", "time", "on", "off"})
            QTest::addRow("%s while %s", lost, running)
                << QString::fromLatin1(running) << QString::fromLatin1(lost);
    }
}

void TestClock::busyClockProcessLosesTheRequest()
{
    QFETCH(QString, running);
    QFETCH(QString, lost);
    m_tools->setSteps(tool, {RecordingTools::stay()});
    perform(*m_settings, running);
    QVERIFY(m_tools->waitForRuns(1));
    const QList<QStringList> commands = m_tools->commands();
    const qint64 processId = clockProcessOf(*m_settings)->processId();

    perform(*m_settings, lost);
    QCOMPARE(clockProcessOf(*m_settings)->processId(), processId);
    QCOMPARE(m_log->texts(), QStringList());

    // It does not run later either.
    m_tools->letGo();
    QTRY_COMPARE(clockProcessOf(*m_settings)->state(), QProcess::NotRunning);
    QCOMPARE(m_tools->commands(), commands);
    perform(*m_settings, QStringLiteral("off"));
    QVERIFY(m_tools->waitForRuns(2));
    QCOMPARE(m_tools->commands(),
             commands + QList<QStringList>({{tool, QStringLiteral("set-ntp"), QStringLiteral("0")}}));
}

void TestClock::lostDateStillWaitsForTheRunThatItIsLostTo()
{
    m_tools->setSteps(tool, {RecordingTools::pauseFor(100)});
    perform(*m_settings, QStringLiteral("time"));
    const qint64 elapsed = timeOf(QStringLiteral("date"));
    QCOMPARE(clockProcessOf(*m_settings)->state(), QProcess::NotRunning);
    QVERIFY2(elapsed < toolTime, QByteArray::number(elapsed).constData());
    QCOMPARE(m_tools->commands(),
             QList<QStringList>({{tool, QStringLiteral("set-time"), QStringLiteral("09:05")}}));
    QCOMPARE(m_log->texts(), QStringList());
}

void TestClock::lostDateWaitsHalfASecondForARunThatStays()
{
    qint64 shortest = std::numeric_limits<qint64>::max();
    const auto attempt = [&] {
        startAfresh();
        m_tools->setSteps(tool, {RecordingTools::stay()});
        perform(*m_settings, QStringLiteral("time"));
        return shortest = qMin(shortest, timeOf(QStringLiteral("date")));
    };
    const QByteArray complaint = complaintAbout(attempt, oneWait);
    QVERIFY2(complaint.isEmpty(), complaint.constData());
    QVERIFY2(shortest >= toolTime, QByteArray::number(shortest).constData());
    QVERIFY(clockProcessOf(*m_settings)->state() != QProcess::NotRunning);
    QCOMPARE(m_tools->commands(),
             QList<QStringList>({{tool, QStringLiteral("set-time"), QStringLiteral("09:05")}}));
    QCOMPARE(m_log->texts(), QStringList());
}

void TestClock::dateThatTakesTooLongLosesTheNextRequest()
{
    m_tools->setSteps(tool, {RecordingTools::stay()});
    perform(*m_settings, QStringLiteral("date"));
    perform(*m_settings, QStringLiteral("off"));
    m_tools->letGo();
    QTRY_COMPARE(clockProcessOf(*m_settings)->state(), QProcess::NotRunning);
    QCOMPARE(m_tools->commands(),
             QList<QStringList>({{tool, QStringLiteral("set-time"), QStringLiteral("2024-02-29")}}));
}

void TestClock::oneProcessObjectServesEveryOperation()
{
    const QPointer<QProcess> process = clockProcessOf(*m_settings);
    QCOMPARE(process->parent(), m_settings.get());
    int runs = 0;
    for (const char *const operation : {"date", "time", "on", "off", "date"}) {
        perform(*m_settings, QString::fromLatin1(operation));
        QVERIFY(m_tools->waitForRuns(++runs));
        QTRY_COMPARE(process->state(), QProcess::NotRunning);
        QCOMPARE(clockProcessOf(*m_settings), process.data());
        QCOMPARE(process->program(), tool);
    }
}

void TestClock::toolIsStartedForReadingAndWriting_data()
{
    QTest::addColumn<QString>("operation");
    for (const char *const operation : {"date", "time", "on"})
        QTest::newRow(operation) << QString::fromLatin1(operation);
}

void TestClock::toolIsStartedForReadingAndWriting()
{
    QFETCH(QString, operation);
    m_tools->setSteps(tool, {RecordingTools::stay()});
    perform(*m_settings, operation);
    QVERIFY(m_tools->waitForRuns(1));
    QCOMPARE(m_tools->runs().first().standardInput, QByteArray("pipe"));
    QCOMPARE(clockProcessOf(*m_settings)->openMode(), QIODevice::OpenMode(QIODevice::ReadWrite));
}

void TestClock::nothingIsStoredEmittedOrLogged_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("fault");
    for (const char *const operation : {"date", "time", "on", "off"}) {
        for (const char *const fault :
             {"none", "missing", "not a program", "failing", "crashing", "talking", "busy"})
            QTest::addRow("%s, %s", operation, fault)
                << QString::fromLatin1(operation) << QString::fromLatin1(fault);
    }
}

void TestClock::nothingIsStoredEmittedOrLogged()
{
    QFETCH(QString, operation);
    QFETCH(QString, fault);
    const QByteArray content("[dateTime]\nautomaticDateTime=true\ndateFormat=dd.MM.yy\n");
    QVERIFY(SettingsFile::write(content));
    if (fault == QLatin1String("missing"))
        m_tools->remove(tool);
    else if (fault == QLatin1String("not a program"))
        m_tools->breakProgram(tool);
    else if (fault == QLatin1String("failing"))
        m_tools->setSteps(tool, {RecordingTools::complain(100), RecordingTools::exitWith(1)});
    else if (fault == QLatin1String("crashing"))
        m_tools->setSteps(tool, {RecordingTools::crash()});
    else if (fault == QLatin1String("talking"))
        m_tools->setOutput(tool, "all is well\n");
    else if (fault == QLatin1String("busy"))
        m_tools->setSteps(tool, {RecordingTools::stay()});
    QVERIFY(m_tools->isReady());
    if (fault == QLatin1String("busy")) {
        perform(*m_settings, QStringLiteral("time"));
        QVERIFY(m_tools->waitForRuns(1));
    }
    const EmissionRecorder recorder(m_settings.get());

    perform(*m_settings, operation);
    m_tools->letGo();
    QTRY_COMPARE(clockProcessOf(*m_settings)->state(), QProcess::NotRunning);
    QCOMPARE(SettingsFile::content(), content);
    QCOMPARE(recorder.names(), QStringList());
    QCOMPARE(m_log->texts(), QStringList());
}

QTEST_GUILESS_MAIN(TestClock)
#include "tst_clock.moc"
