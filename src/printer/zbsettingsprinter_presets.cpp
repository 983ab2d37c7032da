// The slots of ZBSettingsPrinter that save, delete, list and load presets.
#include "zbsettingsprinter.h"

#include "preset.h"
#include "presetlist.h"
#include "printeroptionrows.h"
#include "zbsettingsprinter_p.h"

namespace {

QStringList presetOptions(const PrinterValues &values, const CupsSupport &options)
{
    QStringList result;
    for (const PrinterOptionRow *const option : printerOptionRowsInSavingOrder) {
        result.append(QLatin1String(option->key));
        result.append(option->text(values, options));
    }
    return result;
}

} // namespace

bool ZBSettingsPrinter::addPreset(QString presetName)
{
    const QString fileName = presetName + QStringLiteral("_p");
    const QStringList options = presetOptions(d->values, *d->printerOptions);
    const int index = d->presetList->applyLastPresetIndex();
    constexpr auto userPreset = static_cast<Preset::_State>(2);
    // Owned by the list from here on.
    auto *const preset =
        new Preset(d->modelName, fileName, userPreset, options, presetName, QString(), index);
    d->presetList->addPreset(preset);
    d->presetList->setCurrentPreset(preset);
    d->presetList->save(d->presetList->getPredefinedPresetNames());
    return true;
}

void ZBSettingsPrinter::deletePreset(QString presetName)
{
    if (presetName.isEmpty())
        return;
    const QString next = d->presetList->deletePreset(d->presetList->findPreset(presetName));
    d->presetList->setCurrentPreset(d->presetList->findPreset(next));
    d->presetList->save(d->presetList->getPredefinedPresetNames());
}

QStringList ZBSettingsPrinter::populatePresetList()
{
    QStringList names = d->presetList->getUserPresetNames();
    names.removeAll(QStringLiteral("Sample Preset"));
    const QStringList predefined = d->presetList->getPredefinedPresetNames();
    if (predefined.size() > 2)
        names.prepend(predefined.first());
    return names;
}

QStringList ZBSettingsPrinter::loadPreset(QString presetName)
{
    Preset *const preset = d->presetList->findPreset(presetName);
    if (!preset)
        return {};
    const QStringList options = preset->options();
    if (options.isEmpty())
        return options;

    const PrinterValues parsed = valuesOfPreset(options, d->names.texts);
    for (const PrinterOptionRow *const option : printerOptionRowsInLoadingOrder)
        option->apply(d->values, parsed, *this);
    d->presetList->setCurrentPreset(preset);
    return options;
}
