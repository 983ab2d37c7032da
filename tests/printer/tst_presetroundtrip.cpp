// Presets over the real printer-option and preset libraries: what was saved loads back, in this object and in
// one of a later start, and what a preset changes on purpose changes as it always does.
#include "cupssupport.h"
#include "diskcalls.h"
#include "zbsettingsprinter.h"

#include <QtCore/QDir>
#include <QtCore/QRandomGenerator>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <memory>

namespace {

struct Named
{
    const char *name;
    int value;
};

constexpr Named orientations[] = {
    {"Landscape", 5}, {"Portrait", 6}, {"Landscape 180", 4}, {"Portrait 180", 3}};
constexpr Named cuts[] = {{"No Cut", 0}, {"Cut After Page", 1}, {"Cut After Job", 2}};
// The last but one is lost on purpose: a preset with the Bayer method loads as the threshold method.
constexpr Named dithers[] = {
    {"Floyd-Steinberg Dither", 16}, {"JaJuNi Dither", 17},        {"Stucki Dither", 18},
    {"Burkes Dither", 20},          {"Atkinson Dither", 21},      {"Sierra Dither", 24},
    {"Sierra2 Dither", 25},         {"Grayscale Ribbon 1", 65},   {"Grayscale Ribbon 2", 66},
    {"Threshold (No) Dither", 0},   {"Bayer Ordered Dither", 32}, {"Yliluoma Ordered Dither", 33}};

int pick(QRandomGenerator &random, int from, int to)
{
    return random.bounded(from, to + 1);
}

bool flip(QRandomGenerator &random)
{
    return random.bounded(2) == 1;
}

template <int size> const Named &pick(QRandomGenerator &random, const Named (&names)[size])
{
    return names[random.bounded(size)];
}

/// Sets every option through its slot, and says what the printer-option library shall hold then.
QVariantMap setEverything(ZBSettingsPrinter &printer, QRandomGenerator &random)
{
    QVariantMap values;
    const auto flag = [&](const char *name, void (ZBSettingsPrinter::*set)(bool)) {
        const bool value = flip(random);
        (printer.*set)(value);
        values.insert(QLatin1String(name), value);
    };
    const auto number = [&](const char *name, void (ZBSettingsPrinter::*set)(int), int limit) {
        const int value = pick(random, -limit, limit);
        (printer.*set)(value);
        values.insert(QLatin1String(name), value);
    };
    const auto named = [&](const char *name, void (ZBSettingsPrinter::*set)(QString), const Named &choice) {
        (printer.*set)(QLatin1String(choice.name));
        values.insert(QLatin1String(name), choice.value);
    };
    flag("negative", &ZBSettingsPrinter::setNegative);
    flag("mirror", &ZBSettingsPrinter::setMirror);
    flag("overprint", &ZBSettingsPrinter::setOverprint);
    flag("white base", &ZBSettingsPrinter::setWhitebase);
    flag("ribbon saver", &ZBSettingsPrinter::setRibbonSaver);
    number("head 1", &ZBSettingsPrinter::setHead1HeatOffset, 50);
    number("head 2", &ZBSettingsPrinter::setHead2HeatOffset, 50);
    number("H1", &ZBSettingsPrinter::setHorizontal1Offset, 2000);
    number("H2", &ZBSettingsPrinter::setHorizontal2Offset, 2000);
    number("V1", &ZBSettingsPrinter::setVertical1Offset, 2000);
    number("V2", &ZBSettingsPrinter::setVertical2Offset, 2000);
    number("stop", &ZBSettingsPrinter::setBackfeedOffset, 2000);
    number("feed", &ZBSettingsPrinter::setFeedOffset, 2000);
    number("R1", &ZBSettingsPrinter::setR1Tension, 10);
    number("R2", &ZBSettingsPrinter::setR2Tension, 10);
    named("orientation", &ZBSettingsPrinter::setPrintOrientation, pick(random, orientations));
    named("cut", &ZBSettingsPrinter::setCutOption, pick(random, cuts));
    named("dithering", &ZBSettingsPrinter::setDitheringMethod, pick(random, dithers));
    return values;
}

/// What the printer-option library holds, as an object of its own sees it.
QVariantMap storedValues()
{
    const CupsSupport options;
    return {{QStringLiteral("negative"), options.getInverse()},
            {QStringLiteral("mirror"), options.getMirror()},
            {QStringLiteral("overprint"), options.getOverprint()},
            {QStringLiteral("white base"), options.getWhiteBase()},
            {QStringLiteral("ribbon saver"), options.getRibbonSaver()},
            {QStringLiteral("head 1"), options.getColorHeadOffset(1)},
            {QStringLiteral("head 2"), options.getColorHeadOffset(2)},
            {QStringLiteral("H1"), options.getOffsetH1()},
            {QStringLiteral("H2"), options.getOffsetH2()},
            {QStringLiteral("V1"), options.getOffsetV1()},
            {QStringLiteral("V2"), options.getOffsetV2()},
            {QStringLiteral("stop"), int(options.getStop())},
            {QStringLiteral("feed"), options.getFeed()},
            {QStringLiteral("R1"), options.getR1Tension()},
            {QStringLiteral("R2"), options.getR2Tension()},
            {QStringLiteral("orientation"), int(options.getOrientation())},
            {QStringLiteral("cut"), options.getCut()},
            {QStringLiteral("dithering"), options.getDithering()}};
}

} // namespace

