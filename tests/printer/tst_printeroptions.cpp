// The print options: what the printer object reads when it is made, and what each slot hands to the
// printer-option library, in which order.
#include "emissionrecorder.h"
#include "messagelog.h"
#include "recordingprinterlibraries.h"
#include "texts.h"
#include "zbsettingsprinter.h"

#include <QtTest/QtTest>

#include <limits>
#include <memory>

using namespace RecordingPrinterLibraries;

// Qt's hook for debuggers, which has no public header: called for every signal of the process.
struct QSignalSpyCallbackSet
{
    void (*signalBegin)(QObject *sender, int signal, void **arguments);
    void (*slotBegin)(QObject *receiver, int slot, void **arguments);
    void (*signalEnd)(QObject *sender, int signal);
    void (*slotEnd)(QObject *receiver, int slot);
};
extern void qt_register_signal_spy_callbacks(QSignalSpyCallbackSet *callbacks);

namespace {

int emissionsOfAnybody = 0;

void countEmission(QObject *, int, void **)
{
    ++emissionsOfAnybody;
}

/// All properties by name.
QVariantMap propertiesOf(const ZBSettingsPrinter &printer)
{
    QVariantMap result;
    const QMetaObject &metaObject = ZBSettingsPrinter::staticMetaObject;
    for (int i = metaObject.propertyOffset(); i < metaObject.propertyCount(); ++i)
        result.insert(QLatin1String(metaObject.property(i).name()), metaObject.property(i).read(&printer));
    return result;
}

/// A printer object and what it emits.
class Watched
{
public:
    Watched()
        : m_recorder(&printer)
    {
    }

    ZBSettingsPrinter printer;

    QStringList takeEmissions()
    {
        QStringList result;
        for (const EmissionRecorder::Emission &emission : m_recorder.emissions())
            result.append(emission.signal + QLatin1Char(' ') + emission.arguments.value(0).toString());
        m_recorder.clear();
        return result;
    }

private:
    EmissionRecorder m_recorder;
};

} // namespace

class TestPrinterOptions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void optionsAreReadInTheirOrderBeforeThePresetListIsMade();
    void propertiesHoldWhatWasRead();
    void everythingDiffersFromItsDefault();
    void orientationHasItsName_data();
    void orientationHasItsName();
    void ditheringHasItsName_data();
    void ditheringHasItsName();
    void cutHasItsName_data();
    void cutHasItsName();
    void backfeedIsTheStopWithoutItsFraction_data();
    void backfeedIsTheStopWithoutItsFraction();
    void comboBoxModelsAreInTheOrderOfTheirTexts();
    void nothingIsEmittedDuringConstruction();
    void librariesOutliveTheObject();
    void everyObjectHasLibrariesOfItsOwn();

    void plainSettersHandTheValueOnAndChangeNoProperty_data();
    void plainSettersHandTheValueOnAndChangeNoProperty();
    void orientationGoesByItsName_data();
    void orientationGoesByItsName();
    void cutGoesByItsName_data();
    void cutGoesByItsName();
    void ditheringGoesByItsName_data();
    void ditheringGoesByItsName();
    void orientationIsAnnouncedAfterItIsSet();
    void mapsCanBeFilledAgain();

private:
    std::unique_ptr<MessageLog> m_log;
};

void TestPrinterOptions::init()
{
    reset();
    m_log = std::make_unique<MessageLog>();
}

void TestPrinterOptions::cleanup()
{
    QCOMPARE(m_log->texts(), QStringList());
    m_log.reset();
}

void TestPrinterOptions::optionsAreReadInTheirOrderBeforeThePresetListIsMade()
{
    const ZBSettingsPrinter printer;
    QCOMPARE(takeCalls(),
             texts({"new CupsSupport()",
                    "getInverse()",
                    "getMirror()",
                    "getOverprint()",
                    "getWhiteBase()",
                    "getOrientation()",
                    "getDithering()",
                    "getCut()",
                    "getColorHeadOffset(1)",
                    "getColorHeadOffset(2)",
                    "getStop()",
                    "getFeed()",
                    "getOffsetH1()",
                    "getOffsetH2()",
                    "getOffsetV1()",
                    "getOffsetV2()",
                    "getR1Tension()",
                    "getR2Tension()",
                    "getRibbonSaver()",
                    "new PresetList(\"BrackenXL\", true)"}));
}

