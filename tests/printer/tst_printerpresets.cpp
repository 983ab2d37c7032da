// Presets: what is saved of the options, what is set when one is loaded, and the calls of the preset library.
#include "emissionrecorder.h"
#include "messagelog.h"
#include "recordingprinterlibraries.h"
#include "texts.h"
#include "zbsettingsprinter.h"

#include <QtTest/QtTest>

#include <memory>

using namespace RecordingPrinterLibraries;

namespace {

const QString shoes = QStringLiteral("Shoes");

/// Options none of which is the default of a preset that lacks it.
const QStringList fullOptions = texts({"orientation-requested",
                                       "6",
                                       "MirrorPrint",
                                       "True",
                                       "NegativePrint",
                                       "True",
                                       "Overprint",
                                       "True",
                                       "WhiteBase",
                                       "True",
                                       "CutMedia",
                                       "2",
                                       "Hoffset1",
                                       "1",
                                       "Hoffset2",
                                       "-2",
                                       "Voffset1",
                                       "3",
                                       "Voffset2",
                                       "-4",
                                       "Feed",
                                       "5",
                                       "Stop",
                                       "-6",
                                       "Dithering",
                                       "16",
                                       "head1Offset",
                                       "7",
                                       "head2Offset",
                                       "-8",
                                       "R1TensionAdjust",
                                       "9",
                                       "R2TensionAdjust",
                                       "-10",
                                       "RibbonSaver",
                                       "Enabled"});

} // namespace

class TestPrinterPresets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void presetHoldsEveryOptionInOrder();
    void presetOfOtherValues();
    void everyNumberHasAKeyOfItsOwn();
    void stopIsSavedWithSixDigits_data();
    void stopIsSavedWithSixDigits();
    void cutIsSavedAsThePageShowsIt();
    void presetIsMadeAddedMadeCurrentAndSaved();
    void presetNameIsTakenAsItIs_data();
    void presetNameIsTakenAsItIs();
    void savingChangesNoOption();

    void deletionLooksUpDeletesMakesCurrentAndSaves();
    void deletionOfAnUnknownNamePassesOnNothing();
    void deletionWithoutANameDoesNothing();
    void nameOfBlanksIsAName();

    void listShowsUserPresetsBehindTheFirstPredefinedOne_data();
    void listShowsUserPresetsBehindTheFirstPredefinedOne();

    void loadingSetsEveryOptionInOrderAndMakesCurrent();
    void loadingChangesThePropertiesAndAnnouncesTheOrientationAlone();
    void loadingLeavesTheRibbonSaver();
    void absentKeysLoadTheirDefaults();
    void listOfOneElementIsLoadedToo();
    void loadingWithoutOptionsChangesNothing_data();
    void loadingWithoutOptionsChangesNothing();
    void valuesAreStoredBeforeTheirSetterAndAfterThoseBefore();
    void propertiesAgreeWithWhatWasSet();
};

void TestPrinterPresets::init()
{
    reset();
}

