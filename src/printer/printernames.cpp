// The tables of names.
#include "printernames.h"

#include <QtCore/QCoreApplication>

namespace {

struct Name
{
    const char *text;
    int value;
};

// The names stand for the opposite values of what IPP (RFC 8011, orientation-requested) calls so, which suits
// how the printer feeds its supply.
constexpr Name orientations[] = {
    {QT_TRANSLATE_NOOP("ZBSettingsPrinter", "Landscape"), 5},
    {QT_TRANSLATE_NOOP("ZBSettingsPrinter", "Portrait"), 6},
    {QT_TRANSLATE_NOOP("ZBSettingsPrinter", "Landscape 180"), 4},
    {QT_TRANSLATE_NOOP("ZBSettingsPrinter", "Portrait 180"), 3},
};
constexpr int otherOrientation = 2;

constexpr Name cuts[] = {
    {QT_TRANSLATE_NOOP("ZBSettingsPrinter", "No Cut"), 0},
    {QT_TRANSLATE_NOOP("ZBSettingsPrinter", "Cut After Page"), 1},
    {QT_TRANSLATE_NOOP("ZBSettingsPrinter", "Cut After Job"), 2},
};
constexpr int otherCut = 1;

enum class Word { Dither, OrderedDither };

struct DitheringMethod
{
    const char *method;
    Word word;
    int value;
};

// The words of the methods are names of persons and stay as they are in every language.
constexpr DitheringMethod methods[] = {
    {"Floyd-Steinberg ", Word::Dither, 16}, {"JaJuNi ", Word::Dither, 17},
    {"Stucki ", Word::Dither, 18},          {"Burkes ", Word::Dither, 20},
    {"Atkinson ", Word::Dither, 21},        {"Sierra ", Word::Dither, 24},
    {"Sierra2 ", Word::Dither, 25},         {"Bayer ", Word::OrderedDither, 32},
    {"Yliluoma ", Word::OrderedDither, 33}, {"Threshold (No) ", Word::Dither, 0},
};
constexpr const DitheringMethod &otherMethod = methods[4];
constexpr int bayer = 32;

struct GrayscaleRibbon
{
    const char *number;
    int value;
};

constexpr GrayscaleRibbon grayscaleRibbons[] = {{" 1", 65}, {" 2", 66}};

template <int size> QStringList translated(const Name (&names)[size])
{
    QStringList result;
    for (const Name &name : names)
        result.append(QCoreApplication::translate("ZBSettingsPrinter", name.text));
    return result;
}

template <int size> NamesAndValues namesAndValues(const Name (&names)[size], const QStringList &texts)
{
    NamesAndValues result;
    for (int i = 0; i < size; ++i)
        result.insert(texts.at(i), names[i].value);
    return result;
}

template <int size> QString nameOf(int value, const Name (&names)[size], int other, const QStringList &texts)
{
    for (int i = 0; i < size; ++i) {
        if (names[i].value == value)
            return texts.at(i);
    }
    return texts.at(other);
}

QString nameOf(const DitheringMethod &method, const PrinterTexts &texts)
{
    return QLatin1String(method.method) + (method.word == Word::Dither ? texts.dither : texts.orderedDither);
}

QString nameOf(const GrayscaleRibbon &ribbon, const PrinterTexts &texts)
{
    return texts.grayscalePattern.arg(QLatin1String(ribbon.number));
}

} // namespace

PrinterTexts PrinterTexts::translated()
{
    return {QCoreApplication::translate("QObject", "Dither", "Dither method name"),
            QCoreApplication::translate("QObject", "Ordered Dither", "Ordered Dither method name"),
            QCoreApplication::translate("QObject", "Grayscale Ribbon%1", "Grayscale method name"),
            ::translated(::orientations), ::translated(::cuts)};
}

NamesAndValues orientationNames(const PrinterTexts &texts)
{
    return namesAndValues(orientations, texts.orientations);
}

NamesAndValues cutNames(const PrinterTexts &texts)
{
    return namesAndValues(cuts, texts.cuts);
}

NamesAndValues ditheringNames(const PrinterTexts &texts)
{
    NamesAndValues result;
    for (const DitheringMethod &method : methods)
        result.insert(nameOf(method, texts), method.value);
    for (const GrayscaleRibbon &ribbon : grayscaleRibbons)
        result.insert(nameOf(ribbon, texts), ribbon.value);
    return result;
}

QString orientationNameOfPreset(int value, const PrinterTexts &texts)
{
    return nameOf(value, orientations, otherOrientation, texts.orientations);
}

QString cutNameOfPreset(int value, const PrinterTexts &texts)
{
    return nameOf(value, cuts, otherCut, texts.cuts);
}

QString ditheringNameOfPreset(int value, const PrinterTexts &texts)
{
    // Without the blank: a preset with this method has always been loaded as the threshold method, which is
    // what a name that no list holds comes to.
    if (value == bayer)
        return QStringLiteral("Bayer") + texts.orderedDither;
    for (const DitheringMethod &method : methods) {
        if (method.value == value)
            return nameOf(method, texts);
    }
    for (const GrayscaleRibbon &ribbon : grayscaleRibbons) {
        if (ribbon.value == value)
            return nameOf(ribbon, texts);
    }
    return nameOf(otherMethod, texts);
}
