// What a real scheduler gets: the test page's job carries every option that was set through the slots, by
// whatever way it was set, and whatever the scheduler did meanwhile.
#include "zbsettingsprinter.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtTest/QtTest>

#include <memory>

namespace {

using Attributes = QMap<QString, QString>;

/// The options of the printer as Get-Job-Attributes of ipptool(1) shows them when everything is set to
/// something.
const Attributes everythingSet{
    {QStringLiteral("orientation-requested"), QStringLiteral("reverse-portrait")},
    {QStringLiteral("MirrorPrint"), QStringLiteral("true")},
    {QStringLiteral("NegativePrint"), QStringLiteral("true")},
    {QStringLiteral("Overprint"), QStringLiteral("true")},
    {QStringLiteral("WhiteBase"), QStringLiteral("true")},
    {QStringLiteral("RibbonSaver"), QStringLiteral("Enabled")},
    {QStringLiteral("CutMedia"), QStringLiteral("2")},
    {QStringLiteral("Dithering"), QStringLiteral("65")},
    {QStringLiteral("Hoffset1"), QStringLiteral("Custom.12")},
    {QStringLiteral("Hoffset2"), QStringLiteral("Custom.-13")},
    {QStringLiteral("Voffset1"), QStringLiteral("Custom.5")},
    {QStringLiteral("Voffset2"), QStringLiteral("Custom.-6")},
    {QStringLiteral("Feed"), QStringLiteral("Custom.-77")},
    {QStringLiteral("Stop"), QStringLiteral("Custom.-3")},
    {QStringLiteral("head1Offset"), QStringLiteral("Custom.7")},
    {QStringLiteral("head2Offset"), QStringLiteral("Custom.-8")},
    {QStringLiteral("R1TensionAdjust"), QStringLiteral("Custom.-3")},
    {QStringLiteral("R2TensionAdjust"), QStringLiteral("Custom.4")},
};

void setEverything(ZBSettingsPrinter &printer)
{
    printer.setPrintOrientation(QStringLiteral("Portrait"));
    printer.setMirror(true);
    printer.setNegative(true);
    printer.setOverprint(true);
    printer.setWhitebase(true);
    printer.setRibbonSaver(true);
    printer.setCutOption(QStringLiteral("Cut After Job"));
    printer.setDitheringMethod(QStringLiteral("Grayscale Ribbon 1"));
    printer.setHorizontal1Offset(12);
    printer.setHorizontal2Offset(-13);
    printer.setVertical1Offset(5);
    printer.setVertical2Offset(-6);
    printer.setFeedOffset(-77);
    printer.setBackfeedOffset(-3);
    printer.setHead1HeatOffset(7);
    printer.setHead2HeatOffset(-8);
    printer.setR1Tension(-3);
    printer.setR2Tension(4);
}

/// As far from that as can be: everything off, 0, or another one.
const Attributes everythingReset{
    {QStringLiteral("orientation-requested"), QStringLiteral("reverse-landscape")},
    {QStringLiteral("MirrorPrint"), QStringLiteral("false")},
    {QStringLiteral("NegativePrint"), QStringLiteral("false")},
    {QStringLiteral("Overprint"), QStringLiteral("false")},
    {QStringLiteral("WhiteBase"), QStringLiteral("false")},
    {QStringLiteral("RibbonSaver"), QStringLiteral("Disabled")},
    {QStringLiteral("CutMedia"), QStringLiteral("0")},
    {QStringLiteral("Dithering"), QStringLiteral("0")},
    {QStringLiteral("Hoffset1"), QStringLiteral("0")},
    {QStringLiteral("Hoffset2"), QStringLiteral("0")},
    {QStringLiteral("Voffset1"), QStringLiteral("0")},
    {QStringLiteral("Voffset2"), QStringLiteral("0")},
    {QStringLiteral("Feed"), QStringLiteral("0")},
    {QStringLiteral("Stop"), QStringLiteral("0")},
    {QStringLiteral("head1Offset"), QStringLiteral("0")},
    {QStringLiteral("head2Offset"), QStringLiteral("0")},
    {QStringLiteral("R1TensionAdjust"), QStringLiteral("0")},
    {QStringLiteral("R2TensionAdjust"), QStringLiteral("0")},
};

void resetEverything(ZBSettingsPrinter &printer)
{
    printer.setPrintOrientation(QStringLiteral("Landscape"));
    printer.setMirror(false);
    printer.setNegative(false);
    printer.setOverprint(false);
    printer.setWhitebase(false);
    printer.setRibbonSaver(false);
    printer.setCutOption(QStringLiteral("No Cut"));
    printer.setDitheringMethod(QStringLiteral("Threshold (No) Dither"));
    printer.setHorizontal1Offset(0);
    printer.setHorizontal2Offset(0);
    printer.setVertical1Offset(0);
    printer.setVertical2Offset(0);
    printer.setFeedOffset(0);
    printer.setBackfeedOffset(0);
    printer.setHead1HeatOffset(0);
    printer.setHead2HeatOffset(0);
    printer.setR1Tension(0);
    printer.setR2Tension(0);
}

/// Standard output of a program; null when it did not end well.
QByteArray outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(20000) || process.exitStatus() != QProcess::NormalExit
        || process.exitCode() != 0)
        return {};
    const QByteArray output = process.readAllStandardOutput();
    return output.isNull() ? QByteArray("") : output;
}

