// Construction of ZBSettingsPrinter and its maps of names.
#include "zbsettingsprinter.h"

#include "keptforever.h"
#include "presetlist.h"
#include "printeroptionrows.h"
#include "zbsettingsprinter_p.h"

ZBSettingsPrinter::ZBSettingsPrinter(QObject *parent)
    : QObject(parent)
    , d(std::make_unique<ZBSettingsPrinterPrivate>())
{
    keepForever(d->printerOptions);
    populateOrientationMap();
    populateDitheringMap();
    populateCutOptionsMap();

    for (const PrinterOptionRow *const option : printerOptionRowsInReadingOrder)
        option->read(d->values, *d->printerOptions, d->names);

    d->orientationComboBoxModel = d->names.orientations.keys();
    d->cutComboBoxModel = d->names.cuts.keys();
    d->ditheringComboBoxModel = d->names.ditheringMethods.keys();

    d->presetList = new PresetList(d->modelName, true);
    keepForever(d->presetList);
}

ZBSettingsPrinter::~ZBSettingsPrinter() = default;

void ZBSettingsPrinter::populateOrientationMap()
{
    d->names.orientations.insert(orientationNames(d->names.texts));
}

void ZBSettingsPrinter::populateDitheringMap()
{
    d->names.ditheringMethods.insert(ditheringNames(d->names.texts));
}

void ZBSettingsPrinter::populateCutOptionsMap()
{
    d->names.cuts.insert(cutNames(d->names.texts));
}
