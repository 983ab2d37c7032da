// The names in another language: a translator that is installed before the object is made changes them, their
// order and what the slots understand.
#include "recordingprinterlibraries.h"
#include "texts.h"
#include "zbsettingsprinter.h"

#include <QtCore/QTranslator>
#include <QtTest/QtTest>

using namespace RecordingPrinterLibraries;

namespace {

/// Knows the texts of the printer object, each by its context and, where it has one, its disambiguation.
class Translator : public QTranslator
{
public:
    QString translate(const char *context, const char *text, const char *disambiguation, int) const override
    {
        const QByteArray name = QByteArray(context) + '|' + text + '|' + disambiguation;
        return m_texts.value(name);
    }

    bool isEmpty() const override { return false; }

private:
    const QMap<QByteArray, QString> m_texts{
        {"ZBSettingsPrinter|Landscape|", QStringLiteral("Zquer")},
        {"ZBSettingsPrinter|Portrait|", QStringLiteral("Hoch")},
        {"ZBSettingsPrinter|Landscape 180|", QStringLiteral("Quer 180")},
        {"ZBSettingsPrinter|Portrait 180|", QStringLiteral("Ahoch 180")},
        {"ZBSettingsPrinter|No Cut|", QStringLiteral("Nicht schneiden")},
        {"ZBSettingsPrinter|Cut After Page|", QStringLiteral("Zuletzt je Seite")},
        {"ZBSettingsPrinter|Cut After Job|", QStringLiteral("Am Ende")},
        {"QObject|Dither|Dither method name", QStringLiteral("Streuung")},
        {"QObject|Ordered Dither|Ordered Dither method name", QStringLiteral("geordnete Streuung")},
        {"QObject|Grayscale Ribbon%1|Grayscale method name", QStringLiteral("%1. Graustufen")},
    };
};

} // namespace

class TestPrinterTranslations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void modelsAreTranslatedAndInTheOrderOfTheTranslations();
    void currentNamesAreTranslated();
    void slotsUnderstandTheTranslatedNamesAlone();
    void presetsSetTranslatedNames_data();
    void presetsSetTranslatedNames();
    void translatorThatComesLaterIsNotHeard();
    void presetsSpeakTheLanguageOfTheModels();

private:
    Translator m_translator;
};

void TestPrinterTranslations::init()
{
    reset();
    QVERIFY(QCoreApplication::installTranslator(&m_translator));
}

void TestPrinterTranslations::cleanup()
{
    QCoreApplication::removeTranslator(&m_translator);
}

void TestPrinterTranslations::modelsAreTranslatedAndInTheOrderOfTheTranslations()
{
    const ZBSettingsPrinter printer;
    QCOMPARE(printer.orientationComboBoxModel(), texts({"Ahoch 180", "Hoch", "Quer 180", "Zquer"}));
    QCOMPARE(printer.cutComboBoxModel(), texts({"Am Ende", "Nicht schneiden", "Zuletzt je Seite"}));
    QCOMPARE(printer.ditheringComboBoxModel(),
             texts({" 1. Graustufen", " 2. Graustufen", "Atkinson Streuung", "Bayer geordnete Streuung",
                    "Burkes Streuung", "Floyd-Steinberg Streuung", "JaJuNi Streuung", "Sierra Streuung",
                    "Sierra2 Streuung", "Stucki Streuung", "Threshold (No) Streuung",
                    "Yliluoma geordnete Streuung"}));
}

void TestPrinterTranslations::currentNamesAreTranslated()
{
    state().orientation = 6;
    state().cut = 2;
    state().dithering = 66;
    const ZBSettingsPrinter printer;
    QCOMPARE(printer.orientationOption(), QStringLiteral("Hoch"));
    QCOMPARE(printer.cutOption(), QStringLiteral("Am Ende"));
    QCOMPARE(printer.ditheringMethod(), QStringLiteral(" 2. Graustufen"));
}

void TestPrinterTranslations::slotsUnderstandTheTranslatedNamesAlone()
{
    ZBSettingsPrinter printer;
    takeCalls();
    printer.setPrintOrientation(QStringLiteral("Zquer"));
    printer.setPrintOrientation(QStringLiteral("Landscape"));
    printer.setCutOption(QStringLiteral("Zuletzt je Seite"));
    printer.setCutOption(QStringLiteral("Cut After Page"));
    printer.setDitheringMethod(QStringLiteral("Bayer geordnete Streuung"));
    printer.setDitheringMethod(QStringLiteral("Bayer Ordered Dither"));
    QCOMPARE(takeCalls(),
             texts({"setOrientation(5)", "setOrientation(0)", "setCut(1)", "setCut(0)", "setDithering(32)",
                    "setDithering(0)"}));
}

void TestPrinterTranslations::presetsSetTranslatedNames_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("defaults") << texts({"copies", "1"})
                              << texts({"Zquer", "Atkinson Streuung", "Zuletzt je Seite"});
    QTest::newRow("values") << texts({"orientation-requested", "3", "Dithering", "65", "CutMedia", "0"})
                            << texts({"Ahoch 180", " 1. Graustufen", "Nicht schneiden"});
    QTest::newRow("without the blank")
        << texts({"orientation-requested", "4", "Dithering", "32", "CutMedia", "2"})
        << texts({"Quer 180", "Bayergeordnete Streuung", "Am Ende"});
}

void TestPrinterTranslations::presetsSetTranslatedNames()
{
    QFETCH(QStringList, options);
    state().presets = {{QStringLiteral("Shoes"), options}};
    ZBSettingsPrinter printer;
    printer.loadPreset(QStringLiteral("Shoes"));
    QTEST((QStringList{printer.orientationOption(), printer.ditheringMethod(), printer.cutOption()}),
          "names");
}

void TestPrinterTranslations::translatorThatComesLaterIsNotHeard()
{
    QCoreApplication::removeTranslator(&m_translator);
    ZBSettingsPrinter printer;
    QVERIFY(QCoreApplication::installTranslator(&m_translator));
    QCOMPARE(printer.orientationComboBoxModel(),
             texts({"Landscape", "Landscape 180", "Portrait", "Portrait 180"}));
    takeCalls();
    printer.setPrintOrientation(QStringLiteral("Landscape"));
    QCOMPARE(takeCalls(), texts({"setOrientation(5)"}));
}

// Else a preset that is loaded after a change of the language would set the value of a name that no model
// holds.
void TestPrinterTranslations::presetsSpeakTheLanguageOfTheModels()
{
    state().presets = {
        {QStringLiteral("Shoes"), texts({"orientation-requested", "6", "Dithering", "16", "CutMedia", "2"})}};
    ZBSettingsPrinter printer;
    QCoreApplication::removeTranslator(&m_translator);
    takeCalls();
    printer.loadPreset(QStringLiteral("Shoes"));
    const QStringList calls = takeCalls();
    for (const char *const call : {"setOrientation(6)", "setDithering(16)", "setCut(2)"})
        QVERIFY2(calls.contains(QLatin1String(call)), call);
    QCOMPARE(printer.orientationOption(), QStringLiteral("Hoch"));
    QCOMPARE(printer.ditheringMethod(), QStringLiteral("Floyd-Steinberg Streuung"));
    QCOMPARE(printer.cutOption(), QStringLiteral("Am Ende"));
}

QTEST_GUILESS_MAIN(TestPrinterTranslations)
#include "tst_printertranslations.moc"
