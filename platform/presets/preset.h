// Preset: a named set of print options, as a PresetList keeps it.
#pragma once

#include "zbpresets_export.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

/**
 * What a preset holds is given once, when it is made, and does not change by the caller's hand afterwards.
 *
 * Options are a flat list of keys and values that take turns: key, value, key, value. Any text may stand in
 * it, keys may come more than once, and the last key may lack its value; all of this is kept as it is.
 */
class ZBPRESETS_EXPORT Preset
{
public:
    /// Whose a preset is, which decides whether it is kept and may be deleted.
    // NOLINTNEXTLINE(bugprone-reserved-identifier): the name is settled
    enum _State {
        Temporary = 0, ///< listed with the user's presets, but never written to the disk
        Predefined = 1, ///< comes with the device: never written to the disk, never deleted
        User = 2 ///< a user's own: written to the disk, may be deleted
    };

    /**
     * Touches no disk.
     *
     * \a modelName is the printer model that the preset is for; a list loads the presets of its own model
     * only. \a fileName is the wish for the name of the file: the file is named so where the name is safe and
     * free, and much like it where it is not (README.md beside this header says how). It need not be unique.
     * \a displayName is the preset's name, any text; two presets may have the same. \a description is for
     * people who read the file; nothing else is made of it. \a index is the preset's place among those whose
     * order is not known otherwise, the lower first; PresetList::applyLastPresetIndex() gives the next one.
     */
    Preset(const QString &modelName, const QString &fileName, Preset::_State state,
           const QStringList &options, const QString &displayName, const QString &description, int index);
    ~Preset();

    /// The options as they were given.
    QStringList options() const;

private:
    Q_DISABLE_COPY(Preset)
    friend class PresetList;
    struct Private;
    Private *d;
};