void TestPrinterOptions::propertiesHoldWhatWasRead()
{
    state().orientation = 6;
    state().dithering = 24;
    state().cut = 2;
    state().stop = 3.75;
    state().numbers = {{QStringLiteral("getColorHeadOffset1"), 1},
                       {QStringLiteral("getColorHeadOffset2"), -2},
                       {QStringLiteral("getFeed"), 4},
                       {QStringLiteral("getOffsetH1"), -5},
                       {QStringLiteral("getOffsetH2"), 6},
                       {QStringLiteral("getOffsetV1"), -7},
                       {QStringLiteral("getOffsetV2"), 8},
                       {QStringLiteral("getR1Tension"), -9},
                       {QStringLiteral("getR2Tension"), 10}};
    state().flags = {{QStringLiteral("getMirror"), true}, {QStringLiteral("getWhiteBase"), true}};

    const ZBSettingsPrinter printer;
    QCOMPARE(printer.orientationOption(), QStringLiteral("Portrait"));
    QCOMPARE(printer.cutOption(), QStringLiteral("Cut After Job"));
    QCOMPARE(printer.ditheringMethod(), QStringLiteral("Sierra Dither"));
    QCOMPARE(printer.orientationEnum(), 6);
    QCOMPARE(printer.cutEnum(), 2);
    QCOMPARE(printer.head1HeatOffset(), 1);
    QCOMPARE(printer.head2HeatOffset(), -2);
    QCOMPARE(printer.mirror(), true);
    QCOMPARE(printer.negative(), false);
    QCOMPARE(printer.overprint(), false);
    QCOMPARE(printer.whitebase(), true);
    QCOMPARE(printer.ribbonSaver(), false);
    QCOMPARE(printer.backfeedOffset(), 3);
    QCOMPARE(printer.feedOffset(), 4);
    QCOMPARE(printer.horizontal1Offset(), -5);
    QCOMPARE(printer.horizontal2Offset(), 6);
    QCOMPARE(printer.vertical1Offset(), -7);
    QCOMPARE(printer.vertical2Offset(), 8);
    QCOMPARE(printer.r1Tension(), -9);
    QCOMPARE(printer.r2Tension(), 10);

    state().flags = {{QStringLiteral("getInverse"), true},
                     {QStringLiteral("getOverprint"), true},
                     {QStringLiteral("getRibbonSaver"), true}};
    const ZBSettingsPrinter another;
    QCOMPARE(another.mirror(), false);
    QCOMPARE(another.negative(), true);
    QCOMPARE(another.overprint(), true);
    QCOMPARE(another.whitebase(), false);
    QCOMPARE(another.ribbonSaver(), true);
}

// What QML reads goes through the meta-object, where a property could read another one's member.
void TestPrinterOptions::everythingDiffersFromItsDefault()
{
    state().orientation = 3;
    state().dithering = 66;
    state().cut = 1;
    state().stop = -12;
    int next = 100;
    for (const char *const getter :
         {"getColorHeadOffset1", "getColorHeadOffset2", "getFeed", "getOffsetH1", "getOffsetH2",
          "getOffsetV1", "getOffsetV2", "getR1Tension", "getR2Tension"})
        state().numbers.insert(QLatin1String(getter), next++);
    for (const char *const getter :
         {"getMirror", "getInverse", "getOverprint", "getWhiteBase", "getRibbonSaver"})
        state().flags.insert(QLatin1String(getter), true);

    const ZBSettingsPrinter printer;
    const QVariantMap properties = propertiesOf(printer);
    QCOMPARE(properties.size(), 23);
    QCOMPARE(properties.value(QStringLiteral("orientationOption")), QVariant(QStringLiteral("Portrait 180")));
    QCOMPARE(properties.value(QStringLiteral("cutOption")), QVariant(QStringLiteral("Cut After Page")));
    QCOMPARE(properties.value(QStringLiteral("ditheringMethod")),
             QVariant(QStringLiteral("Grayscale Ribbon 2")));
    QCOMPARE(properties.value(QStringLiteral("orientationEnum")), QVariant(3));
    QCOMPARE(properties.value(QStringLiteral("cutEnum")), QVariant(1));
    QCOMPARE(properties.value(QStringLiteral("backfeedOffset")), QVariant(-12));
    const QStringList numbers =
        texts({"head1HeatOffset", "head2HeatOffset", "feedOffset", "horizontal1Offset", "horizontal2Offset",
               "vertical1Offset", "vertical2Offset", "r1Tension", "r2Tension"});
    for (int i = 0; i < numbers.size(); ++i)
        QCOMPARE(properties.value(numbers.at(i)), QVariant(100 + i));
    for (const char *const name : {"mirror", "negative", "overprint", "whitebase", "ribbonSaver"})
        QCOMPARE(properties.value(QLatin1String(name)), QVariant(true));
}

