// The display names of orientations, cut modes and dithering methods.
#pragma once

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// Name to value, as the combo boxes show the names: in the order of their texts.
using NamesAndValues = QMap<QString, int>;

/**
 * The translated texts of which names are made, in the language in which they were taken. A page shows the
 * names of that language and hands them back, so nothing asks for a translation again later.
 */
struct PrinterTexts
{
    QString dither;
    QString orderedDither;
    QString grayscalePattern;
    QStringList orientations;
    QStringList cuts;

    static PrinterTexts translated();
};

NamesAndValues orientationNames(const PrinterTexts &texts);
NamesAndValues cutNames(const PrinterTexts &texts);
NamesAndValues ditheringNames(const PrinterTexts &texts);

/// The names that one object goes by.
struct PrinterNames
{
    PrinterTexts texts;
    NamesAndValues orientations;
    NamesAndValues ditheringMethods;
    NamesAndValues cuts;
};

/// The name that a preset's value selects. Not the reverse of the lists above: what the value does not name
/// is "Landscape 180" (4 included), and "Cut After Page".
QString orientationNameOfPreset(int value, const PrinterTexts &texts);
QString cutNameOfPreset(int value, const PrinterTexts &texts);
/// As above; what the value does not name, 21 included, is the Atkinson method. 32 gives a name that no list
/// holds.
QString ditheringNameOfPreset(int value, const PrinterTexts &texts);
