// Tools that are missing, hang, fail or print what no tool should: no operation holds the event loop longer
// than it may, and what the tool had printed by then is what the page gets.
#include "heartbeat.h"
#include "messagelog.h"
#include "patience.h"
#include "recordingtools.h"
#include "settingsfile.h"
#include "zbsettingsmain.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <functional>
#include <memory>

namespace {

constexpr int megabyte = 1024 * 1024;
const char *const programs[] = {"timedatectl", "fw_printenv", "fw_setenv", "df", "cat"};

QByteArray garbage(int size)
{
    // The same on every run, with every byte in it but NUL.
    QByteArray bytes(size, Qt::Uninitialized);
    quint32 state = 20240229;
    for (char &byte : bytes) {
        state = state * 1664525 + 1013904223;
        byte = char(state >> 24) ? char(state >> 24) : 'x';
    }
    return bytes;
}

struct Fault
{
    const char *name;
    std::function<void(RecordingTools &, const QString &program)> lay;
};

/// The faults that differ most in how a tool ends, if it does.
bool isAmongTheWorst(const Fault &fault)
{
    return QStringList{QStringLiteral("missing"), QStringLiteral("hanging")}.contains(
        QLatin1String(fault.name));
}

const QVector<Fault> &faults()
{
    using Tools = RecordingTools;
    static const QVector<Fault> all{
        {"none", [](Tools &tools, const QString &program) { tools.setOutput(program, "fine\n"); }},
        {"missing", [](Tools &tools, const QString &program) { tools.remove(program); }},
        {"not a program", [](Tools &tools, const QString &program) { tools.breakProgram(program); }},
        {"failing",
         [](Tools &tools, const QString &program) {
             tools.setSteps(program, {Tools::complain(100), Tools::exitWith(1)});
         }},
        {"crashing", [](Tools &tools, const QString &program) { tools.setSteps(program, {Tools::crash()}); }},
        {"garbage", [](Tools &tools, const QString &program) { tools.setOutput(program, garbage(100000)); }},
        {"NUL bytes",
         [](Tools &tools, const QString &program) { tools.setOutput(program, QByteArray(100000, '\0')); }},
        {"10 MB",
         [](Tools &tools, const QString &program) {
             tools.setOutput(program, QByteArray(10 * megabyte, 'x'));
         }},
        {"10 MB of lines",
         [](Tools &tools, const QString &program) {
             tools.setOutput(program, QByteArray("1\n").repeated(5 * megabyte));
         }},
        {"10 MB of complaints",
         [](Tools &tools, const QString &program) {
             tools.setSteps(program, {Tools::complain(10 * megabyte)});
         }},
        {"hanging", [](Tools &tools, const QString &program) { tools.setSteps(program, {Tools::stay()}); }},
        {"hanging with its output closed",
         [](Tools &tools, const QString &program) {
             tools.setOutput(program, "fine\n", {Tools::print(), Tools::closeOutput(), Tools::stay()});
         }},
        {"output for ever",
         [](Tools &tools, const QString &program) { tools.setSteps(program, {Tools::printForever()}); }},
    };
    return all;
}

struct Operation
{
    const char *name;
    const char *program;
    Patience patience;
    std::function<void(ZBSettingsMain &)> run;
    /// Another operation runs its tool in the same way, or nothing is read from it: the worst faults will do.
    bool isPlain = false;
};

const QVector<Operation> &operations()
{
    static const QVector<Operation> all{
        {"time", "timedatectl", noWait,
         [](ZBSettingsMain &settings) { settings.setTime(QStringLiteral("09"), QStringLiteral("05")); }},
        {"date", "timedatectl", oneWait,
         [](ZBSettingsMain &settings) {
             settings.setDate(QStringLiteral("2024"), QStringLiteral("02"), QStringLiteral("29"));
         }},
        {"network time", "timedatectl", noWait, [](ZBSettingsMain &settings) { settings.setAutoTime(true); },
         true},
        {"serial number", "fw_printenv", oneWait, [](ZBSettingsMain &settings) { settings.getAboutInfo(0); },
         true},
        {"storage", "df", oneWait, [](ZBSettingsMain &settings) { settings.getAboutInfo(2); }},
        {"Ethernet address", "fw_printenv", oneWait,
         [](ZBSettingsMain &settings) { settings.getAboutInfo(3); }, true},
        {"wireless address", "cat", oneWait, [](ZBSettingsMain &settings) { settings.getAboutInfo(4); },
         true},
        {"calibration", "fw_printenv", oneWait, [](ZBSettingsMain &settings) { settings.getAboutInfo(6); },
         true},
        {"offsets as lines", "fw_printenv", oneWait,
         [](ZBSettingsMain &settings) { settings.formatOffsets(); }},
        {"calibration reset", "fw_setenv", threeDetachedStarts,
         [](ZBSettingsMain &settings) { settings.resetSupplyCalibration(); }, true},
        {"ship mode", "fw_printenv", oneWait, [](ZBSettingsMain &settings) { settings.isMilitaryShipped(); }},
    };
    return all;
}

} // namespace

