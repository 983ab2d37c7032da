// How the presets in memory meet those on the disk: reading, merging, writing.
#include "presetlist_p.h"

#include <QtCore/QDebug>

#include <algorithm>
#include <cerrno>

namespace {

// In milliseconds. Short, since files can be read without the lock, too.
constexpr int patienceOfReading = 500;

} // namespace

// Under the lock, so that another process's change is seen as a whole. Files can be read without it just as
// well, should that process hang, or the file system have no locks.
int PresetList::Private::read(PresetFolderContent *content) const
{
    {
        PresetFolder locked(path, modelName, FolderFiles::Opening::Locked, patienceOfReading);
        if (locked.error() == 0)
            return locked.read(content);
    }
    PresetFolder folder(path, modelName, FolderFiles::Opening::Existing, 0);
    return folder.error() != 0 ? folder.error() : folder.read(content);
}

void PresetList::Private::save()
{
    PresetFolder folder(path, modelName,
                        hasChanges() ? FolderFiles::Opening::MadeAndLocked : FolderFiles::Opening::Locked,
                        patience.milliseconds());
    patience.noteOutcome(folder.error());
    PresetFolderContent content;
    int error = folder.error() != 0 ? folder.error() : folder.read(&content);
    if (error == 0) {
        takeOver(content);
        error = writeChanges(&folder, content);
    } else if (error == ENOENT && !hasChanges()) {
        takeOver(content);
        error = 0;
    }
    noteOutcome(error, folder.hasChanged());
}

// Every step may be the last one when the process is killed. A preset that the order does not name yet comes
// last, where a new one belongs; what it names although it is gone is left out.
int PresetList::Private::writeChanges(PresetFolder *folder, const PresetFolderContent &present)
{
    int error = removeDeleted(folder);
    if (error == 0)
        error = addUnsaved(folder);
    if (error == 0 && present.isOrderKept)
        error = writeOrder(folder, present);
    if (error == 0)
        error = folder->sync();
    if (error == 0)
        isCurrentChanged = false;
    return error;
}

int PresetList::Private::writeOrder(PresetFolder *folder, const PresetFolderContent &present) const
{
    PresetOrder wanted = order();
    const bool isNothingToTell = !present.order && wanted.entries.isEmpty() && current == defaultCurrent();
    if (isNothingToTell)
        return 0;
    // A list without the predefined presets does not know such a one.
    if (!isCurrentChanged && present.order && present.order->currentIsPredefined) {
        wanted.current = present.order->current;
        wanted.currentIsPredefined = true;
    }
    return folder->writeOrder(wanted);
}

int PresetList::Private::removeDeleted(PresetFolder *folder)
{
    const QStringList fileNames = deleted.keys();
    for (const QString &fileName : fileNames) {
        if (const int error = folder->remove(fileName))
            return error;
        deleted.remove(fileName);
    }
    return 0;
}

int PresetList::Private::addUnsaved(PresetFolder *folder)
{
    for (const std::unique_ptr<Preset> &preset : presets) {
        if (!isUnsaved(*preset))
            continue;
        QString fileName;
        if (const int error = folder->add(preset->d->fileName, preset->d->record, &fileName))
            return error;
        preset->d->storedAs = fileName;
    }
    return 0;
}

// The order stays as it is on the disk: changes that wait for save() are not this call's.
void PresetList::Private::saveCurrent()
{
    PresetFolder folder(path, modelName, FolderFiles::Opening::MadeAndLocked, patience.milliseconds());
    int error = folder.error();
    patience.noteOutcome(error);
    PresetFolderContent present;
    if (error == 0) {
        folder.readOrder(&present);
        complain(present.complaints);
        PresetOrder wanted = present.order.value_or(order());
        describeCurrent(&wanted);
        if (present.isOrderKept)
            error = folder.writeOrder(wanted);
    }
    if (error == 0)
        error = folder.sync();
    if (error == 0)
        isCurrentChanged = false;
    noteOutcome(error, folder.hasChanged());
}

