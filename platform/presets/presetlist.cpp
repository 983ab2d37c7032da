// PresetList: the presets in memory.
#include "presetlist.h"

#include "predefinedpresets.h"
#include "presetlist_p.h"

#include <QtCore/QDir>

#include <algorithm>
#include <cerrno>
#include <limits>

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
