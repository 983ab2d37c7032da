// The presets of a list in memory, and what of them is not on the disk yet.
#pragma once

#include "folderlock.h"
#include "preset_p.h"
#include "presetfolder.h"
#include "presetlist.h"

#include <QtCore/QHash>
#include <QtCore/QSet>

#include <memory>
#include <optional>
#include <vector>

// Not exported with the class around it.
struct ZBPRESETS_NO_EXPORT PresetList::Private
{
    Private(const QString &model, bool withPredefined);
    int read(PresetFolderContent *content) const;

    int placeOf(const Preset *preset) const;
    Preset *defaultCurrent() const;
    QString currentName() const { return current ? current->d->record.displayName : QString(); }
    QStringList names(bool predefined) const;

    static bool isUnsaved(const Preset &preset);
    bool hasChanges() const;
    void save();
    int writeChanges(PresetFolder *folder, const PresetFolderContent &present);
    int writeOrder(PresetFolder *folder, const PresetFolderContent &present) const;
    int removeDeleted(PresetFolder *folder);
    int addUnsaved(PresetFolder *folder);
    void saveCurrent();

    void takeOver(const PresetFolderContent &content);
    void takeOverPresets(const PresetFolderContent &content);
    void takeOverCurrent(const std::optional<PresetOrder> &order);
    bool isDeleted(const StoredPreset &stored) const;
    PresetOrder order() const;
    void describeCurrent(PresetOrder *order) const;

    void complain(const QStringList &complaints);
    void noteOutcome(int error, bool hasWritten);

    const QString modelName;
    const QString path;
    std::vector<std::unique_ptr<Preset>> presets; // the predefined ones come first
    QHash<QString, PresetRecord> deleted; // by file name, until the files are gone
    Preset *current = nullptr;
    bool isCurrentChanged = false; // since it was last on the disk
    int lastIndex = 0;
    LockPatience patience;
    QSet<QString> complained;
    int lastError = 0;
};