void TestPrinterOptions::orientationHasItsName_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("name");
    QTest::newRow("none") << 0 << QString();
    QTest::newRow("2 has no name") << 2 << QString();
    QTest::newRow("3") << 3 << QStringLiteral("Portrait 180");
    QTest::newRow("4") << 4 << QStringLiteral("Landscape 180");
    QTest::newRow("5") << 5 << QStringLiteral("Landscape");
    QTest::newRow("6") << 6 << QStringLiteral("Portrait");
    QTest::newRow("7 has no name") << 7 << QString();
    QTest::newRow("far away") << 4711 << QString();
    QTest::newRow("negative") << -1 << QString();
}

void TestPrinterOptions::orientationHasItsName()
{
    QFETCH(int, value);
    state().orientation = value;
    const ZBSettingsPrinter printer;
    QTEST(printer.orientationOption(), "name");
    QCOMPARE(printer.orientationEnum(), value);
}

void TestPrinterOptions::ditheringHasItsName_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("name");
    QTest::newRow("0") << 0 << QStringLiteral("Threshold (No) Dither");
    QTest::newRow("16") << 16 << QStringLiteral("Floyd-Steinberg Dither");
    QTest::newRow("17") << 17 << QStringLiteral("JaJuNi Dither");
    QTest::newRow("18") << 18 << QStringLiteral("Stucki Dither");
    QTest::newRow("19 has no name") << 19 << QString();
    QTest::newRow("20") << 20 << QStringLiteral("Burkes Dither");
    QTest::newRow("21") << 21 << QStringLiteral("Atkinson Dither");
    QTest::newRow("24") << 24 << QStringLiteral("Sierra Dither");
    QTest::newRow("25") << 25 << QStringLiteral("Sierra2 Dither");
    QTest::newRow("32") << 32 << QStringLiteral("Bayer Ordered Dither");
    QTest::newRow("33") << 33 << QStringLiteral("Yliluoma Ordered Dither");
    QTest::newRow("65") << 65 << QStringLiteral("Grayscale Ribbon 1");
    QTest::newRow("66") << 66 << QStringLiteral("Grayscale Ribbon 2");
    QTest::newRow("67 has no name") << 67 << QString();
    QTest::newRow("negative") << -1 << QString();
}

void TestPrinterOptions::ditheringHasItsName()
{
    QFETCH(int, value);
    state().dithering = value;
    QTEST(ZBSettingsPrinter().ditheringMethod(), "name");
}

void TestPrinterOptions::cutHasItsName_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("name");
    QTest::newRow("0") << 0 << QStringLiteral("No Cut");
    QTest::newRow("1") << 1 << QStringLiteral("Cut After Page");
    QTest::newRow("2") << 2 << QStringLiteral("Cut After Job");
    QTest::newRow("3 has no name") << 3 << QString();
    QTest::newRow("negative") << -1 << QString();
}

void TestPrinterOptions::cutHasItsName()
{
    QFETCH(int, value);
    state().cut = value;
    const ZBSettingsPrinter printer;
    QTEST(printer.cutOption(), "name");
    QCOMPARE(printer.cutEnum(), value);
}