void TestPrinterPresets::presetHoldsEveryOptionInOrder()
{
    state().orientation = 5;
    state().dithering = 32;
    state().stop = 2.5;
    state().cut = 2;
    int next = 11;
    for (const char *const getter :
         {"getOffsetH1", "getOffsetH2", "getOffsetV1", "getOffsetV2", "getFeed", "getColorHeadOffset1",
          "getColorHeadOffset2", "getR1Tension", "getR2Tension"})
        state().numbers.insert(QLatin1String(getter), next++);
    state().flags = {{QStringLiteral("getMirror"), true}, {QStringLiteral("getWhiteBase"), true}};

    ZBSettingsPrinter printer;
    takeCalls();
    QVERIFY(printer.addPreset(shoes));
    QCOMPARE(
        takeCalls(),
        texts(
            {"getOrientation()",
             "getMirror()",
             "getInverse()",
             "getOverprint()",
             "getWhiteBase()",
             "getOffsetH1()",
             "getOffsetH2()",
             "getOffsetV1()",
             "getOffsetV2()",
             "getFeed()",
             "getStop()",
             "getDithering()",
             "getColorHeadOffset(1)",
             "getColorHeadOffset(2)",
             "getR1Tension()",
             "getR2Tension()",
             "getRibbonSaver()",
             "applyLastPresetIndex()",
             "new Preset(\"BrackenXL\", \"Shoes_p\", 2, "
             "[\"orientation-requested\", \"5\", \"MirrorPrint\", \"True\", \"NegativePrint\", \"False\", "
             "\"Overprint\", \"False\", \"WhiteBase\", \"True\", \"CutMedia\", \"2\", \"Hoffset1\", \"11\", "
             "\"Hoffset2\", \"12\", \"Voffset1\", \"13\", \"Voffset2\", \"14\", \"Feed\", \"15\", \"Stop\", "
             "\"2.5\", \"Dithering\", \"32\", \"head1Offset\", \"16\", \"head2Offset\", \"17\", "
             "\"R1TensionAdjust\", \"18\", \"R2TensionAdjust\", \"19\", \"RibbonSaver\", \"Disabled\"], "
             "\"Shoes\", \"\", 0)",
             "addPreset(preset made)",
             "setCurrentPreset(preset made)",
             "getPredefinedPresetNames()",
             "save([])"}));
}

void TestPrinterPresets::presetOfOtherValues()
{
    state().orientation = 0;
    state().stop = -3;
    state().numbers = {{QStringLiteral("getFeed"), -2147483647 - 1},
                       {QStringLiteral("getR2Tension"), 2147483647}};
    state().flags = {{QStringLiteral("getInverse"), true},
                     {QStringLiteral("getOverprint"), true},
                     {QStringLiteral("getRibbonSaver"), true}};
    ZBSettingsPrinter printer;
    takeCalls();
    QVERIFY(printer.addPreset(shoes));
    QVERIFY(takeCalls().contains(QString::fromLatin1(
        "new Preset(\"BrackenXL\", \"Shoes_p\", 2, "
        "[\"orientation-requested\", \"0\", \"MirrorPrint\", \"False\", \"NegativePrint\", \"True\", "
        "\"Overprint\", \"True\", \"WhiteBase\", \"False\", \"CutMedia\", \"0\", \"Hoffset1\", \"0\", "
        "\"Hoffset2\", \"0\", \"Voffset1\", \"0\", \"Voffset2\", \"0\", \"Feed\", \"-2147483648\", \"Stop\", "
        "\"-3\", "
        "\"Dithering\", \"0\", \"head1Offset\", \"0\", \"head2Offset\", \"0\", \"R1TensionAdjust\", \"0\", "
        "\"R2TensionAdjust\", \"2147483647\", \"RibbonSaver\", \"Enabled\"], \"Shoes\", \"\", 0)")));
}

void TestPrinterPresets::everyNumberHasAKeyOfItsOwn()
{
    const QList<QPair<QString, QString>> sources{
        {QStringLiteral("getOffsetH1"), QStringLiteral("Hoffset1")},
        {QStringLiteral("getOffsetH2"), QStringLiteral("Hoffset2")},
        {QStringLiteral("getOffsetV1"), QStringLiteral("Voffset1")},
        {QStringLiteral("getOffsetV2"), QStringLiteral("Voffset2")},
        {QStringLiteral("getFeed"), QStringLiteral("Feed")},
        {QStringLiteral("getColorHeadOffset1"), QStringLiteral("head1Offset")},
        {QStringLiteral("getColorHeadOffset2"), QStringLiteral("head2Offset")},
        {QStringLiteral("getR1Tension"), QStringLiteral("R1TensionAdjust")},
        {QStringLiteral("getR2Tension"), QStringLiteral("R2TensionAdjust")}};
    ZBSettingsPrinter printer;
    for (const auto &source : sources) {
        state().numbers = {{source.first, -77}};
        takeCalls();
        printer.addPreset(shoes);
        const QString made = takeCalls().filter(QStringLiteral("new Preset")).value(0);
        QVERIFY2(made.contains(QStringLiteral("\"%1\", \"-77\"").arg(source.second)), qPrintable(made));
        QCOMPARE(made.count(QStringLiteral("-77")), 1);
    }
}

