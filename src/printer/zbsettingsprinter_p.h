// What a ZBSettingsPrinter keeps: the values that its properties show, its names, and the two libraries.
#pragma once

#include "printernames.h"
#include "printervalues.h"

#include "cupssupport.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

class PresetList;

struct ZBSettingsPrinterPrivate
{
    PrinterValues values;
    QStringList orientationComboBoxModel;
    QStringList cutComboBoxModel;
    QStringList ditheringComboBoxModel;
    PrinterNames names{PrinterTexts::translated(), {}, {}, {}};

    // Neither is ever deleted: both live as long as the process, also where objects of ours come and go.
    CupsSupport *const printerOptions = new CupsSupport;
    PresetList *presetList = nullptr;
    const QString modelName = QStringLiteral("BrackenXL");
};