void TestPrinterOptions::backfeedIsTheStopWithoutItsFraction_data()
{
    QTest::addColumn<double>("stop");
    QTest::addColumn<int>("backfeed");
    QTest::newRow("2.9") << 2.9 << 2;
    QTest::newRow("-2.9") << -2.9 << -2;
    QTest::newRow("0.99") << 0.99 << 0;
    QTest::newRow("-0.99") << -0.99 << 0;
    QTest::newRow("whole") << 1500.0 << 1500;
    QTest::newRow("largest") << 2147483647.5 << 2147483647;
    QTest::newRow("smallest") << -2147483648.5 << -2147483647 - 1;
    QTest::newRow("too large") << 2147483648.0 << 0;
    QTest::newRow("too small") << -2147483649.0 << 0;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << 0;
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << 0;
}

void TestPrinterOptions::backfeedIsTheStopWithoutItsFraction()
{
    QFETCH(double, stop);
    state().stop = stop;
    QTEST(ZBSettingsPrinter().backfeedOffset(), "backfeed");
}

void TestPrinterOptions::comboBoxModelsAreInTheOrderOfTheirTexts()
{
    const ZBSettingsPrinter printer;
    QCOMPARE(printer.orientationComboBoxModel(),
             texts({"Landscape", "Landscape 180", "Portrait", "Portrait 180"}));
    QCOMPARE(printer.cutComboBoxModel(), texts({"Cut After Job", "Cut After Page", "No Cut"}));
    QCOMPARE(printer.ditheringComboBoxModel(),
             texts({"Atkinson Dither", "Bayer Ordered Dither", "Burkes Dither", "Floyd-Steinberg Dither",
                    "Grayscale Ribbon 1", "Grayscale Ribbon 2", "JaJuNi Dither", "Sierra Dither",
                    "Sierra2 Dither", "Stucki Dither", "Threshold (No) Dither", "Yliluoma Ordered Dither"}));
}

// A recorder cannot be connected before the object is there, so every emission of the process counts.
void TestPrinterOptions::nothingIsEmittedDuringConstruction()
{
    QSignalSpyCallbackSet callbacks{countEmission, nullptr, nullptr, nullptr};
    qt_register_signal_spy_callbacks(&callbacks);
    emissionsOfAnybody = 0;
    ZBSettingsPrinter printer;
    const int duringConstruction = emissionsOfAnybody;
    printer.setPrintOrientation(QStringLiteral("Portrait"));
    qt_register_signal_spy_callbacks(nullptr);
    QCOMPARE(duringConstruction, 0);
    QCOMPARE(emissionsOfAnybody, 1);
}

void TestPrinterOptions::librariesOutliveTheObject()
{
    auto printer = std::make_unique<ZBSettingsPrinter>();
    takeCalls();
    printer.reset();
    QCOMPARE(takeCalls(), QStringList());
}

void TestPrinterOptions::everyObjectHasLibrariesOfItsOwn()
{
    const ZBSettingsPrinter one;
    const ZBSettingsPrinter two;
    const QStringList calls = takeCalls();
    QCOMPARE(calls.count(QStringLiteral("new CupsSupport()")), 2);
    QCOMPARE(calls.count(QStringLiteral("new PresetList(\"BrackenXL\", true)")), 2);
}

