// The test page: which file goes to lp, with which arguments, and that nobody waits for it.
#include "emissionrecorder.h"
#include "heartbeat.h"
#include "messagelog.h"
#include "recordingprinterlibraries.h"
#include "recordingtools.h"
#include "zbsettingsprinter.h"

#include <QtTest/QtTest>

#include <csignal>
#include <limits>
#include <memory>
#include <unistd.h>

class TestTestPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void pageSuitsTheWidthOfTheSupply_data();
    void pageSuitsTheWidthOfTheSupply();
    void nobodyWaitsForTheTool();
    void toolOutlivesTheObject();
    void toolThatCannotStartIsIgnored_data();
    void toolThatCannotStartIsIgnored();
    void toolHasNoChannelOfTheApplication();
    void noOptionIsReadOrSet();

private:
    std::unique_ptr<RecordingTools> m_tools;
    std::unique_ptr<ZBSettingsPrinter> m_printer;
    std::unique_ptr<MessageLog> m_log;
};

void TestTestPage::init()
{
    RecordingPrinterLibraries::reset();
    m_tools = std::make_unique<RecordingTools>();
    QVERIFY(m_tools->isReady());
    m_printer = std::make_unique<ZBSettingsPrinter>();
    m_log = std::make_unique<MessageLog>();
}

void TestTestPage::cleanup()
{
    m_tools->letGo();
    m_printer.reset();
    const QStringList logged = m_log->texts();
    m_log.reset();
    m_tools.reset();
    QCOMPARE(logged, QStringList());
}

void TestTestPage::pageSuitsTheWidthOfTheSupply_data()
{
    QTest::addColumn<double>("width");
    QTest::addColumn<QString>("page");
    const QString small = QStringLiteral("/usr/share/data/Corvanta/TestPages/BrackenXL/testpage_4x4.tavo");
    const QString medium = QStringLiteral("/usr/share/data/Corvanta/TestPages/BrackenXL/testpage_6x6.tavo");
    const QString large = QStringLiteral("/usr/share/data/Corvanta/TestPages/BrackenXL/testpage_9x9.tavo");
    QTest::newRow("0") << 0.0 << small;
    QTest::newRow("negative") << -5.0 << small;
    QTest::newRow("4") << 4.0 << small;
    QTest::newRow("a little more than 4") << 4.0000001 << medium;
    QTest::newRow("6") << 6.0 << medium;
    QTest::newRow("6.01") << 6.01 << large;
    QTest::newRow("a little more than 6") << 6.0000001 << large;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << large;
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << small;
}

void TestTestPage::pageSuitsTheWidthOfTheSupply()
{
    QFETCH(double, width);
    QFETCH(QString, page);
    m_printer->printTestPage(width);
    QVERIFY(m_tools->waitForRuns(1));
    QCOMPARE(m_tools->commands(),
             QList<QStringList>(
                 {{QStringLiteral("lp"), QStringLiteral("-d"), QStringLiteral("BrackenXL"), page}}));
}

void TestTestPage::nobodyWaitsForTheTool()
{
    m_tools->setSteps(QStringLiteral("lp"), {RecordingTools::stay()});
    QVERIFY2(Heartbeat::longestPauseAround([this] { m_printer->printTestPage(4); }) < 200,
             "held the event loop");
    QVERIFY(m_tools->waitForRuns(1));
    // Still running, and another page does not wait for it.
    QCOMPARE(::kill(pid_t(m_tools->runs().at(0).processId), 0), 0);
    m_printer->printTestPage(9);
    QVERIFY(m_tools->waitForRuns(2));
}

void TestTestPage::toolOutlivesTheObject()
{
    m_tools->setSteps(QStringLiteral("lp"), {RecordingTools::stay()});
    m_printer->printTestPage(4);
    QVERIFY(m_tools->waitForRuns(1));
    m_printer.reset();
    QCOMPARE(::kill(pid_t(m_tools->runs().at(0).processId), 0), 0);
}

void TestTestPage::toolThatCannotStartIsIgnored_data()
{
    QTest::addColumn<bool>("isThere");
    QTest::newRow("missing") << false;
    QTest::newRow("no program") << true;
}

void TestTestPage::toolThatCannotStartIsIgnored()
{
    QFETCH(bool, isThere);
    m_tools->remove(QStringLiteral("lp"));
    if (isThere)
        m_tools->breakProgram(QStringLiteral("lp"));
    const EmissionRecorder recorder(m_printer.get());
    m_printer->printTestPage(4);
    QCOMPARE(recorder.names(), QStringList());
}

// What it prints would stand in the application's output, and a hung lp would keep that open after its end.
void TestTestPage::toolHasNoChannelOfTheApplication()
{
    m_tools->setSteps(QStringLiteral("lp"), {RecordingTools::stay()});
    m_printer->printTestPage(4);
    QVERIFY(m_tools->waitForRuns(1));
    for (const int channel : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        QCOMPARE(QFile::symLinkTarget(
                     QStringLiteral("/proc/%1/fd/%2").arg(m_tools->runs().at(0).processId).arg(channel)),
                 QStringLiteral("/dev/null"));
}

void TestTestPage::noOptionIsReadOrSet()
{
    RecordingPrinterLibraries::takeCalls();
    m_printer->printTestPage(4);
    QVERIFY(m_tools->waitForRuns(1));
    QCOMPARE(RecordingPrinterLibraries::takeCalls(), QStringList());
}

QTEST_GUILESS_MAIN(TestTestPage)
#include "tst_testpage.moc"
