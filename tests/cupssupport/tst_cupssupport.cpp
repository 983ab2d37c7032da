// CupsSupport: every getter and setter by the letters in the file, whoever wrote them.
#include "cupssupport.h"
#include "optionshome.h"

#include <QtTest/QtTest>

#include <functional>

namespace {

/// One option: what to set, and what then stands in the file.
struct Row
{
    const char *name;
    std::function<void(CupsSupport &)> set;
    const char *assignment;
    std::function<double(const CupsSupport &)> get;
    double value;
};

#define ROW(property, argument, assignment)                                                                  \
    Row                                                                                                      \
    {                                                                                                        \
#property " " #argument, [](CupsSupport &options) { options.set##property(argument); }, assignment, \
        [](const CupsSupport &options) { return double(options.get##property()); }, double(argument)        \
    }
#define HEAD_ROW(head, argument, assignment)                                                                 \
    Row                                                                                                      \
    {                                                                                                        \
        "head " #head " " #argument,                                                                         \
            [](CupsSupport &options) { options.setColorHeadOffset(argument, head); }, assignment,            \
            [](const CupsSupport &options) { return double(options.getColorHeadOffset(head)); },             \
            double(argument)                                                                                 \
    }

const QVector<Row> &rows()
{
    static const QVector<Row> all{
        ROW(Orientation, CupsOrientationPortrait, "orientation-requested=3"),
        ROW(Orientation, CupsOrientationLandscape, "orientation-requested=4"),
        ROW(Orientation, CupsOrientationReverseLandscape, "orientation-requested=5"),
        ROW(Orientation, CupsOrientationReversePortrait, "orientation-requested=6"),
        ROW(Mirror, true, "MirrorPrint=True"),
        ROW(Mirror, false, "MirrorPrint=False"),
        ROW(Inverse, true, "NegativePrint=True"),
        ROW(Inverse, false, "NegativePrint=False"),
        ROW(Overprint, true, "Overprint=True"),
        ROW(Overprint, false, "Overprint=False"),
        ROW(WhiteBase, true, "WhiteBase=True"),
        ROW(WhiteBase, false, "WhiteBase=False"),
        ROW(RibbonSaver, true, "RibbonSaver=Enabled"),
        ROW(RibbonSaver, false, "RibbonSaver=Disabled"),
        ROW(Cut, 0, "CutMedia=0"),
        ROW(Cut, 1, "CutMedia=1"),
        ROW(Cut, 2, "CutMedia=2"),
        ROW(OffsetH1, 12, "Hoffset1=Custom.12"),
        ROW(OffsetH1, 0, "Hoffset1=0"),
        ROW(OffsetH2, -13, "Hoffset2=Custom.-13"),
        ROW(OffsetH2, 0, "Hoffset2=0"),
        ROW(OffsetV1, 2000, "Voffset1=Custom.2000"),
        ROW(OffsetV1, 0, "Voffset1=0"),
        ROW(OffsetV2, -2000, "Voffset2=Custom.-2000"),
        ROW(OffsetV2, 0, "Voffset2=0"),
        ROW(Feed, -77, "Feed=Custom.-77"),
        ROW(Feed, 0, "Feed=0"),
        ROW(Stop, 1.5, "Stop=Custom.1.5"),
        ROW(Stop, -3.0, "Stop=Custom.-3"),
        ROW(Stop, 0.1 + 0.2, "Stop=Custom.0.30000000000000004"),
        ROW(Stop, 0.0, "Stop=0"),
        ROW(Dithering, 0, "Dithering=0"),
        ROW(Dithering, 16, "Dithering=16"),
        ROW(Dithering, 17, "Dithering=17"),
        ROW(Dithering, 18, "Dithering=18"),
        ROW(Dithering, 20, "Dithering=20"),
        ROW(Dithering, 21, "Dithering=21"),
        ROW(Dithering, 24, "Dithering=24"),
        ROW(Dithering, 25, "Dithering=25"),
        ROW(Dithering, 32, "Dithering=32"),
        ROW(Dithering, 33, "Dithering=33"),
        ROW(Dithering, 65, "Dithering=65"),
        ROW(Dithering, 66, "Dithering=66"),
        HEAD_ROW(1, 7, "head1Offset=Custom.7"),
        HEAD_ROW(1, 0, "head1Offset=0"),
        HEAD_ROW(2, -50, "head2Offset=Custom.-50"),
        HEAD_ROW(2, 0, "head2Offset=0"),
        ROW(R1Tension, -3, "R1TensionAdjust=Custom.-3"),
        ROW(R1Tension, 0, "R1TensionAdjust=0"),
        ROW(R2Tension, 10, "R2TensionAdjust=Custom.10"),
        ROW(R2Tension, 0, "R2TensionAdjust=0"),
    };
    return all;
}

/// Every getter, in the order of the class.
QVector<double> values(const CupsSupport &options)
{
    return {double(options.getInverse()),
            double(options.getMirror()),
            double(options.getOverprint()),
            double(options.getWhiteBase()),
            double(options.getRibbonSaver()),
            double(options.getOrientation()),
            double(options.getDithering()),
            double(options.getCut()),
            double(options.getColorHeadOffset(1)),
            double(options.getColorHeadOffset(2)),
            double(options.getFeed()),
            options.getStop(),
            double(options.getOffsetH1()),
            double(options.getOffsetH2()),
            double(options.getOffsetV1()),
            double(options.getOffsetV2()),
            double(options.getR1Tension()),
            double(options.getR2Tension())};
}

} // namespace

class TestCupsSupport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void setterWritesAndGetterReads_data();
    void setterWritesAndGetterReads();
    void absentOptionsHaveTheirDefaults();
    void allOptionsInOneLine();
    void foreignForms_data();
    void foreignForms();
    void orientationZeroTakesTheOptionOut();
    void storedOrientationIsHandedOverAsItIs();
    void systemsFileStandsBehindTheUsers();
    void objectsSeeEachOthersChanges();
    void sameSizeChangesAreSeen();
    void removedFileIsSeen();
};

void TestCupsSupport::setterWritesAndGetterReads_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < rows().size(); ++i)
        QTest::newRow(rows().at(i).name) << i;
}

