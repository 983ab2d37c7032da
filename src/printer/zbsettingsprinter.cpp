// Construction of ZBSettingsPrinter and its maps of names.
#include "zbsettingsprinter.h"

#include "presetlist.h"
#include "printeroptions.h"
#include "zbsettingsprinter_p.h"

ZBSettingsPrinter::ZBSettingsPrinter(QObject *parent)
    : QObject(parent)
    , d(std::make_unique<ZBSettingsPrinterPrivate>())
{
    populateOrientationMap();
    populateDitheringMap();
    populateCutOptionsMap();

    for (const PrinterOption *const option : printerOptionsInReadingOrder)
        option->read(d->values, *d->printerOptions, d->names);

    d->orientationComboBoxModel = d->names.orientations.keys();
    d->cutComboBoxModel = d->names.cuts.keys();
    d->ditheringComboBoxModel = d->names.ditheringMethods.keys();

    d->presetList = new PresetList(d->modelName, true);
}

ZBSettingsPrinter::~ZBSettingsPrinter() = default;

void ZBSettingsPrinter::populateOrientationMap()
{
    d->names.orientations.insert(orientationNames());
}

void ZBSettingsPrinter::populateDitheringMap()
{
    d->names.ditheringMethods.insert(ditheringNames(d->names.ditheringWords));
}

void ZBSettingsPrinter::populateCutOptionsMap()
{
    d->names.cuts.insert(cutNames());
}