void TestPrinterOptions::plainSettersHandTheValueOnAndChangeNoProperty_data()
{
    QTest::addColumn<QByteArray>("slot");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("call");

    struct Flag
    {
        const char *slot;
        const char *setter;
    };
    for (const Flag &flag : {Flag{"setMirror", "setMirror"}, Flag{"setNegative", "setInverse"},
                             Flag{"setOverprint", "setOverprint"}, Flag{"setWhitebase", "setWhiteBase"},
                             Flag{"setRibbonSaver", "setRibbonSaver"}}) {
        for (const bool value : {true, false}) {
            const QString text = value ? QStringLiteral("true") : QStringLiteral("false");
            QTest::addRow("%s %s", flag.slot, qPrintable(text))
                << QByteArray(flag.slot) << QVariant(value)
                << QStringLiteral("%1(%2)").arg(QLatin1String(flag.setter), text);
        }
    }

    struct Number
    {
        const char *slot;
        const char *call;
    };
    for (const Number &number :
         {Number{"setFeedOffset", "setFeed(%1)"}, Number{"setBackfeedOffset", "setStop(%1.0)"},
          Number{"setHead1HeatOffset", "setColorHeadOffset(%1, 1)"},
          Number{"setHead2HeatOffset", "setColorHeadOffset(%1, 2)"},
          Number{"setHorizontal1Offset", "setOffsetH1(%1)"},
          Number{"setHorizontal2Offset", "setOffsetH2(%1)"}, Number{"setVertical1Offset", "setOffsetV1(%1)"},
          Number{"setVertical2Offset", "setOffsetV2(%1)"}, Number{"setR1Tension", "setR1Tension(%1)"},
          Number{"setR2Tension", "setR2Tension(%1)"}}) {
        for (const int value : {7, -3, 0, 2147483647, -2147483647 - 1}) {
            QTest::addRow("%s %d", number.slot, value)
                << QByteArray(number.slot) << QVariant(value) << QString::fromLatin1(number.call).arg(value);
        }
    }
}

void TestPrinterOptions::plainSettersHandTheValueOnAndChangeNoProperty()
{
    QFETCH(QByteArray, slot);
    QFETCH(QVariant, value);
    Watched watched;
    takeCalls();
    const QVariantMap before = propertiesOf(watched.printer);

    const QGenericArgument argument(value.typeName(), value.constData());
    QVERIFY(QMetaObject::invokeMethod(&watched.printer, slot.constData(), argument));

    QTEST(takeCalls().join(QLatin1Char('\n')), "call");
    QCOMPARE(propertiesOf(watched.printer), before);
    QCOMPARE(watched.takeEmissions(), QStringList());
}

void TestPrinterOptions::orientationGoesByItsName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("value");
    QTest::newRow("Landscape") << QStringLiteral("Landscape") << 5;
    QTest::newRow("Portrait") << QStringLiteral("Portrait") << 6;
    QTest::newRow("Landscape 180") << QStringLiteral("Landscape 180") << 4;
    QTest::newRow("Portrait 180") << QStringLiteral("Portrait 180") << 3;
    QTest::newRow("lower case") << QStringLiteral("portrait") << 0;
    QTest::newRow("blank behind") << QStringLiteral("Portrait ") << 0;
    QTest::newRow("empty") << QString() << 0;
    QTest::newRow("of another map") << QStringLiteral("No Cut") << 0;
}

void TestPrinterOptions::orientationGoesByItsName()
{
    QFETCH(QString, name);
    QFETCH(int, value);
    state().orientation = 3;
    Watched watched;
    takeCalls();
    QVariantMap expected = propertiesOf(watched.printer);
    expected.insert(QStringLiteral("orientationEnum"), value);

    watched.printer.setPrintOrientation(name);

    QCOMPARE(takeCalls(), QStringList(QStringLiteral("setOrientation(%1)").arg(value)));
    QCOMPARE(propertiesOf(watched.printer), expected);
    QCOMPARE(watched.printer.orientationOption(), QStringLiteral("Portrait 180"));
    QCOMPARE(watched.takeEmissions(), QStringList(QStringLiteral("orientationEnumChanged %1").arg(value)));

    // Announced each time, also when nothing changes.
    watched.printer.setPrintOrientation(name);
    QCOMPARE(watched.takeEmissions(), QStringList(QStringLiteral("orientationEnumChanged %1").arg(value)));
}

void TestPrinterOptions::cutGoesByItsName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("value");
    QTest::newRow("No Cut") << QStringLiteral("No Cut") << 0;
    QTest::newRow("Cut After Page") << QStringLiteral("Cut After Page") << 1;
    QTest::newRow("Cut After Job") << QStringLiteral("Cut After Job") << 2;
    QTest::newRow("upper case") << QStringLiteral("CUT AFTER JOB") << 0;
    QTest::newRow("empty") << QString() << 0;
}