void TestCupsSupport::setterWritesAndGetterReads()
{
    QFETCH(int, index);
    const Row &row = rows().at(index);
    const OptionsHome home;
    CupsSupport options;
    row.set(options);
    QCOMPARE(home.text(), "Dest BrackenXL " + QByteArray(row.assignment) + '\n');
    QCOMPARE(row.get(options), row.value);
    QCOMPARE(row.get(CupsSupport()), row.value);
}

void TestCupsSupport::absentOptionsHaveTheirDefaults()
{
    const OptionsHome home;
    const CupsSupport options;
    QCOMPARE(values(options), QVector<double>(18, 0));
    QVERIFY(!QFileInfo::exists(home.cupsFolder()));
    QVERIFY(home.write("Dest Other MirrorPrint=True\nDest BrackenXL/draft MirrorPrint=True\n"));
    QCOMPARE(values(options), QVector<double>(18, 0));
}

void TestCupsSupport::allOptionsInOneLine()
{
    const OptionsHome home;
    QVERIFY(home.write(
        "Dest BrackenXL orientation-requested=5 MirrorPrint=True NegativePrint=True Overprint=True "
        "WhiteBase=True CutMedia=2 Hoffset1=Custom.12 Hoffset2=Custom.-13 Voffset1=Custom.5 "
        "Voffset2=Custom.-6 Feed=Custom.-77 Stop=Custom.1.5 Dithering=65 head1Offset=Custom.7 "
        "head2Offset=Custom.-8 R1TensionAdjust=Custom.-3 R2TensionAdjust=Custom.4 "
        "RibbonSaver=Enabled\n"));
    const CupsSupport options;
    const QVector<double> expected{1, 1, 1, 1, 1, 5, 65, 2, 7, -8, -77, 1.5, 12, -13, 5, -6, -3, 4};
    QCOMPARE(values(options), expected);
}