QString printedFile(int job, const char *ending)
{
    return QStringLiteral("%1/job-%2.%3")
        .arg(QFile::decodeName(qgetenv("ZBVIRTUALDEVICE_PRINTED")))
        .arg(job)
        .arg(QLatin1String(ending));
}

/// The attributes of a job that the printer's options are among, as ipptool shows them.
Attributes attributesOfJob(int job)
{
    QString address = qEnvironmentVariable("ZBVIRTUALDEVICE_PRINTER");
    address.replace(QStringLiteral("/printers/BrackenXL"), QStringLiteral("/jobs/%1").arg(job));
    const QByteArray output =
        outputOf(QStringLiteral("ipptool"),
                 {QStringLiteral("-tv"), address, QStringLiteral("get-job-attributes.test")});
    static const QRegularExpression line(QStringLiteral("^ +(\\S+) \\([^)]*\\) = (.*)$"),
                                         QRegularExpression::MultilineOption);
    Attributes result;
    auto matches = line.globalMatch(QString::fromUtf8(output));
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        if (everythingSet.contains(match.captured(1)))
            result.insert(match.captured(1), match.captured(2));
    }
    return result;
}

bool tellScheduler(const char *word)
{
    return !outputOf(QFile::decodeName(qgetenv("ZBVIRTUALDEVICE_SCHEDULER")), {QLatin1String(word)}).isNull();
}

} // namespace

class TestPrintedOptions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void optionsSetThroughTheSlotsArriveInTheTestPage();
    void optionsOfALoadedPresetArriveInTheTestPage();
    void optionsSetWithoutASchedulerArriveWhenItIsBack();
    void hungSchedulerHoldsNobody();
    void otherProgramsPrintWithTheOptionsToo();
    void everyWidthPrintsItsPage_data();
    void everyWidthPrintsItsPage();

private:
    bool waitForNextJob();

    int m_job = 0;
};

void TestPrintedOptions::initTestCase()
{
    for (const char *const name :
         {"ZBVIRTUALDEVICE_PRINTED", "ZBVIRTUALDEVICE_PRINTER", "ZBVIRTUALDEVICE_SCHEDULER"})
        QVERIFY2(!qEnvironmentVariableIsEmpty(name), name);
}

void TestPrintedOptions::init()
{
    QDir(QDir::homePath() + QStringLiteral("/.cups")).removeRecursively();
}

void TestPrintedOptions::cleanup()
{
    if (QTest::currentTestFailed())
        tellScheduler("resume");
}

/// The scheduler numbers its jobs from 1 on.
bool TestPrintedOptions::waitForNextJob()
{
    ++m_job;
    return QTest::qWaitFor([this] { return QFile::exists(printedFile(m_job, "prn")); }, 20000);
}

void TestPrintedOptions::optionsSetThroughTheSlotsArriveInTheTestPage()
{
    ZBSettingsPrinter printer;
    setEverything(printer);
    printer.printTestPage(4);
    QVERIFY(waitForNextJob());
    QCOMPARE(attributesOfJob(m_job), everythingSet);

    resetEverything(printer);
    printer.printTestPage(4);
    QVERIFY(waitForNextJob());
    QCOMPARE(attributesOfJob(m_job), everythingReset);

    // What the driver gets of it.
    QFile options(printedFile(m_job, "opts"));
    QVERIFY(options.open(QIODevice::ReadOnly));
    const QByteArrayList words = options.readAll().trimmed().split(' ');
    for (const char *const word :
         {"noMirrorPrint", "noNegativePrint", "Feed=0", "CutMedia=0", "RibbonSaver=Disabled"})
        QVERIFY2(words.contains(word), word);
}

