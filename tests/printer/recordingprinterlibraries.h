// A printer-option library and a preset library that note every call, in place of the device's.
//
// The program that links this has the classes CupsSupport, Preset and PresetList of its own. They stand
// before those of the shared libraries, as a maker's own would.
#pragma once

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace RecordingPrinterLibraries {

/// What the test sets and looks at. Calls are noted as they would be written: "setColorHeadOffset(7, 2)".
struct State
{
    QStringList calls;

    /// What the getters return; the setters do not change it, unless they are told to keep.
    int orientation = 0;
    int dithering = 0;
    int cut = 0;
    QMap<QString, int> numbers; ///< by getter, the head's number behind "getColorHeadOffset"
    QMap<QString, bool> flags; ///< by getter
    double stop = 0;

    /// Options of the presets that findPreset() finds, by name.
    QMap<QString, QStringList> presets;
    QStringList userNames;
    QStringList predefinedNames;
    QString nameAfterDeletion;
    int lastIndex = 0;
};

State &state();
/// Forgets everything, and the presets that were made.
void reset();
/// The calls since the last clearing, and clears them.
QStringList takeCalls();
/// The calls of the setters among \a calls.
QStringList changes(const QStringList &calls);

} // namespace RecordingPrinterLibraries
