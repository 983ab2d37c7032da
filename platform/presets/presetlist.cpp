// PresetList: the presets in memory, and how they meet those on the disk.
#include "presetlist.h"

#include "predefinedpresets.h"
#include "preset_p.h"
#include "presetfolder.h"

#include <QtCore/QDebug>
#include <QtCore/QDir>
#include <QtCore/QHash>
#include <QtCore/QSet>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <memory>
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
    int writeChanges(PresetFolder *folder, const std::optional<PresetOrder> &present);
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
    QSet<QString> complained;
    int lastError = 0;
};

PresetList::Private::Private(const QString &model, bool withPredefined)
    : modelName(model)
    , path(QDir::homePath() + QStringLiteral("/.cups/Presets/"))
{
    if (withPredefined) {
        QStringList complaints;
        const QVector<PresetRecord> records =
            predefinedPresets(modelName, QStringLiteral(ZB_SYSTEM_PRESET), &complaints);
        complain(complaints);
        for (const PresetRecord &record : records)
            presets.push_back(std::make_unique<Preset>(modelName, QString(), Preset::Predefined,
                                                       record.options, record.displayName, QString(), 0));
    }
    current = defaultCurrent();

    PresetFolderContent content;
    const int error = read(&content);
    if (error == 0)
        takeOver(content);
    else if (error != ENOENT)
        complain({QStringLiteral("cannot read %1: %2").arg(path, qt_error_string(error))});
}

// Under the lock, so that another process's change is seen as a whole. Files can be read without it just as
// well, should that process hang.
int PresetList::Private::read(PresetFolderContent *content) const
{
    {
        PresetFolder locked(path, modelName, FolderFiles::Opening::Locked);
        if (locked.error() != EWOULDBLOCK)
            return locked.error() != 0 ? locked.error() : locked.read(content);
    }
    PresetFolder folder(path, modelName, FolderFiles::Opening::Existing);
    return folder.error() != 0 ? folder.error() : folder.read(content);
}

Preset *PresetList::Private::defaultCurrent() const
{
    const bool hasPredefined = !presets.empty() && presets.front()->d->state == Preset::Predefined;
    return hasPredefined ? presets.front().get() : nullptr;
}

int PresetList::Private::placeOf(const Preset *preset) const
{
    const auto found =
        std::find_if(presets.cbegin(), presets.cend(),
                     [preset](const std::unique_ptr<Preset> &each) { return each.get() == preset; });
    return found == presets.cend() ? -1 : int(found - presets.cbegin());
}

QStringList PresetList::Private::names(bool predefined) const
{
    QStringList result;
    for (const std::unique_ptr<Preset> &preset : presets) {
        if ((preset->d->state == Preset::Predefined) == predefined)
            result.append(preset->d->record.displayName);
    }
    return result;
}

bool PresetList::Private::isUnsaved(const Preset &preset)
{
    return preset.d->state == Preset::User && preset.d->storedAs.isEmpty();
}

bool PresetList::Private::hasChanges() const
{
    return isCurrentChanged || !deleted.isEmpty()
        || std::any_of(presets.cbegin(), presets.cend(),
                       [](const std::unique_ptr<Preset> &preset) { return isUnsaved(*preset); });
}

void PresetList::Private::save()
{
    PresetFolder folder(path, modelName,
                        hasChanges() ? FolderFiles::Opening::MadeAndLocked : FolderFiles::Opening::Locked);
    PresetFolderContent content;
    int error = folder.error() != 0 ? folder.error() : folder.read(&content);
    if (error == 0) {
        takeOver(content);
        error = writeChanges(&folder, content.order);
    } else if (error == ENOENT && !hasChanges()) {
        takeOver(content);
        error = 0;
    }
    noteOutcome(error, folder.hasChanged());
}

// Every step may be the last one when the process is killed. A preset that the order does not name yet comes
// last, where a new one belongs; what it names although it is gone is left out.
int PresetList::Private::writeChanges(PresetFolder *folder, const std::optional<PresetOrder> &present)
{
    int error = removeDeleted(folder);
    if (error == 0)
        error = addUnsaved(folder);
    PresetOrder wanted = order();
    // A list without the predefined presets does not know such a one.
    if (!isCurrentChanged && present && present->currentIsPredefined) {
        wanted.current = present->current;
        wanted.currentIsPredefined = true;
    }
    const bool isNothingToTell = !present && wanted.entries.isEmpty() && current == defaultCurrent();
    if (error == 0 && !isNothingToTell)
        error = folder->writeOrder(wanted);
    if (error == 0)
        error = folder->sync();
    if (error == 0)
        isCurrentChanged = false;
    return error;
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
    PresetFolder folder(path, modelName, FolderFiles::Opening::MadeAndLocked);
    int error = folder.error();
    if (error == 0) {
        PresetOrder wanted = folder.readOrder().value_or(order());
        describeCurrent(&wanted);
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
    if (current && placeOf(current) < 0)
        isCurrentChanged = false;
    if (!isCurrentChanged)
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
                 qUtf8Printable(path), qUtf8Printable(qt_error_string(error)));
    // Not being asked to write anything is no sign that it would work again.
    if (error != 0 || hasWritten)
        lastError = error;
}

PresetList::PresetList(const QString &modelName, bool withPredefined)
    : d(new Private(modelName, withPredefined))
{
}

PresetList::~PresetList()
{
    delete d;
}

Preset *PresetList::findPreset(const QString &name) const
{
    const auto found = std::find_if(
        d->presets.crbegin(), d->presets.crend(),
        [&name](const std::unique_ptr<Preset> &preset) { return preset->d->record.displayName == name; });
    return found == d->presets.crend() ? nullptr : found->get();
}

void PresetList::addPreset(Preset *preset)
{
    if (!preset || d->placeOf(preset) >= 0)
        return;
    preset->d->record.modelName = d->modelName;
    d->presets.emplace_back(preset);
}

QString PresetList::deletePreset(Preset *preset)
{
    const int place = d->placeOf(preset);
    if (place < 0 || preset->d->state == Preset::Predefined)
        return d->currentName();
    if (!preset->d->storedAs.isEmpty())
        d->deleted.insert(preset->d->storedAs, preset->d->record);
    d->presets.erase(d->presets.begin() + place);
    d->current = d->presets.empty() ? nullptr : d->presets[size_t(qMax(0, place - 1))].get();
    d->isCurrentChanged = true;
    return d->currentName();
}

void PresetList::setCurrentPreset(Preset *preset)
{
    if ((preset && d->placeOf(preset) < 0) || (preset == d->current && !d->isCurrentChanged))
        return;
    d->current = preset;
    d->isCurrentChanged = true;
    if (!preset || !d->isUnsaved(*preset))
        d->saveCurrent();
}

int PresetList::applyLastPresetIndex()
{
    for (const std::unique_ptr<Preset> &preset : d->presets)
        d->lastIndex = qMax(d->lastIndex, preset->d->record.index);
    if (d->lastIndex < std::numeric_limits<int>::max())
        ++d->lastIndex;
    return d->lastIndex;
}

void PresetList::save(const QStringList &predefinedNames)
{
    Q_UNUSED(predefinedNames)
    d->save();
}

QStringList PresetList::getUserPresetNames() const
{
    return d->names(false);
}

QStringList PresetList::getPredefinedPresetNames() const
{
    return d->names(true);
}