void TestPrintedOptions::optionsOfALoadedPresetArriveInTheTestPage()
{
    ZBSettingsPrinter printer;
    setEverything(printer);
    printer.addPreset(QStringLiteral("Shoes"));
    resetEverything(printer);
    QVERIFY(!printer.loadPreset(QStringLiteral("Shoes")).isEmpty());
    printer.printTestPage(4);
    QVERIFY(waitForNextJob());
    Attributes expected = everythingSet;
    // Left alone by presets, so as it was set last.
    expected.insert(QStringLiteral("RibbonSaver"), QStringLiteral("Disabled"));
    QCOMPARE(attributesOfJob(m_job), expected);
}

void TestPrintedOptions::optionsSetWithoutASchedulerArriveWhenItIsBack()
{
    QVERIFY(tellScheduler("kill"));
    ZBSettingsPrinter printer;
    setEverything(printer);
    QCOMPARE(ZBSettingsPrinter().feedOffset(), -77);
    QVERIFY(tellScheduler("start"));
    printer.printTestPage(4);
    QVERIFY(waitForNextJob());
    QCOMPARE(attributesOfJob(m_job), everythingSet);
}

void TestPrintedOptions::hungSchedulerHoldsNobody()
{
    QVERIFY(tellScheduler("pause"));
    QElapsedTimer timer;
    timer.start();
    ZBSettingsPrinter printer;
    setEverything(printer);
    printer.addPreset(QStringLiteral("Shoes"));
    resetEverything(printer);
    printer.loadPreset(QStringLiteral("Shoes"));
    printer.printTestPage(4);
    const qint64 milliseconds = timer.elapsed();
    QVERIFY(tellScheduler("resume"));
    // A call of the scheduler would have taken minutes.
    QVERIFY2(milliseconds < 5000, qPrintable(QString::number(milliseconds)));
    QVERIFY(waitForNextJob());
    QCOMPARE(attributesOfJob(m_job).value(QStringLiteral("Feed")), QStringLiteral("Custom.-77"));
}

void TestPrintedOptions::otherProgramsPrintWithTheOptionsToo()
{
    ZBSettingsPrinter printer;
    setEverything(printer);
    QFile document(QDir::homePath() + QStringLiteral("/label.txt"));
    QVERIFY(document.open(QIODevice::WriteOnly));
    document.write("a label\n");
    document.close();
    QVERIFY(!outputOf(QStringLiteral("lp"),
                      {QStringLiteral("-d"), QStringLiteral("BrackenXL"), document.fileName()})
                 .isNull());
    QVERIFY(waitForNextJob());
    QCOMPARE(attributesOfJob(m_job), everythingSet);
}

void TestPrintedOptions::everyWidthPrintsItsPage_data()
{
    QTest::addColumn<double>("width");
    QTest::addColumn<QString>("page");
    QTest::newRow("4") << 4.0 << QStringLiteral("testpage_4x4.tavo");
    QTest::newRow("6") << 6.0 << QStringLiteral("testpage_6x6.tavo");
    QTest::newRow("9") << 9.0 << QStringLiteral("testpage_9x9.tavo");
}

void TestPrintedOptions::everyWidthPrintsItsPage()
{
    QFETCH(double, width);
    QFETCH(QString, page);
    ZBSettingsPrinter().printTestPage(width);
    QVERIFY(waitForNextJob());
    QFile expected(QStringLiteral("/usr/share/data/Corvanta/TestPages/BrackenXL/") + page);
    QFile printed(printedFile(m_job, "prn"));
    QVERIFY(expected.open(QIODevice::ReadOnly));
    QVERIFY(printed.open(QIODevice::ReadOnly));
    const QByteArray content = expected.readAll();
    QVERIFY(!content.isEmpty());
    QCOMPARE(printed.readAll(), content);
}

QTEST_GUILESS_MAIN(TestPrintedOptions)
#include "tst_printedoptions.moc"
