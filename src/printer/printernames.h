// The display names of orientations, cut modes and dithering methods.
#pragma once

#include <QtCore/QMap>
#include <QtCore/QString>

/// Name to value, as the combo boxes show the names: in the order of their texts.
using NamesAndValues = QMap<QString, int>;

/// The translated words of which the names of the dithering methods are made.
struct DitheringWords
{
    QString dither;
    QString orderedDither;
    QString grayscalePattern;

    static DitheringWords translated();
};

/// The names that one object goes by, in the language of its construction.
struct PrinterNames
{
    DitheringWords ditheringWords;
    NamesAndValues orientations;
    NamesAndValues ditheringMethods;
    NamesAndValues cuts;
};

NamesAndValues orientationNames();
NamesAndValues cutNames();
NamesAndValues ditheringNames(const DitheringWords &words);

/// The name that a preset's value selects. Not the reverse of the lists above: what the value does not name
/// is "Landscape 180" (4 included), and "Cut After Page".
QString orientationNameOfPreset(int value);
QString cutNameOfPreset(int value);
/// As above; what the value does not name, 21 included, is the Atkinson method. 32 gives a name that no list
/// holds.
QString ditheringNameOfPreset(int value, const DitheringWords &words);