void TestCupsSupport::foreignForms_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QVector<double>>("mirrorRibbonFeedStop");
    const auto row = [](const char *line, const QVector<double> &expected) {
        QTest::newRow(line) << QByteArray(line) << expected;
    };
    row("MirrorPrint=yes RibbonSaver=enabled Feed=12 Stop=1.5", {1, 1, 12, 1.5});
    row("mirrorprint=true ribbonsaver=True FEED=+12 stop=-1", {1, 1, 12, -1});
    row("MirrorPrint noRibbonSaver Feed='Custom.3' Stop=\"Custom.2.5\"", {1, 0, 3, 2.5});
    row("MirrorPrint=maybe RibbonSaver=Sometimes Feed=much Stop=nan", {0, 0, 0, 0});
    row("Feed=Custom.99999 Stop=Custom.1,5", {0, 0, 99999, 1});
    row("Feed=1 Feed=2", {0, 0, 2, 0});
}

void TestCupsSupport::foreignForms()
{
    QFETCH(QByteArray, line);
    QFETCH(QVector<double>, mirrorRibbonFeedStop);
    const OptionsHome home;
    QVERIFY(home.write("Dest BrackenXL " + line + '\n'));
    const CupsSupport options;
    const QVector<double> found{double(options.getMirror()), double(options.getRibbonSaver()),
                                double(options.getFeed()), options.getStop()};
    QCOMPARE(found, mirrorRibbonFeedStop);
}

void TestCupsSupport::orientationZeroTakesTheOptionOut()
{
    const OptionsHome home;
    QVERIFY(home.write("Dest BrackenXL a=1 orientation-requested=4 b=2\n"));
    CupsSupport options;
    options.setOrientation(CupsOrientationNone);
    QCOMPARE(home.text(), QByteArray("Dest BrackenXL a=1 b=2\n"));
    QCOMPARE(int(options.getOrientation()), 0);
}

void TestCupsSupport::storedOrientationIsHandedOverAsItIs()
{
    const OptionsHome home;
    for (const int stored : {-1, 2, 7, 100}) {
        QVERIFY(home.write("Dest BrackenXL orientation-requested=" + QByteArray::number(stored) + '\n'));
        QCOMPARE(int(CupsSupport().getOrientation()), stored);
    }
}

void TestCupsSupport::systemsFileStandsBehindTheUsers()
{
    const OptionsHome home;
    QVERIFY(home.writeSystem("Dest BrackenXL MirrorPrint=True Feed=Custom.3\n"));
    QVERIFY(home.write("Dest BrackenXL Feed=Custom.4\n"));
    CupsSupport options;
    QVERIFY(options.getMirror());
    QCOMPARE(options.getFeed(), 4);
    options.setMirror(true);
    QCOMPARE(home.text(), QByteArray("Dest BrackenXL MirrorPrint=True Feed=Custom.4\n"));
    QVERIFY(home.writeSystem("Dest BrackenXL Overprint=True Feed=Custom.5\n"));
    QVERIFY(options.getMirror());
    QVERIFY(options.getOverprint());
    QCOMPARE(options.getFeed(), 4);
}

void TestCupsSupport::objectsSeeEachOthersChanges()
{
    const OptionsHome home;
    CupsSupport one;
    CupsSupport other;
    for (int value = 1; value < 20; ++value) {
        one.setFeed(value);
        QCOMPARE(other.getFeed(), value);
        other.setStop(-value);
        QCOMPARE(one.getStop(), double(-value));
    }
}

void TestCupsSupport::sameSizeChangesAreSeen()
{
    const OptionsHome home;
    CupsSupport writer;
    const CupsSupport reader;
    for (int i = 0; i < 60; ++i) {
        // Twice, so that the file may have the first one's inode again.
        writer.setCut(i % 3);
        writer.setCut((i + 1) % 3);
        QCOMPARE(reader.getCut(), (i + 1) % 3);
    }
}

void TestCupsSupport::removedFileIsSeen()
{
    const OptionsHome home;
    CupsSupport options;
    options.setFeed(3);
    QVERIFY(QFile::remove(home.userFile()));
    QCOMPARE(options.getFeed(), 0);
    options.setFeed(3);
    QCOMPARE(home.text(), QByteArray("Dest BrackenXL Feed=Custom.3\n"));
}

QTEST_APPLESS_MAIN(TestCupsSupport)
#include "tst_cupssupport.moc"
