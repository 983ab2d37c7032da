// PresetList: the presets of one printer model, those that come with the device and those of the user.
#pragma once

#include "preset.h"
#include "zbpresets_export.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

/**
 * The list is in order: first the predefined presets "<Current Settings>", "<System Settings>" and "<Default
 * Settings>", then the user's, the newest last. One of them, or none, is the current one.
 *
 * The user's presets are files in QDir::homePath() + "/.cups/Presets/", one a preset, with a file beside them
 * that holds the order and the current preset; README.md beside this header describes both. The folder is
 * read when the list is made and again by each save(), which also brings in what other processes added and
 * takes out what they deleted.
 *
 * The list owns its presets. A pointer to one is good until deletePreset(), save() or the list's end.
 *
 * Nothing here throws or reports a failure to the caller. What cannot be read or written is one warning in
 * the log; as long as writing fails for the same reason, it is not repeated. A change that could not be
 * written stays in the list and is tried again by the next save(). Calls that write wait for another process
 * that is writing, at most for a second and a half.
 *
 * To be used from one thread.
 */
class ZBPRESETS_EXPORT PresetList
{
public:
    /**
     * Reads the presets of \a modelName. A file that is no preset is renamed to "*.damaged", which is
     * logged, and the others are read. \a withPredefined: whether the predefined presets are in the list.
     */
    PresetList(const QString &modelName, bool withPredefined);
    /// Ends the presets. Writes nothing.
    ~PresetList();

    /**
     * The preset with the display name \a name, exactly and with upper and lower case told apart; null when
     * there is none. Of several with the same name the newest, that is the last in the list, also before a
     * predefined one.
     */
    Preset *findPreset(const QString &name) const;

    /// Adds \a preset at the end of the list, which owns it from now on, whatever its name; it becomes one of
    /// the list's model. It is on the disk when the next save() returns. A null pointer, or a preset that is
    /// in the list, changes nothing.
    void addPreset(Preset *preset);

    /**
     * Takes \a preset out of the list and ends it; its file goes with the next save(). The preset before it
     * in the list becomes the current one (the first one, if there is none before it), and its name is
     * returned; empty when no preset is left. Whoever looks that name up gets the newest preset of the name,
     * which is another one where two have it.
     *
     * A null pointer, a predefined preset and one that is not in this list are not deleted: nothing changes,
     * and the name of the current preset is returned, empty when none is current.
     */
    QString deletePreset(Preset *preset);

    /**
     * Makes \a preset the current one, or none with a null pointer. It is on the disk when this returns, but
     * for a preset that was not saved yet, where save() does it. A temporary one has no file: on the disk,
     * and here after the next save(), none is current then. A preset that is not in this list changes
     * nothing.
     */
    void setCurrentPreset(Preset *preset);

    /// The index for the next preset that is made: one more than the highest of all presets in the list and
    /// of all indices that were given so. Each call gives another one.
    int applyLastPresetIndex();

    /**
     * Writes what was changed since the last save: new presets, deletions, order and current preset. What
     * other processes changed meanwhile is merged: nothing that they added is lost, nothing that they deleted
     * comes back. When it returns, everything is on the disk (fsync(2)). What is
     * there already is not written again.
     *
     * \a predefinedNames are the names that have no file. They are not needed here, since a preset's state
     * says the same: a preset that the user gave one of these names is the user's and is written.
     */
    void save(const QStringList &predefinedNames);

    /// The names of all presets but the predefined ones, in the order of the list; a name that several
    /// presets have comes as often.
    QStringList getUserPresetNames() const;

    /// The names of the predefined presets, in the order of the list; empty in a list made without them.
    QStringList getPredefinedPresetNames() const;

private:
    Q_DISABLE_COPY(PresetList)
    struct Private;
    Private *d;
};