void TestPrinterPresets::stopIsSavedWithSixDigits_data()
{
    QTest::addColumn<double>("stop");
    QTest::addColumn<QString>("text");
    QTest::newRow("whole") << 12.0 << QStringLiteral("12");
    QTest::newRow("half") << -0.5 << QStringLiteral("-0.5");
    QTest::newRow("rounded") << 1.23456789 << QStringLiteral("1.23457");
    QTest::newRow("large") << 1234567.0 << QStringLiteral("1.23457e+06");
    QTest::newRow("small") << 0.00001 << QStringLiteral("1e-05");
}

void TestPrinterPresets::stopIsSavedWithSixDigits()
{
    QFETCH(double, stop);
    QFETCH(QString, text);
    state().stop = stop;
    ZBSettingsPrinter printer;
    printer.addPreset(shoes);
    const QString made = takeCalls().filter(QStringLiteral("new Preset")).value(1);
    QVERIFY2(made.contains(QStringLiteral("\"Stop\", \"%1\"").arg(text)), qPrintable(made));
}

void TestPrinterPresets::cutIsSavedAsThePageShowsIt()
{
    state().cut = 1;
    ZBSettingsPrinter printer;
    printer.setCutOption(QStringLiteral("Cut After Job"));
    // The recording library does not keep it, as if another program had changed it back.
    takeCalls();
    printer.addPreset(shoes);
    const QStringList calls = takeCalls();
    QVERIFY(
        calls.filter(QStringLiteral("new Preset")).value(0).contains(QStringLiteral("\"CutMedia\", \"2\"")));
    QVERIFY(!calls.contains(QStringLiteral("getCut()")));
}

void TestPrinterPresets::presetIsMadeAddedMadeCurrentAndSaved()
{
    state().lastIndex = 42;
    state().predefinedNames = texts({"<Current Settings>", "<System Settings>", "<Default Settings>"});
    ZBSettingsPrinter printer;
    takeCalls();
    QCOMPARE(printer.addPreset(shoes), true);
    const QStringList calls = takeCalls();
    QVERIFY(
        calls.filter(QStringLiteral("new Preset")).value(0).endsWith(QStringLiteral("\"Shoes\", \"\", 42)")));
    QCOMPARE(calls.mid(calls.size() - 4),
             texts({"addPreset(preset made)", "setCurrentPreset(preset made)", "getPredefinedPresetNames()",
                    "save([\"<Current Settings>\", \"<System Settings>\", \"<Default Settings>\"])"}));
}

void TestPrinterPresets::presetNameIsTakenAsItIs_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("blanks") << QStringLiteral("   ");
    QTest::newRow("way out") << QStringLiteral("../../etc/passwd");
    QTest::newRow("of a predefined one") << QStringLiteral("<Default Settings>");
    QTest::newRow("emoji") << QStringLiteral("\U0001F45F");
    QTest::newRow("300 characters") << QString(300, QLatin1Char('x'));
}

void TestPrinterPresets::presetNameIsTakenAsItIs()
{
    QFETCH(QString, name);
    ZBSettingsPrinter printer;
    for (int time = 0; time < 2; ++time) {
        takeCalls();
        QCOMPARE(printer.addPreset(name), true);
        const QStringList calls = takeCalls();
        const QString made = calls.filter(QStringLiteral("new Preset")).value(0);
        QVERIFY(made.startsWith(QStringLiteral("new Preset(\"BrackenXL\", \"%1_p\", 2, [").arg(name)));
        QVERIFY(made.endsWith(QStringLiteral("], \"%1\", \"\", 0)").arg(name)));
        QVERIFY(calls.contains(QStringLiteral("addPreset(preset made)")));
    }
}

void TestPrinterPresets::savingChangesNoOption()
{
    ZBSettingsPrinter printer;
    const EmissionRecorder recorder(&printer);
    takeCalls();
    printer.addPreset(shoes);
    QCOMPARE(changes(takeCalls()), texts({"setCurrentPreset(preset made)"}));
    QCOMPARE(recorder.names(), QStringList());
}