class TestBrokenTools : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void eventLoopIsNotHeldLongerThanAllowed_data();
    void eventLoopIsNotHeldLongerThanAllowed();
    void tenMegabytesAreReturnedWhole();
    void tenMegabytesOfComplaintsDoNotStopTheTool();
    void outputForEverDoesNotFillTheMemory();
    void garbageIsReturnedUpToTheFirstNulByte();
    void partialOutputIsReturnedAndTheToolLeftRunning();
    void laterOutputIsNotKept();
    void settingsGoWhileToolsHang();
    void otherFieldsWorkWhileAToolHangs();

private:
    void startAfresh();

    std::unique_ptr<RecordingTools> m_tools;
    std::unique_ptr<ZBSettingsMain> m_settings;
    std::unique_ptr<MessageLog> m_log;
};

void TestBrokenTools::init()
{
    SettingsFile::removeAll();
    m_tools = std::make_unique<RecordingTools>();
    QVERIFY(m_tools->isReady());
    // That no utility daemon is there is said when the object is made.
    m_log = std::make_unique<MessageLog>();
    m_settings = std::make_unique<ZBSettingsMain>(nullptr, false);
    m_log->clear();
    m_tools->clear();
}

void TestBrokenTools::cleanup()
{
    m_tools->letGo();
    m_settings.reset();
    m_log.reset();
    m_tools.reset();
    SettingsFile::removeAll();
}

/// Without the tools that an earlier attempt has left running.
void TestBrokenTools::startAfresh()
{
    cleanup();
    init();
}

void TestBrokenTools::eventLoopIsNotHeldLongerThanAllowed_data()
{
    QTest::addColumn<int>("operation");
    QTest::addColumn<int>("fault");
    for (int i = 0; i < operations().size(); ++i) {
        for (int j = 0; j < faults().size(); ++j) {
            if (!operations().at(i).isPlain || isAmongTheWorst(faults().at(j)))
                QTest::addRow("%s, %s", operations().at(i).name, faults().at(j).name) << i << j;
        }
    }
}

void TestBrokenTools::eventLoopIsNotHeldLongerThanAllowed()
{
    QFETCH(int, operation);
    QFETCH(int, fault);
    const Operation &what = operations().at(operation);
    const Fault &how = faults().at(fault);
    const bool isForEver = qstrcmp(how.name, "output for ever") == 0;
    const int afterwards = isForEver ? 200 : 20;
    const auto attempt = [&] {
        startAfresh();
        how.lay(*m_tools, QString::fromLatin1(what.program));
        return Heartbeat::longestPauseAround([&] { what.run(*m_settings); }, afterwards);
    };
    const bool isTakenIn = isForEver && what.patience.shortestAttempt > toolTime;
    const QByteArray complaint = complaintAbout(attempt, isTakenIn ? oneWaitAndMegabytes : what.patience);
    QVERIFY(m_tools->isReady());
    QVERIFY2(complaint.isEmpty(), complaint.constData());
    // Of the tool nothing is said, only of the daemon, which this test runs without.
    const QStringList log = m_log->texts();
    QCOMPARE(log.size(), qstrcmp(what.name, "ship mode") == 0 ? 1 : 0);
    QVERIFY(log.isEmpty() || log.first().startsWith(QLatin1String("DBus Reply(getShip) is inValid ")));
}

void TestBrokenTools::tenMegabytesAreReturnedWhole()
{
    const QByteArray lines = QByteArray("0123456789abcde\n").repeated(10 * megabyte / 16);
    m_tools->setOutput(QStringLiteral("df"), lines);
    const QString text = m_settings->getAboutInfo(2);
    QCOMPARE(text.size(), 10 * megabyte);
    QVERIFY(text == QString::fromLatin1(lines));
}