class TestPresetRoundTrip : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void randomOptionsComeBack();
    void presetIsThereAfterARestart();
    void deletedPresetIsGoneAfterARestart();
    void secondPresetOfANameIsFoundFirst();
    void userPresetsAreListedBehindTheCurrentSettings();
    void predefinedPresetsStay();
    void presetThatIsSetAlreadyWritesNothing();
    void fractionOfTheStopIsLost();
    void unknownNameChangesNothing();

private:
    std::unique_ptr<QTemporaryDir> m_home;
};

void TestPresetRoundTrip::init()
{
    // In memory where that can be had, since every setter waits for the disk.
    const QString memory = QStringLiteral("/dev/shm");
    const QString folder = QFileInfo(memory).isWritable() ? memory : QDir::tempPath();
    m_home = std::make_unique<QTemporaryDir>(folder + QStringLiteral("/tst_presetroundtrip-XXXXXX"));
    QVERIFY(m_home->isValid());
    qputenv("HOME", QFile::encodeName(m_home->path()));
}

void TestPresetRoundTrip::cleanup()
{
    m_home.reset();
}

void TestPresetRoundTrip::randomOptionsComeBack()
{
    QRandomGenerator random(20261121);
    ZBSettingsPrinter printer;
    for (int time = 0; time < 60; ++time) {
        const QString name = QStringLiteral("preset %1").arg(time);
        QVariantMap expected = setEverything(printer, random);
        QCOMPARE(storedValues(), expected);
        QVERIFY(printer.addPreset(name));

        const QVariantMap others = setEverything(printer, random);
        QCOMPARE(printer.loadPreset(name).size(), 36);

        // Left as it is by presets.
        expected.insert(QStringLiteral("ribbon saver"), others.value(QStringLiteral("ribbon saver")));
        if (expected.value(QStringLiteral("dithering")) == 32)
            expected.insert(QStringLiteral("dithering"), 0);
        QCOMPARE(storedValues(), expected);
        QCOMPARE(printer.orientationEnum(), expected.value(QStringLiteral("orientation")).toInt());
        QCOMPARE(printer.cutEnum(), expected.value(QStringLiteral("cut")).toInt());
        QCOMPARE(printer.backfeedOffset(), expected.value(QStringLiteral("stop")).toInt());
    }
}

void TestPresetRoundTrip::presetIsThereAfterARestart()
{
    QRandomGenerator random(4711);
    QVariantMap expected;
    {
        ZBSettingsPrinter printer;
        setEverything(printer, random);
        printer.setDitheringMethod(QStringLiteral("Stucki Dither"));
        expected = storedValues();
        printer.addPreset(QStringLiteral("Shoes"));
        printer.addPreset(QStringLiteral("Boots"));
        setEverything(printer, random);
        expected.insert(QStringLiteral("ribbon saver"), storedValues().value(QStringLiteral("ribbon saver")));
    }
    ZBSettingsPrinter restarted;
    QCOMPARE(restarted.populatePresetList().mid(1),
             (QStringList{QStringLiteral("Shoes"), QStringLiteral("Boots")}));
    QVERIFY(!restarted.loadPreset(QStringLiteral("Shoes")).isEmpty());
    QCOMPARE(storedValues(), expected);
}