void TestPrinterPresets::deletionLooksUpDeletesMakesCurrentAndSaves()
{
    state().presets = {{shoes, fullOptions}, {QStringLiteral("Boots"), fullOptions}};
    state().nameAfterDeletion = QStringLiteral("Boots");
    state().predefinedNames = texts({"one", "two"});
    ZBSettingsPrinter printer;
    const EmissionRecorder recorder(&printer);
    takeCalls();
    printer.deletePreset(shoes);
    QCOMPARE(
        takeCalls(),
        texts({"findPreset(\"Shoes\")", "deletePreset(preset Shoes)", "findPreset(\"Boots\")",
               "setCurrentPreset(preset Boots)", "getPredefinedPresetNames()", "save([\"one\", \"two\"])"}));
    QCOMPARE(recorder.names(), QStringList());
}

void TestPrinterPresets::deletionOfAnUnknownNamePassesOnNothing()
{
    ZBSettingsPrinter printer;
    takeCalls();
    printer.deletePreset(shoes);
    QCOMPARE(takeCalls(),
             texts({"findPreset(\"Shoes\")", "deletePreset(null)", "findPreset(\"\")",
                    "setCurrentPreset(null)", "getPredefinedPresetNames()", "save([])"}));
}

void TestPrinterPresets::deletionWithoutANameDoesNothing()
{
    state().presets = {{QString(), fullOptions}};
    ZBSettingsPrinter printer;
    takeCalls();
    printer.deletePreset(QString());
    printer.deletePreset(QStringLiteral(""));
    QCOMPARE(takeCalls(), QStringList());
}

void TestPrinterPresets::nameOfBlanksIsAName()
{
    const QString blanks = QStringLiteral("   ");
    state().presets = {{blanks, fullOptions}};
    ZBSettingsPrinter printer;
    takeCalls();
    printer.deletePreset(blanks);
    QCOMPARE(takeCalls().mid(0, 2), texts({"findPreset(\"   \")", "deletePreset(preset    )"}));
    printer.loadPreset(blanks);
    QCOMPARE(takeCalls().last(), QStringLiteral("setCurrentPreset(preset    )"));
}

void TestPrinterPresets::listShowsUserPresetsBehindTheFirstPredefinedOne_data()
{
    QTest::addColumn<QStringList>("user");
    QTest::addColumn<QStringList>("predefined");
    QTest::addColumn<QStringList>("shown");
    QTest::newRow("three predefined")
        << texts({"Sample Preset", "Shoes"}) << texts({"one", "two", "three"}) << texts({"one", "Shoes"});
    QTest::newRow("two predefined") << texts({"Sample Preset", "Shoes"}) << texts({"one", "two"})
                                    << texts({"Shoes"});
    QTest::newRow("four predefined") << texts({"Shoes"}) << texts({"one", "two", "three", "four"})
                                     << texts({"one", "Shoes"});
    QTest::newRow("none predefined") << texts({"Shoes", "Boots"}) << QStringList()
                                     << texts({"Shoes", "Boots"});
    QTest::newRow("samples everywhere")
        << texts({"Sample Preset", "b", "Sample Preset", "a", "Sample Preset"}) << QStringList()
        << texts({"b", "a"});
    QTest::newRow("other case stays")
        << texts({"sample preset"}) << QStringList() << texts({"sample preset"});
    QTest::newRow("doubles stay") << texts({"a", "a"}) << QStringList() << texts({"a", "a"});
    QTest::newRow("predefined sample stays")
        << QStringList() << texts({"Sample Preset", "two", "three"}) << texts({"Sample Preset"});
    QTest::newRow("nothing") << QStringList() << QStringList() << QStringList();
}

void TestPrinterPresets::listShowsUserPresetsBehindTheFirstPredefinedOne()
{
    QFETCH(QStringList, user);
    QFETCH(QStringList, predefined);
    state().userNames = user;
    state().predefinedNames = predefined;
    ZBSettingsPrinter printer;
    takeCalls();
    QTEST(printer.populatePresetList(), "shown");
    QCOMPARE(takeCalls(), texts({"getUserPresetNames()", "getPredefinedPresetNames()"}));
}