void TestBrokenTools::tenMegabytesOfComplaintsDoNotStopTheTool()
{
    m_tools->setOutput(QStringLiteral("df"), "table\n",
                       {RecordingTools::complain(10 * megabyte), RecordingTools::print()});
    QCOMPARE(m_settings->getAboutInfo(2), QStringLiteral("table\n"));
}

void TestBrokenTools::outputForEverDoesNotFillTheMemory()
{
    m_tools->setSteps(QStringLiteral("df"), {RecordingTools::printForever()});
    const QString text = m_settings->getAboutInfo(2);
    QVERIFY2(text.size() >= 10 * megabyte && text.size() <= 32 * megabyte,
             QByteArray::number(text.size()).constData());
    QCOMPARE(text.count(QLatin1Char('x')), text.size());
    QProcess *const process = m_settings->findChildren<QProcess *>().last();
    QCOMPARE(process->state(), QProcess::Running);
    QCOMPARE(process->bytesAvailable(), 0);
    // Nor afterwards, while the tool goes on.
    QTest::qWait(200);
    QCOMPARE(process->bytesAvailable(), 0);
}

void TestBrokenTools::garbageIsReturnedUpToTheFirstNulByte()
{
    const QByteArray bytes = garbage(1000);
    m_tools->setOutput(QStringLiteral("df"), bytes + '\0' + garbage(1000));
    QCOMPARE(m_settings->getAboutInfo(2), QString::fromUtf8(bytes));
}

void TestBrokenTools::partialOutputIsReturnedAndTheToolLeftRunning()
{
    m_tools->setOutput(QStringLiteral("fw_printenv"), "1\n2\n",
                       {RecordingTools::print(), RecordingTools::pauseFor(100), RecordingTools::print(),
                        RecordingTools::stay()});
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(m_settings->getAboutInfo(5), QStringLiteral("1\n2\n1\n2\n"));
    QVERIFY2(timer.elapsed() >= toolTime && timer.elapsed() <= oneWait.anyAttempt,
             QByteArray::number(timer.elapsed()).constData());
    QProcess *const process = m_settings->findChildren<QProcess *>().last();
    QCOMPARE(process->state(), QProcess::Running);
    QCOMPARE(process->processId(), m_tools->runs().first().processId);
    m_tools->letGo();
    QTRY_COMPARE(process->state(), QProcess::NotRunning);
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
}

void TestBrokenTools::laterOutputIsNotKept()
{
    m_tools->setOutput(QStringLiteral("df"), QByteArray(megabyte, 'x'),
                       {RecordingTools::stay(), RecordingTools::print()});
    QCOMPARE(m_settings->getAboutInfo(2), QString());
    QProcess *const process = m_settings->findChildren<QProcess *>().last();
    m_tools->letGo();
    QTRY_COMPARE(process->state(), QProcess::NotRunning);
    QCOMPARE(process->bytesAvailable(), 0);
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
}

void TestBrokenTools::settingsGoWhileToolsHang()
{
    for (const char *const program : programs)
        m_tools->setSteps(QString::fromLatin1(program), {RecordingTools::stay()});
    m_settings->setAutoTime(true);
    m_settings->getAboutInfo(0);
    m_settings->getAboutInfo(2);
    m_settings->getAboutInfo(4);
    QVERIFY(m_tools->waitForRuns(4));
    QElapsedTimer timer;
    timer.start();
    m_settings.reset();
    QVERIFY2(timer.elapsed() <= noWait.anyAttempt, QByteArray::number(timer.elapsed()).constData());
    const QVector<RecordingTools::Run> runs = m_tools->runs();
    for (const RecordingTools::Run &run : runs)
        QVERIFY(!QFileInfo::exists(QStringLiteral("/proc/%1").arg(run.processId)));
}

void TestBrokenTools::otherFieldsWorkWhileAToolHangs()
{
    m_tools->setSteps(QStringLiteral("df"), {RecordingTools::stay()});
    m_tools->setOutput(QStringLiteral("cat"), "02:00:5e:10:00:01\n");
    QCOMPARE(m_settings->getAboutInfo(2), QString());
    QCOMPARE(m_settings->getAboutInfo(4), QStringLiteral("02:00:5e:10:00:01\n"));
    m_settings->setTime(QStringLiteral("09"), QStringLiteral("05"));
    QVERIFY(m_tools->waitForRuns(3));
}

QTEST_GUILESS_MAIN(TestBrokenTools)
#include "tst_brokentools.moc"