void PresetList::Private::takeOver(const PresetFolderContent &content)
{
    complain(content.complaints);
    takeOverPresets(content);
    const bool isCurrentGone = current && placeOf(current) < 0;
    if (isCurrentGone)
        isCurrentChanged = false;
    // Where the order is not kept, nobody but this list knows the current preset.
    if (isCurrentGone || (!isCurrentChanged && content.isOrderKept))
        takeOverCurrent(content.order);
}

void PresetList::Private::takeOverPresets(const PresetFolderContent &content)
{
    std::vector<std::unique_ptr<Preset>> before;
    QHash<QString, size_t> known;
    before.swap(presets);
    for (size_t i = 0; i < before.size(); ++i) {
        if (before[i]->d->state == Preset::Predefined)
            presets.push_back(std::move(before[i]));
        else if (!before[i]->d->storedAs.isEmpty())
            known.insert(before[i]->d->storedAs, i);
    }
    for (auto each = deleted.begin(); each != deleted.end();) {
        const bool isStillThere =
            std::any_of(content.presets.cbegin(), content.presets.cend(),
                        [this](const StoredPreset &stored) { return isDeleted(stored); });
        each = isStillThere ? std::next(each) : deleted.erase(each);
    }
    for (const StoredPreset &stored : content.presets) {
        if (isDeleted(stored))
            continue;
        std::unique_ptr<Preset> preset;
        if (known.contains(stored.fileName))
            preset = std::move(before[known.value(stored.fileName)]);
        else
            preset = std::make_unique<Preset>(modelName, stored.fileName, Preset::User, QStringList(),
                                              QString(), QString(), 0);
        preset->d->record = stored.record;
        preset->d->storedAs = stored.fileName;
        presets.push_back(std::move(preset));
    }
    for (std::unique_ptr<Preset> &preset : before) {
        if (!preset)
            continue;
        // The file was damaged by other hands, and this is what it held.
        if (content.setAside.contains(preset->d->storedAs))
            preset->d->storedAs.clear();
        // Else another process deleted it.
        if (preset->d->storedAs.isEmpty() || content.unread.contains(preset->d->storedAs))
            presets.push_back(std::move(preset));
    }
}

void PresetList::Private::takeOverCurrent(const std::optional<PresetOrder> &order)
{
    if (order && order->current.isEmpty()) {
        current = nullptr;
        return;
    }
    current = defaultCurrent();
    if (!order)
        return;
    for (const std::unique_ptr<Preset> &preset : presets) {
        const QString name = order->currentIsPredefined ? preset->d->record.displayName : preset->d->storedAs;
        if (name == order->current && (preset->d->state == Preset::Predefined) == order->currentIsPredefined)
            current = preset.get();
    }
}

bool PresetList::Private::isDeleted(const StoredPreset &stored) const
{
    const auto found = deleted.constFind(stored.fileName);
    return found != deleted.cend() && *found == stored.record;
}

PresetOrder PresetList::Private::order() const
{
    PresetOrder result;
    result.modelName = modelName;
    for (const std::unique_ptr<Preset> &preset : presets) {
        if (!preset->d->storedAs.isEmpty())
            result.entries.append({preset->d->storedAs, preset->d->record.displayName});
    }
    describeCurrent(&result);
    return result;
}

void PresetList::Private::describeCurrent(PresetOrder *order) const
{
    order->currentIsPredefined = current && current->d->state == Preset::Predefined;
    order->current = order->currentIsPredefined ? currentName() : current ? current->d->storedAs : QString();
}

void PresetList::Private::complain(const QStringList &complaints)
{
    for (const QString &complaint : complaints) {
        if (complained.contains(complaint))
            continue;
        complained.insert(complaint);
        // A file name may hold line ends.
        qWarning("PresetList: %s.",
                 qUtf8Printable(QString(complaint).replace(QLatin1Char('\n'), QLatin1Char(' '))));
    }
}

void PresetList::Private::noteOutcome(int error, bool hasWritten)
{
    if (error != 0 && error != lastError)
        qWarning("PresetList: cannot write to %s: %s. The presets in the list are written as soon as that is "
                 "possible again.",
                 qUtf8Printable(path), qUtf8Printable(FolderLock::reasonOf(error)));
    // Not being asked to write anything is no sign that it would work again.
    if (error != 0 || hasWritten)
        lastError = error;
}
