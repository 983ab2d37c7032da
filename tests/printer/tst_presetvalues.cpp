// What the keys and values of a preset come to, row by row, without any library.
#include "printeroptionrows.h"
#include "texts.h"

#include <QtTest/QtTest>

namespace {

PrinterValues valuesOf(const QStringList &options)
{
    return valuesOfPreset(options, PrinterTexts::translated());
}

const QMap<QString, bool PrinterValues::*> flags{
    {QStringLiteral("NegativePrint"), &PrinterValues::negative},
    {QStringLiteral("MirrorPrint"), &PrinterValues::mirror},
    {QStringLiteral("Overprint"), &PrinterValues::overprint},
    {QStringLiteral("WhiteBase"), &PrinterValues::whitebase},
};

const QMap<QString, int PrinterValues::*> numbers{
    {QStringLiteral("head1Offset"), &PrinterValues::head1HeatOffset},
    {QStringLiteral("head2Offset"), &PrinterValues::head2HeatOffset},
    {QStringLiteral("Hoffset1"), &PrinterValues::horizontal1Offset},
    {QStringLiteral("Hoffset2"), &PrinterValues::horizontal2Offset},
    {QStringLiteral("Voffset1"), &PrinterValues::vertical1Offset},
    {QStringLiteral("Voffset2"), &PrinterValues::vertical2Offset},
    {QStringLiteral("Stop"), &PrinterValues::backfeedOffset},
    {QStringLiteral("Feed"), &PrinterValues::feedOffset},
    {QStringLiteral("R1TensionAdjust"), &PrinterValues::r1Tension},
    {QStringLiteral("R2TensionAdjust"), &PrinterValues::r2Tension},
};

} // namespace

class TestPresetValues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void flagIsTrueForOneTextAlone_data();
    void flagIsTrueForOneTextAlone();
    void numberIsADecimalInteger_data();
    void numberIsADecimalInteger();
    void orientationHasAName_data();
    void orientationHasAName();
    void ditheringHasAName_data();
    void ditheringHasAName();
    void cutHasAName_data();
    void cutHasAName();
    void everyKeySetsItsOwnValue();
    void emptyListGivesTheDefaults();
    void lastKeyWithoutAValueReadsAsEmptyText();
    void firstOfTwoKeysCounts();
    void keyIsLookedForAmongValuesToo();
    void keysAreExact_data();
    void keysAreExact();
};

void TestPresetValues::flagIsTrueForOneTextAlone_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("value");
    QTest::newRow("True") << QStringLiteral("True") << true;
    QTest::newRow("False") << QStringLiteral("False") << false;
    QTest::newRow("lower case") << QStringLiteral("true") << false;
    QTest::newRow("upper case") << QStringLiteral("TRUE") << false;
    QTest::newRow("blank behind") << QStringLiteral("True ") << false;
    QTest::newRow("1") << QStringLiteral("1") << false;
    QTest::newRow("Enabled") << QStringLiteral("Enabled") << false;
    QTest::newRow("empty") << QString() << false;
}

void TestPresetValues::flagIsTrueForOneTextAlone()
{
    QFETCH(QString, text);
    QFETCH(bool, value);
    for (auto flag = flags.cbegin(); flag != flags.cend(); ++flag)
        QCOMPARE(valuesOf({flag.key(), text}).*flag.value(), value);
}

void TestPresetValues::numberIsADecimalInteger_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("value");
    QTest::newRow("positive") << QStringLiteral("12") << 12;
    QTest::newRow("negative") << QStringLiteral("-3") << -3;
    QTest::newRow("sign") << QStringLiteral("+4") << 4;
    QTest::newRow("largest") << QStringLiteral("2147483647") << 2147483647;
    QTest::newRow("smallest") << QStringLiteral("-2147483648") << -2147483647 - 1;
    QTest::newRow("too large") << QStringLiteral("2147483648") << 0;
    QTest::newRow("fraction") << QStringLiteral("2.5") << 0;
    QTest::newRow("exponent") << QStringLiteral("1e3") << 0;
    QTest::newRow("hexadecimal") << QStringLiteral("0x10") << 0;
    QTest::newRow("leading zeros are not octal") << QStringLiteral("010") << 10;
    QTest::newRow("group separator") << QStringLiteral("1,000") << 0;
    QTest::newRow("unit") << QStringLiteral("5 mm") << 0;
    QTest::newRow("blanks around") << QStringLiteral(" 5 ") << 5;
    QTest::newRow("form of CUPS") << QStringLiteral("Custom.5") << 0;
    QTest::newRow("word") << QStringLiteral("five") << 0;
    QTest::newRow("other digits") << QStringLiteral("\u0665") << 0;
    QTest::newRow("empty") << QString() << 0;
}

