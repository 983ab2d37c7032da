// Values outside an option's range: what is set instead, and one line in the log for each option. The lines
// come once in a process, so each option has one row here and everything else runs before.
#include "cupssupport.h"
#include "messagelog.h"
#include "optionshome.h"

#include <QtTest/QtTest>

#include <cmath>
#include <functional>
#include <limits>

namespace {

struct Row
{
    const char *name;
    std::function<void(CupsSupport &)> set;
    const char *assignments; ///< what stands in the file then
    const char *message;
};

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr int largest = std::numeric_limits<int>::max();
constexpr int smallest = std::numeric_limits<int>::min();

const QVector<Row> &rows()
{
    static const QVector<Row> all{
        {"Feed", [](CupsSupport &o) { o.setFeed(2001); }, "Feed=Custom.2000",
         "printer option Feed cannot be 2001: set to 2000"},
        {"Hoffset1", [](CupsSupport &o) { o.setOffsetH1(-2001); }, "Hoffset1=Custom.-2000",
         "printer option Hoffset1 cannot be -2001: set to -2000"},
        {"Hoffset2", [](CupsSupport &o) { o.setOffsetH2(largest); }, "Hoffset2=Custom.2000",
         "printer option Hoffset2 cannot be 2.14748e+09: set to 2000"},
        {"Voffset1", [](CupsSupport &o) { o.setOffsetV1(smallest); }, "Voffset1=Custom.-2000",
         "printer option Voffset1 cannot be -2.14748e+09: set to -2000"},
        {"Voffset2", [](CupsSupport &o) { o.setOffsetV2(2001); }, "Voffset2=Custom.2000",
         "printer option Voffset2 cannot be 2001: set to 2000"},
        {"head1Offset", [](CupsSupport &o) { o.setColorHeadOffset(51, 1); }, "head1Offset=Custom.50",
         "printer option head1Offset cannot be 51: set to 50"},
        {"head2Offset", [](CupsSupport &o) { o.setColorHeadOffset(-51, 2); }, "head2Offset=Custom.-50",
         "printer option head2Offset cannot be -51: set to -50"},
        {"R1TensionAdjust", [](CupsSupport &o) { o.setR1Tension(11); }, "R1TensionAdjust=Custom.10",
         "printer option R1TensionAdjust cannot be 11: set to 10"},
        {"R2TensionAdjust", [](CupsSupport &o) { o.setR2Tension(-11); }, "R2TensionAdjust=Custom.-10",
         "printer option R2TensionAdjust cannot be -11: set to -10"},
        {"CutMedia", [](CupsSupport &o) { o.setCut(3); }, "CutMedia=2",
         "printer option CutMedia cannot be 3: set to 2"},
        {"Dithering", [](CupsSupport &o) { o.setDithering(19); }, "Dithering=0",
         "printer option Dithering cannot be 19: set to 0"},
        {"Stop", [](CupsSupport &o) { o.setStop(infinity); }, "Stop=0",
         "printer option Stop cannot be inf: set to 0"},
        {"orientation-requested", [](CupsSupport &o) { o.setOrientation(static_cast<_CupsOrientation>(7)); },
         "", "printer option orientation-requested cannot be 7: set to 0"},
    };
    return all;
}

} // namespace

class TestOptionRanges : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void limitsAreAllowedWithoutALine();
    void outsideIsClampedAndLoggedOnce_data();
    void outsideIsClampedAndLoggedOnce();
    void furtherValuesOutsideAreClampedSilently_data();
    void furtherValuesOutsideAreClampedSilently();
    void unknownHeadReadsZeroAndIsLoggedOnce();
};

void TestOptionRanges::limitsAreAllowedWithoutALine()
{
    const OptionsHome home;
    CupsSupport options;
    const MessageLog log;
    for (const int sign : {-1, 1}) {
        options.setFeed(sign * 2000);
        options.setStop(sign * 2000.0);
        options.setOffsetH1(sign * 2000);
        options.setOffsetH2(sign * 2000);
        options.setOffsetV1(sign * 2000);
        options.setOffsetV2(sign * 2000);
        options.setColorHeadOffset(sign * 50, 1);
        options.setColorHeadOffset(sign * 50, 2);
        options.setR1Tension(sign * 10);
        options.setR2Tension(sign * 10);
        options.setCut(sign < 0 ? 0 : 2);
        options.setDithering(sign < 0 ? 0 : 66);
        options.setOrientation(sign < 0 ? CupsOrientationPortrait : CupsOrientationReversePortrait);
    }
    options.setOrientation(CupsOrientationNone);
    QCOMPARE(log.texts(), QStringList());
    QCOMPARE(home.text(),
             QByteArray("Dest BrackenXL Dithering=66 CutMedia=2 R2TensionAdjust=Custom.10 "
                        "R1TensionAdjust=Custom.10 head2Offset=Custom.50 head1Offset=Custom.50 "
                        "Voffset2=Custom.2000 Voffset1=Custom.2000 Hoffset2=Custom.2000 "
                        "Hoffset1=Custom.2000 Stop=Custom.2000 Feed=Custom.2000\n"));
}

void TestOptionRanges::outsideIsClampedAndLoggedOnce_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < rows().size(); ++i)
        QTest::newRow(rows().at(i).name) << i;
}

void TestOptionRanges::outsideIsClampedAndLoggedOnce()
{
    QFETCH(int, index);
    const Row &row = rows().at(index);
    const OptionsHome home;
    QVERIFY(home.write("Dest BrackenXL orientation-requested=5\n"));
    CupsSupport options;
    const MessageLog log;
    row.set(options);
    row.set(options);
    CupsSupport another;
    row.set(another);
    QCOMPARE(log.texts(), QStringList{QString::fromLatin1(row.message)});
    const QByteArray orientation = *row.assignments ? " orientation-requested=5" : "";
    const QByteArray assignment = *row.assignments ? ' ' + QByteArray(row.assignments) : QByteArray();
    QCOMPARE(home.text(), "Dest BrackenXL" + assignment + orientation + '\n');
}

void TestOptionRanges::furtherValuesOutsideAreClampedSilently_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("stored");
    QTest::newRow("not a number") << std::nan("") << 0.0;
    QTest::newRow("minus infinity") << -infinity << 0.0;
    QTest::newRow("too much") << 2000.0001 << 2000.0;
    QTest::newRow("too little") << -1e300 << -2000.0;
}

void TestOptionRanges::furtherValuesOutsideAreClampedSilently()
{
    QFETCH(double, value);
    QFETCH(double, stored);
    const OptionsHome home;
    CupsSupport options;
    const MessageLog log;
    options.setStop(value);
    QCOMPARE(options.getStop(), stored);
    QCOMPARE(log.texts(), QStringList());
}

void TestOptionRanges::unknownHeadReadsZeroAndIsLoggedOnce()
{
    const OptionsHome home;
    QVERIFY(home.write("Dest BrackenXL head1Offset=Custom.1 head2Offset=Custom.2\n"));
    CupsSupport options;
    const MessageLog log;
    for (const int head : {0, 3, -1, largest}) {
        QCOMPARE(options.getColorHeadOffset(head), 0);
        options.setColorHeadOffset(7, head);
    }
    QCOMPARE(log.texts(),
             QStringList{QStringLiteral("the printer has no colour head 0: its heat offset is not set")});
    QCOMPARE(home.text(), QByteArray("Dest BrackenXL head1Offset=Custom.1 head2Offset=Custom.2\n"));
}

QTEST_APPLESS_MAIN(TestOptionRanges)
#include "tst_optionranges.moc"