void TestPresetRoundTrip::deletedPresetIsGoneAfterARestart()
{
    {
        ZBSettingsPrinter printer;
        for (const char *const name : {"a", "b", "c"})
            printer.addPreset(QLatin1String(name));
        printer.deletePreset(QStringLiteral("b"));
        printer.deletePreset(QStringLiteral("no such preset"));
    }
    QCOMPARE(ZBSettingsPrinter().populatePresetList().mid(1),
             (QStringList{QStringLiteral("a"), QStringLiteral("c")}));
}

void TestPresetRoundTrip::secondPresetOfANameIsFoundFirst()
{
    ZBSettingsPrinter printer;
    printer.setFeedOffset(1);
    printer.addPreset(QStringLiteral("Shoes"));
    printer.setFeedOffset(2);
    printer.addPreset(QStringLiteral("Shoes"));
    printer.setFeedOffset(3);
    QCOMPARE(printer.populatePresetList().count(QStringLiteral("Shoes")), 2);
    printer.loadPreset(QStringLiteral("Shoes"));
    QCOMPARE(printer.feedOffset(), 2);
    printer.deletePreset(QStringLiteral("Shoes"));
    printer.loadPreset(QStringLiteral("Shoes"));
    QCOMPARE(printer.feedOffset(), 1);
}

void TestPresetRoundTrip::userPresetsAreListedBehindTheCurrentSettings()
{
    ZBSettingsPrinter printer;
    QCOMPARE(printer.populatePresetList(), QStringList(QStringLiteral("<Current Settings>")));
    printer.addPreset(QStringLiteral("Sample Preset"));
    printer.addPreset(QStringLiteral("Shoes"));
    QCOMPARE(printer.populatePresetList(),
             (QStringList{QStringLiteral("<Current Settings>"), QStringLiteral("Shoes")}));
}

void TestPresetRoundTrip::predefinedPresetsStay()
{
    ZBSettingsPrinter printer;
    for (const char *const name : {"<Current Settings>", "<System Settings>", "<Default Settings>"})
        printer.deletePreset(QLatin1String(name));
    QCOMPARE(printer.populatePresetList(), QStringList(QStringLiteral("<Current Settings>")));
    printer.setMirror(true);
    QCOMPARE(printer.loadPreset(QStringLiteral("<Default Settings>")),
             (QStringList{QStringLiteral("orientation-requested"), QStringLiteral("5"),
                          QStringLiteral("copies"), QStringLiteral("1")}));
    QCOMPARE(CupsSupport().getMirror(), false);
    QCOMPARE(int(CupsSupport().getOrientation()), 5);
}

// A preset costs the disk what it changes.
void TestPresetRoundTrip::presetThatIsSetAlreadyWritesNothing()
{
    QRandomGenerator random(12);
    ZBSettingsPrinter printer;
    setEverything(printer, random);
    printer.setDitheringMethod(QStringLiteral("Stucki Dither"));
    printer.addPreset(QStringLiteral("Shoes"));
    const auto renamings = [](const DiskCalls::Record &record) {
        return record.steps(QDir::homePath())
            .filter(QStringLiteral("lpoptions.new"))
            .filter(QStringLiteral("rename"))
            .size();
    };
    {
        const DiskCalls::Record record;
        printer.loadPreset(QStringLiteral("Shoes"));
        QCOMPARE(renamings(record), 0);
    }
    printer.setFeedOffset(printer.feedOffset() == 1 ? 2 : 1);
    printer.setMirror(!printer.mirror());
    const DiskCalls::Record record;
    printer.loadPreset(QStringLiteral("Shoes"));
    QCOMPARE(renamings(record), 2);
}

void TestPresetRoundTrip::fractionOfTheStopIsLost()
{
    CupsSupport options;
    options.setStop(2.5);
    ZBSettingsPrinter printer;
    QCOMPARE(printer.backfeedOffset(), 2);
    printer.addPreset(QStringLiteral("Shoes"));
    const QStringList list = printer.loadPreset(QStringLiteral("Shoes"));
    QCOMPARE(list.value(list.indexOf(QStringLiteral("Stop")) + 1), QStringLiteral("2.5"));
    QCOMPARE(printer.backfeedOffset(), 0);
    QCOMPARE(options.getStop(), 0.0);
}

void TestPresetRoundTrip::unknownNameChangesNothing()
{
    ZBSettingsPrinter printer;
    printer.setMirror(true);
    const QVariantMap before = storedValues();
    QCOMPARE(printer.loadPreset(QStringLiteral("no such preset")), QStringList());
    QCOMPARE(storedValues(), before);
}

QTEST_GUILESS_MAIN(TestPresetRoundTrip)
#include "tst_presetroundtrip.moc"