void TestPresetValues::numberIsADecimalInteger()
{
    QFETCH(QString, text);
    QFETCH(int, value);
    for (auto number = numbers.cbegin(); number != numbers.cend(); ++number)
        QCOMPARE(valuesOf({number.key(), text}).*number.value(), value);
}

void TestPresetValues::orientationHasAName_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("name");
    QTest::newRow("5") << QStringLiteral("5") << QStringLiteral("Landscape");
    QTest::newRow("6") << QStringLiteral("6") << QStringLiteral("Portrait");
    QTest::newRow("3") << QStringLiteral("3") << QStringLiteral("Portrait 180");
    QTest::newRow("4") << QStringLiteral("4") << QStringLiteral("Landscape 180");
    QTest::newRow("0") << QStringLiteral("0") << QStringLiteral("Landscape 180");
    QTest::newRow("7") << QStringLiteral("7") << QStringLiteral("Landscape 180");
    QTest::newRow("negative") << QStringLiteral("-5") << QStringLiteral("Landscape 180");
    QTest::newRow("fraction") << QStringLiteral("5.0") << QStringLiteral("Landscape 180");
    QTest::newRow("name") << QStringLiteral("Portrait") << QStringLiteral("Landscape 180");
    QTest::newRow("empty") << QString() << QStringLiteral("Landscape 180");
}

void TestPresetValues::orientationHasAName()
{
    QFETCH(QString, text);
    QTEST(valuesOf({QStringLiteral("orientation-requested"), text}).orientationOption, "name");
}

void TestPresetValues::ditheringHasAName_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("name");
    QTest::newRow("0") << QStringLiteral("0") << QStringLiteral("Threshold (No) Dither");
    QTest::newRow("16") << QStringLiteral("16") << QStringLiteral("Floyd-Steinberg Dither");
    QTest::newRow("17") << QStringLiteral("17") << QStringLiteral("JaJuNi Dither");
    QTest::newRow("18") << QStringLiteral("18") << QStringLiteral("Stucki Dither");
    QTest::newRow("19") << QStringLiteral("19") << QStringLiteral("Atkinson Dither");
    QTest::newRow("20") << QStringLiteral("20") << QStringLiteral("Burkes Dither");
    QTest::newRow("21") << QStringLiteral("21") << QStringLiteral("Atkinson Dither");
    QTest::newRow("24") << QStringLiteral("24") << QStringLiteral("Sierra Dither");
    QTest::newRow("25") << QStringLiteral("25") << QStringLiteral("Sierra2 Dither");
    QTest::newRow("32 has no blank") << QStringLiteral("32") << QStringLiteral("BayerOrdered Dither");
    QTest::newRow("33") << QStringLiteral("33") << QStringLiteral("Yliluoma Ordered Dither");
    QTest::newRow("65") << QStringLiteral("65") << QStringLiteral("Grayscale Ribbon 1");
    QTest::newRow("66") << QStringLiteral("66") << QStringLiteral("Grayscale Ribbon 2");
    QTest::newRow("67") << QStringLiteral("67") << QStringLiteral("Atkinson Dither");
    QTest::newRow("negative") << QStringLiteral("-1") << QStringLiteral("Atkinson Dither");
    QTest::newRow("word is 0") << QStringLiteral("Stucki") << QStringLiteral("Threshold (No) Dither");
    QTest::newRow("empty is 0") << QString() << QStringLiteral("Threshold (No) Dither");
}

void TestPresetValues::ditheringHasAName()
{
    QFETCH(QString, text);
    QTEST(valuesOf({QStringLiteral("Dithering"), text}).ditheringMethod, "name");
}