void TestPrinterPresets::loadingSetsEveryOptionInOrderAndMakesCurrent()
{
    state().presets = {{shoes, fullOptions}};
    ZBSettingsPrinter printer;
    takeCalls();
    QCOMPARE(printer.loadPreset(shoes), fullOptions);
    QCOMPARE(takeCalls(),
             texts({"findPreset(\"Shoes\")", "setInverse(true)", "setMirror(true)", "setOverprint(true)",
                    "setWhiteBase(true)", "setColorHeadOffset(7, 1)", "setColorHeadOffset(-8, 2)",
                    "setOffsetH1(1)", "setOffsetH2(-2)", "setOffsetV1(3)", "setOffsetV2(-4)", "setStop(-6.0)",
                    "setFeed(5)", "setR1Tension(9)", "setR2Tension(-10)", "setOrientation(6)",
                    "setDithering(16)", "setCut(2)", "setCurrentPreset(preset Shoes)"}));
}

void TestPrinterPresets::loadingChangesThePropertiesAndAnnouncesTheOrientationAlone()
{
    state().presets = {{shoes, fullOptions}};
    ZBSettingsPrinter printer;
    const EmissionRecorder recorder(&printer);
    const MessageLog log;
    printer.loadPreset(shoes);
    QCOMPARE(printer.negative(), true);
    QCOMPARE(printer.mirror(), true);
    QCOMPARE(printer.overprint(), true);
    QCOMPARE(printer.whitebase(), true);
    QCOMPARE(printer.head1HeatOffset(), 7);
    QCOMPARE(printer.head2HeatOffset(), -8);
    QCOMPARE(printer.horizontal1Offset(), 1);
    QCOMPARE(printer.horizontal2Offset(), -2);
    QCOMPARE(printer.vertical1Offset(), 3);
    QCOMPARE(printer.vertical2Offset(), -4);
    QCOMPARE(printer.backfeedOffset(), -6);
    QCOMPARE(printer.feedOffset(), 5);
    QCOMPARE(printer.r1Tension(), 9);
    QCOMPARE(printer.r2Tension(), -10);
    QCOMPARE(printer.orientationOption(), QStringLiteral("Portrait"));
    QCOMPARE(printer.orientationEnum(), 6);
    QCOMPARE(printer.ditheringMethod(), QStringLiteral("Floyd-Steinberg Dither"));
    QCOMPARE(printer.cutOption(), QStringLiteral("Cut After Job"));
    QCOMPARE(printer.cutEnum(), 2);
    QCOMPARE(recorder.names(), texts({"orientationEnumChanged"}));
    QCOMPARE(recorder.emissions().at(0).arguments, QVariantList{6});
    QCOMPARE(log.texts(), QStringList());
}

void TestPrinterPresets::loadingLeavesTheRibbonSaver()
{
    state().flags = {{QStringLiteral("getRibbonSaver"), true}};
    state().presets = {{shoes, texts({"RibbonSaver", "Disabled", "copies", "7"})}};
    ZBSettingsPrinter printer;
    takeCalls();
    printer.loadPreset(shoes);
    QCOMPARE(takeCalls().filter(QStringLiteral("RibbonSaver")), QStringList());
    QCOMPARE(printer.ribbonSaver(), true);
}

void TestPrinterPresets::absentKeysLoadTheirDefaults()
{
    state().presets = {{shoes, texts({"copies", "1"})}};
    ZBSettingsPrinter printer;
    takeCalls();
    QCOMPARE(printer.loadPreset(shoes), texts({"copies", "1"}));
    QCOMPARE(takeCalls(),
             texts({"findPreset(\"Shoes\")", "setInverse(false)", "setMirror(false)", "setOverprint(false)",
                    "setWhiteBase(false)", "setColorHeadOffset(0, 1)", "setColorHeadOffset(0, 2)",
                    "setOffsetH1(0)", "setOffsetH2(0)", "setOffsetV1(0)", "setOffsetV2(0)", "setStop(0.0)",
                    "setFeed(0)", "setR1Tension(0)", "setR2Tension(0)", "setOrientation(5)",
                    "setDithering(21)", "setCut(1)", "setCurrentPreset(preset Shoes)"}));
    QCOMPARE(printer.orientationOption(), QStringLiteral("Landscape"));
    QCOMPARE(printer.ditheringMethod(), QStringLiteral("Atkinson Dither"));
    QCOMPARE(printer.cutOption(), QStringLiteral("Cut After Page"));
}

