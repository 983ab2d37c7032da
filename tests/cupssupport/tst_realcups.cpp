// The options beside CUPS' own programs and a real scheduler, in a virtual device: what lpoptions writes is
// read, what is written lpoptions reads, and a scheduler that hangs or is gone changes nothing.
#include "cupssupport.h"

#include <QtTest/QtTest>

namespace {

QByteArray run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return "failed: " + process.readAllStandardError();
    return process.readAllStandardOutput();
}

QByteArray lpoptions(const QStringList &options)
{
    QStringList arguments{QStringLiteral("-p"), QStringLiteral("BrackenXL")};
    for (const QString &option : options)
        arguments << QStringLiteral("-o") << option;
    return run(QStringLiteral("lpoptions"), arguments);
}

QByteArray scheduler(const QString &action)
{
    return run(qEnvironmentVariable("ZBVIRTUALDEVICE_SCHEDULER"), {action});
}

void setAll(CupsSupport &options, int number)
{
    options.setOrientation(CupsOrientationReverseLandscape);
    options.setMirror(true);
    options.setInverse(true);
    options.setOverprint(true);
    options.setWhiteBase(true);
    options.setCut(2);
    options.setOffsetH1(number);
    options.setOffsetH2(-number);
    options.setOffsetV1(number + 1);
    options.setOffsetV2(-number - 1);
    options.setFeed(-77);
    options.setStop(1.5);
    options.setDithering(65);
    options.setColorHeadOffset(7, 1);
    options.setColorHeadOffset(-8, 2);
    options.setR1Tension(-3);
    options.setR2Tension(4);
    options.setRibbonSaver(true);
}

/// What lpoptions then says, in no order.
QList<QByteArray> allAssignments()
{
    return {"orientation-requested=5",
            "MirrorPrint=True",
            "NegativePrint=True",
            "Overprint=True",
            "WhiteBase=True",
            "CutMedia=2",
            "Hoffset1=Custom.12",
            "Hoffset2=Custom.-12",
            "Voffset1=Custom.13",
            "Voffset2=Custom.-13",
            "Feed=Custom.-77",
            "Stop=Custom.1.5",
            "Dithering=65",
            "head1Offset=Custom.7",
            "head2Offset=Custom.-8",
            "R1TensionAdjust=Custom.-3",
            "R2TensionAdjust=Custom.4",
            "RibbonSaver=Enabled"};
}

QList<QByteArray> missing(const QList<QByteArray> &assignments, const QByteArray &output)
{
    const QList<QByteArray> found = output.simplified().split(' ');
    QList<QByteArray> result;
    for (const QByteArray &assignment : assignments) {
        if (!found.contains(assignment))
            result.append(assignment);
    }
    return result;
}

} // namespace

class TestRealCups : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void optionsOfLpoptionsAreSeenByTheNextGetter();
    void lpoptionsSeesEveryOption();
    void bothKeepWhatTheOtherSet();
    void schedulerDoesNotMatter_data();
    void schedulerDoesNotMatter();
};

void TestRealCups::init()
{
    QFile::remove(QDir::homePath() + QStringLiteral("/.cups/lpoptions"));
}

void TestRealCups::optionsOfLpoptionsAreSeenByTheNextGetter()
{
    const CupsSupport options;
    for (int i = 1; i < 6; ++i) {
        const QString number = QString::number(i);
        QCOMPARE(
            lpoptions({QStringLiteral("MirrorPrint=")
                           + (i % 2 == 1 ? QStringLiteral("True") : QStringLiteral("False")),
                       QStringLiteral("Feed=Custom.-") + number, QStringLiteral("Stop=Custom.0.") + number}),
            QByteArray());
        QCOMPARE(options.getMirror(), i % 2 == 1);
        QCOMPARE(options.getFeed(), -i);
        QCOMPARE(options.getStop(), i / 10.0);
    }
}

void TestRealCups::lpoptionsSeesEveryOption()
{
    CupsSupport options;
    setAll(options, 12);
    QCOMPARE(missing(allAssignments(), lpoptions({})), QList<QByteArray>());
}

void TestRealCups::bothKeepWhatTheOtherSet()
{
    CupsSupport options;
    setAll(options, 12);
    QCOMPARE(lpoptions({QStringLiteral("note='two words'"), QStringLiteral("Feed=Custom.9")}), QByteArray());
    QCOMPARE(options.getFeed(), 9);
    QCOMPARE(options.getDithering(), 65);
    options.setFeed(-77);
    const QByteArray output = lpoptions({});
    QCOMPARE(missing(allAssignments(), output), QList<QByteArray>());
    QVERIFY2(output.contains("note='two words'"), output.constData());
}

void TestRealCups::schedulerDoesNotMatter_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("remedy");
    QTest::newRow("hangs") << QStringLiteral("pause") << QStringLiteral("resume");
    QTest::newRow("gone") << QStringLiteral("kill") << QStringLiteral("start");
}

void TestRealCups::schedulerDoesNotMatter()
{
    QFETCH(QString, fault);
    QFETCH(QString, remedy);
    QCOMPARE(scheduler(fault), QByteArray());
    QElapsedTimer timer;
    timer.start();
    CupsSupport options;
    setAll(options, 12);
    const int offset = options.getOffsetV2();
    const qint64 duration = timer.elapsed();
    QCOMPARE(scheduler(remedy), QByteArray());
    QCOMPARE(offset, -13);
    // Each request to a scheduler that hangs takes a minute and more.
    QVERIFY2(duration < 5000, qPrintable(QString::number(duration)));
    QCOMPARE(missing(allAssignments(), lpoptions({})), QList<QByteArray>());
}

QTEST_GUILESS_MAIN(TestRealCups)
#include "tst_realcups.moc"