void TestPresetValues::cutHasAName_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("name");
    QTest::newRow("0") << QStringLiteral("0") << QStringLiteral("No Cut");
    QTest::newRow("1") << QStringLiteral("1") << QStringLiteral("Cut After Page");
    QTest::newRow("2") << QStringLiteral("2") << QStringLiteral("Cut After Job");
    QTest::newRow("3") << QStringLiteral("3") << QStringLiteral("Cut After Page");
    QTest::newRow("negative") << QStringLiteral("-1") << QStringLiteral("Cut After Page");
    QTest::newRow("word is 0") << QStringLiteral("CutAfterJob") << QStringLiteral("No Cut");
    QTest::newRow("empty is 0") << QString() << QStringLiteral("No Cut");
}

void TestPresetValues::cutHasAName()
{
    QFETCH(QString, text);
    QTEST(valuesOf({QStringLiteral("CutMedia"), text}).cutOption, "name");
}

void TestPresetValues::everyKeySetsItsOwnValue()
{
    for (auto flag = flags.cbegin(); flag != flags.cend(); ++flag) {
        const PrinterValues values = valuesOf({flag.key(), QStringLiteral("True")});
        for (auto other = flags.cbegin(); other != flags.cend(); ++other)
            QCOMPARE(values.*other.value(), other.key() == flag.key());
    }
    for (auto number = numbers.cbegin(); number != numbers.cend(); ++number) {
        const PrinterValues values = valuesOf({number.key(), QStringLiteral("9")});
        for (auto other = numbers.cbegin(); other != numbers.cend(); ++other)
            QCOMPARE(values.*other.value(), other.key() == number.key() ? 9 : 0);
    }
}

void TestPresetValues::emptyListGivesTheDefaults()
{
    const PrinterValues values = valuesOf({});
    for (bool PrinterValues::*const flag : flags)
        QCOMPARE(values.*flag, false);
    for (int PrinterValues::*const number : numbers)
        QCOMPARE(values.*number, 0);
    QCOMPARE(values.orientationOption, QStringLiteral("Landscape"));
    QCOMPARE(values.ditheringMethod, QStringLiteral("Atkinson Dither"));
    QCOMPARE(values.cutOption, QStringLiteral("Cut After Page"));
    QCOMPARE(values.ribbonSaver, false);
}

void TestPresetValues::lastKeyWithoutAValueReadsAsEmptyText()
{
    QCOMPARE(valuesOf(texts({"copies", "1", "orientation-requested"})).orientationOption,
             QStringLiteral("Landscape 180"));
    QCOMPARE(valuesOf(texts({"Dithering"})).ditheringMethod, QStringLiteral("Threshold (No) Dither"));
    QCOMPARE(valuesOf(texts({"CutMedia"})).cutOption, QStringLiteral("No Cut"));
    QCOMPARE(valuesOf(texts({"Feed"})).feedOffset, 0);
    QCOMPARE(valuesOf(texts({"MirrorPrint"})).mirror, false);
}

void TestPresetValues::firstOfTwoKeysCounts()
{
    QCOMPARE(valuesOf(texts({"Feed", "1", "Feed", "2"})).feedOffset, 1);
    QCOMPARE(valuesOf(texts({"CutMedia", "2", "copies", "1", "CutMedia", "0"})).cutOption,
             QStringLiteral("Cut After Job"));
}

void TestPresetValues::keyIsLookedForAmongValuesToo()
{
    const PrinterValues values = valuesOf(texts({"note", "Feed", "12", "True", "Feed", "7"}));
    QCOMPARE(values.feedOffset, 12);
}

void TestPresetValues::keysAreExact_data()
{
    QTest::addColumn<QString>("key");
    QTest::newRow("lower case") << QStringLiteral("feed");
    QTest::newRow("blank") << QStringLiteral("Feed ");
    QTest::newRow("with its value") << QStringLiteral("Feed=12");
    QTest::newRow("longer") << QStringLiteral("Feeder");
}

void TestPresetValues::keysAreExact()
{
    QFETCH(QString, key);
    QCOMPARE(valuesOf({key, QStringLiteral("12")}).feedOffset, 0);
}

QTEST_APPLESS_MAIN(TestPresetValues)
#include "tst_presetvalues.moc"