void TestPrinterOptions::cutGoesByItsName()
{
    QFETCH(QString, name);
    QFETCH(int, value);
    state().cut = 1;
    Watched watched;
    takeCalls();
    QVariantMap expected = propertiesOf(watched.printer);
    expected.insert(QStringLiteral("cutEnum"), value);

    watched.printer.setCutOption(name);

    QCOMPARE(takeCalls(), QStringList(QStringLiteral("setCut(%1)").arg(value)));
    QCOMPARE(propertiesOf(watched.printer), expected);
    QCOMPARE(watched.printer.cutOption(), QStringLiteral("Cut After Page"));
    QCOMPARE(watched.takeEmissions(), QStringList());
}

void TestPrinterOptions::ditheringGoesByItsName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("value");
    QTest::newRow("Floyd-Steinberg") << QStringLiteral("Floyd-Steinberg Dither") << 16;
    QTest::newRow("JaJuNi") << QStringLiteral("JaJuNi Dither") << 17;
    QTest::newRow("Stucki") << QStringLiteral("Stucki Dither") << 18;
    QTest::newRow("Burkes") << QStringLiteral("Burkes Dither") << 20;
    QTest::newRow("Atkinson") << QStringLiteral("Atkinson Dither") << 21;
    QTest::newRow("Sierra") << QStringLiteral("Sierra Dither") << 24;
    QTest::newRow("Sierra2") << QStringLiteral("Sierra2 Dither") << 25;
    QTest::newRow("Bayer") << QStringLiteral("Bayer Ordered Dither") << 32;
    QTest::newRow("Bayer without its blank") << QStringLiteral("BayerOrdered Dither") << 0;
    QTest::newRow("Yliluoma") << QStringLiteral("Yliluoma Ordered Dither") << 33;
    QTest::newRow("Threshold") << QStringLiteral("Threshold (No) Dither") << 0;
    QTest::newRow("Grayscale 1") << QStringLiteral("Grayscale Ribbon 1") << 65;
    QTest::newRow("Grayscale 2") << QStringLiteral("Grayscale Ribbon 2") << 66;
    QTest::newRow("unknown") << QStringLiteral("Some Dither") << 0;
    QTest::newRow("empty") << QString() << 0;
}

void TestPrinterOptions::ditheringGoesByItsName()
{
    QFETCH(QString, name);
    QFETCH(int, value);
    state().dithering = 17;
    Watched watched;
    takeCalls();
    const QVariantMap before = propertiesOf(watched.printer);

    watched.printer.setDitheringMethod(name);

    QCOMPARE(takeCalls(), QStringList(QStringLiteral("setDithering(%1)").arg(value)));
    QCOMPARE(propertiesOf(watched.printer), before);
    QCOMPARE(watched.takeEmissions(), QStringList());
}

void TestPrinterOptions::orientationIsAnnouncedAfterItIsSet()
{
    ZBSettingsPrinter printer;
    takeCalls();
    QStringList callsAtSignal;
    int propertyAtSignal = -1;
    connect(&printer, &ZBSettingsPrinter::orientationEnumChanged, this, [&] {
        callsAtSignal = takeCalls();
        propertyAtSignal = printer.orientationEnum();
    });
    printer.setPrintOrientation(QStringLiteral("Portrait"));
    QCOMPARE(callsAtSignal, QStringList(QStringLiteral("setOrientation(6)")));
    QCOMPARE(propertyAtSignal, 6);
}

void TestPrinterOptions::mapsCanBeFilledAgain()
{
    ZBSettingsPrinter printer;
    const QVariantMap before = propertiesOf(printer);
    takeCalls();
    for (const char *const slot : {"populateOrientationMap", "populateDitheringMap", "populateCutOptionsMap"})
        QVERIFY(QMetaObject::invokeMethod(&printer, slot));
    QCOMPARE(propertiesOf(printer), before);
    QCOMPARE(takeCalls(), QStringList());
    printer.setDitheringMethod(QStringLiteral("Burkes Dither"));
    QCOMPARE(takeCalls(), QStringList(QStringLiteral("setDithering(20)")));
}

QTEST_GUILESS_MAIN(TestPrinterOptions)
#include "tst_printeroptions.moc"
