// The table of options, and the three orders in which they are gone through.
#include "printeroptionrows.h"

#include "cupssupport.h"
#include "zbsettingsprinter.h"

namespace {

using Options = const CupsSupport &;
using Printer = ZBSettingsPrinter;
using Values = PrinterValues;
using Text = std::optional<QString>;

QString flagText(bool value)
{
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

int numberIn(const QString &text)
{
    return text.toInt();
}

/// Toward zero. A number that no int holds, which the conversion leaves undefined, comes to 0.
int withoutFraction(double value)
{
    constexpr double limit = 2147483648.0;
    return value > -limit - 1 && value < limit ? static_cast<int>(value) : 0;
}

template <typename Value, Value Values::*member, void (Printer::*set)(Value)>
void applyValue(Values &values, const Values &parsed, Printer &printer)
{
    values.*member = parsed.*member;
    (printer.*set)(values.*member);
}

template <QString Values::*member, void (Printer::*set)(QString)>
void applyName(Values &values, const Values &parsed, Printer &printer)
{
    values.*member = parsed.*member;
    (printer.*set)(values.*member);
}

template <bool (CupsSupport::*get)() const, bool Values::*member, void (Printer::*set)(bool)>
constexpr PrinterOptionRow flag(const char *key)
{
    return {key,
            [](Values &values, Options options, const PrinterNames &) { values.*member = (options.*get)(); },
            [](const Values &, Options options) { return flagText((options.*get)()); },
            [](Values &values, const Text &text, const PrinterTexts &) {
                values.*member = text == QLatin1String("True");
            },
            applyValue<bool, member, set>};
}

template <int Values::*member> void parseNumber(Values &values, const Text &text, const PrinterTexts &)
{
    values.*member = numberIn(text.value_or(QString()));
}

template <int (CupsSupport::*get)() const, int Values::*member, void (Printer::*set)(int)>
constexpr PrinterOptionRow number(const char *key)
{
    return {key,
            [](Values &values, Options options, const PrinterNames &) { values.*member = (options.*get)(); },
            [](const Values &, Options options) { return QString::number((options.*get)()); },
            parseNumber<member>, applyValue<int, member, set>};
}

template <int head, int Values::*member, void (Printer::*set)(int)>
constexpr PrinterOptionRow headOffset(const char *key)
{
    return {key,
            [](Values &values, Options options, const PrinterNames &) {
                values.*member = options.getColorHeadOffset(head);
            },
            [](const Values &, Options options) { return QString::number(options.getColorHeadOffset(head)); },
            parseNumber<member>, applyValue<int, member, set>};
}

constexpr PrinterOptionRow orientation{
    "orientation-requested",
    [](Values &values, Options options, const PrinterNames &names) {
        values.orientationEnum = options.getOrientation();
        values.orientationOption = names.orientations.key(values.orientationEnum);
    },
    [](const Values &, Options options) { return QString::number(int(options.getOrientation())); },
    [](Values &values, const Text &text, const PrinterTexts &texts) {
        constexpr int landscape = 5;
        values.orientationOption = orientationNameOfPreset(text ? numberIn(*text) : landscape, texts);
    },
    applyName<&Values::orientationOption, &Printer::setPrintOrientation>};

constexpr PrinterOptionRow dithering{
    "Dithering",
    [](Values &values, Options options, const PrinterNames &names) {
        values.ditheringMethod = names.ditheringMethods.key(options.getDithering());
    },
    [](const Values &, Options options) { return QString::number(options.getDithering()); },
    [](Values &values, const Text &text, const PrinterTexts &texts) {
        constexpr int atkinson = 21;
        values.ditheringMethod = ditheringNameOfPreset(text ? numberIn(*text) : atkinson, texts);
    },
    applyName<&Values::ditheringMethod, &Printer::setDitheringMethod>};

constexpr PrinterOptionRow cut{
    "CutMedia",
    [](Values &values, Options options, const PrinterNames &names) {
        values.cutEnum = options.getCut();
        values.cutOption = names.cuts.key(values.cutEnum);
    },
    // The cut mode that the page shows, which another program may have changed since.
    [](const Values &values, Options) { return QString::number(values.cutEnum); },
    [](Values &values, const Text &text, const PrinterTexts &texts) {
        constexpr int afterPage = 1;
        values.cutOption = cutNameOfPreset(text ? numberIn(*text) : afterPage, texts);
    },
    applyName<&Values::cutOption, &Printer::setCutOption>};

// A preset saves the fraction of the stop and does not load it: of "2.5" it makes 0.
constexpr PrinterOptionRow backfeed{
    "Stop",
    [](Values &values, Options options, const PrinterNames &) {
        values.backfeedOffset = withoutFraction(options.getStop());
    },
    [](const Values &, Options options) { return QString::number(options.getStop(), 'g', 6); },
    parseNumber<&Values::backfeedOffset>,
    applyValue<int, &Values::backfeedOffset, &Printer::setBackfeedOffset>};

// Part of a preset for programs that read it; loading one leaves the ribbon saver as the user has set it.
constexpr PrinterOptionRow ribbonSaver{"RibbonSaver",
                                       [](Values &values, Options options, const PrinterNames &) {
                                           values.ribbonSaver = options.getRibbonSaver();
                                       },
                                       [](const Values &, Options options) {
                                           return options.getRibbonSaver() ? QStringLiteral("Enabled")
                                                                           : QStringLiteral("Disabled");
                                       },
                                       nullptr, nullptr};

constexpr PrinterOptionRow negative =
    flag<&CupsSupport::getInverse, &Values::negative, &Printer::setNegative>("NegativePrint");
constexpr PrinterOptionRow mirror =
    flag<&CupsSupport::getMirror, &Values::mirror, &Printer::setMirror>("MirrorPrint");
constexpr PrinterOptionRow overprint =
    flag<&CupsSupport::getOverprint, &Values::overprint, &Printer::setOverprint>("Overprint");
constexpr PrinterOptionRow whitebase =
    flag<&CupsSupport::getWhiteBase, &Values::whitebase, &Printer::setWhitebase>("WhiteBase");
constexpr PrinterOptionRow head1 =
    headOffset<1, &Values::head1HeatOffset, &Printer::setHead1HeatOffset>("head1Offset");
constexpr PrinterOptionRow head2 =
    headOffset<2, &Values::head2HeatOffset, &Printer::setHead2HeatOffset>("head2Offset");
constexpr PrinterOptionRow feed =
    number<&CupsSupport::getFeed, &Values::feedOffset, &Printer::setFeedOffset>("Feed");
constexpr PrinterOptionRow horizontal1 =
    number<&CupsSupport::getOffsetH1, &Values::horizontal1Offset, &Printer::setHorizontal1Offset>("Hoffset1");
constexpr PrinterOptionRow horizontal2 =
    number<&CupsSupport::getOffsetH2, &Values::horizontal2Offset, &Printer::setHorizontal2Offset>("Hoffset2");
constexpr PrinterOptionRow vertical1 =
    number<&CupsSupport::getOffsetV1, &Values::vertical1Offset, &Printer::setVertical1Offset>("Voffset1");
constexpr PrinterOptionRow vertical2 =
    number<&CupsSupport::getOffsetV2, &Values::vertical2Offset, &Printer::setVertical2Offset>("Voffset2");
constexpr PrinterOptionRow r1 =
    number<&CupsSupport::getR1Tension, &Values::r1Tension, &Printer::setR1Tension>("R1TensionAdjust");
constexpr PrinterOptionRow r2 =
    number<&CupsSupport::getR2Tension, &Values::r2Tension, &Printer::setR2Tension>("R2TensionAdjust");

Text textBehind(const char *key, const QStringList &options)
{
    const int position = options.indexOf(QLatin1String(key));
    return position < 0 ? Text() : options.value(position + 1);
}

} // namespace

const std::array<const PrinterOptionRow *, 18> printerOptionRowsInReadingOrder{
    &negative, &mirror, &overprint,   &whitebase,   &orientation, &dithering, &cut, &head1, &head2,
    &backfeed, &feed,   &horizontal1, &horizontal2, &vertical1,   &vertical2, &r1,  &r2,    &ribbonSaver};

const std::array<const PrinterOptionRow *, 18> printerOptionRowsInSavingOrder{
    &orientation, &mirror,      &negative,  &overprint, &whitebase, &cut,
    &horizontal1, &horizontal2, &vertical1, &vertical2, &feed,      &backfeed,
    &dithering,   &head1,       &head2,     &r1,        &r2,        &ribbonSaver};

const std::array<const PrinterOptionRow *, 17> printerOptionRowsInLoadingOrder{
    &negative,    &mirror,      &overprint,   &whitebase, &head1,    &head2,
    &horizontal1, &horizontal2, &vertical1,   &vertical2, &backfeed, &feed,
    &r1,          &r2,          &orientation, &dithering, &cut};

PrinterValues valuesOfPreset(const QStringList &options, const PrinterTexts &texts)
{
    PrinterValues values;
    for (const PrinterOptionRow *const option : printerOptionRowsInLoadingOrder)
        option->parse(values, textBehind(option->key, options), texts);
    return values;
}