void TestPrinterPresets::listOfOneElementIsLoadedToo()
{
    state().presets = {{shoes, texts({"CutMedia"})}};
    ZBSettingsPrinter printer;
    takeCalls();
    QCOMPARE(printer.loadPreset(shoes), texts({"CutMedia"}));
    const QStringList calls = takeCalls();
    QVERIFY(calls.contains(QStringLiteral("setCut(0)")));
    QVERIFY(calls.contains(QStringLiteral("setOrientation(5)")));
    QCOMPARE(calls.last(), QStringLiteral("setCurrentPreset(preset Shoes)"));
}

void TestPrinterPresets::loadingWithoutOptionsChangesNothing_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("no options") << QStringLiteral("empty");
    QTest::newRow("no such preset") << QStringLiteral("none");
    QTest::newRow("no name") << QString();
}

void TestPrinterPresets::loadingWithoutOptionsChangesNothing()
{
    QFETCH(QString, name);
    state().presets = {{QStringLiteral("empty"), QStringList()}};
    state().flags = {{QStringLiteral("getMirror"), true}};
    state().orientation = 6;
    ZBSettingsPrinter printer;
    const EmissionRecorder recorder(&printer);
    takeCalls();
    QCOMPARE(printer.loadPreset(name), QStringList());
    QCOMPARE(takeCalls(), QStringList(QStringLiteral("findPreset(\"%1\")").arg(name)));
    QCOMPARE(printer.mirror(), true);
    QCOMPARE(printer.orientationOption(), QStringLiteral("Portrait"));
    QCOMPARE(recorder.names(), QStringList());
}

// The signal comes in the middle: what is loaded before it is there, what is loaded after it is not yet.
void TestPrinterPresets::valuesAreStoredBeforeTheirSetterAndAfterThoseBefore()
{
    state().presets = {{shoes, fullOptions}};
    state().dithering = 18;
    ZBSettingsPrinter printer;
    takeCalls();
    QStringList seen;
    connect(&printer, &ZBSettingsPrinter::orientationEnumChanged, this, [&] {
        seen = QStringList{printer.orientationOption(), printer.ditheringMethod(), printer.cutOption(),
                           QString::number(printer.r2Tension()), takeCalls().last()};
    });
    printer.loadPreset(shoes);
    QCOMPARE(seen, texts({"Portrait", "Stucki Dither", "No Cut", "-10", "setOrientation(6)"}));
}

void TestPrinterPresets::propertiesAgreeWithWhatWasSet()
{
    state().presets = {{shoes, texts({"Dithering", "32", "orientation-requested", "4", "CutMedia", "9"})}};
    ZBSettingsPrinter printer;
    takeCalls();
    printer.loadPreset(shoes);
    const QStringList calls = takeCalls();
    QVERIFY(calls.contains(QStringLiteral("setDithering(0)")));
    QCOMPARE(printer.ditheringMethod(), QStringLiteral("BayerOrdered Dither"));
    QVERIFY(calls.contains(QStringLiteral("setOrientation(4)")));
    QCOMPARE(printer.orientationOption(), QStringLiteral("Landscape 180"));
    QCOMPARE(printer.orientationEnum(), 4);
    QVERIFY(calls.contains(QStringLiteral("setCut(1)")));
    QCOMPARE(printer.cutOption(), QStringLiteral("Cut After Page"));
    QCOMPARE(printer.cutEnum(), 1);
}

QTEST_GUILESS_MAIN(TestPrinterPresets)
#include "tst_printerpresets.moc"
