// The printer's options, one row an option: its key, and how it is read, saved in a preset and loaded from
// one.
#pragma once

#include "printernames.h"
#include "printervalues.h"

#include <QtCore/QStringList>

#include <array>
#include <optional>

class CupsSupport;
class ZBSettingsPrinter;

struct PrinterOptionRow
{
    /// Key in a preset's list, by which CUPS calls the option too.
    const char *key;
    /// Fills the values that the properties show from the printer-option library.
    void (*read)(PrinterValues &values, const CupsSupport &options, const PrinterNames &names);
    /// What a preset saved now holds of the option.
    QString (*text)(const PrinterValues &values, const CupsSupport &options);
    /// Takes a preset's text, or the default where there is none. Null for an option that presets leave
    /// alone.
    void (*parse)(PrinterValues &values, const std::optional<QString> &text, const PrinterTexts &texts);
    /// Takes over the parsed value and hands it to the slot that sets the option. Null as above.
    void (*apply)(PrinterValues &values, const PrinterValues &parsed, ZBSettingsPrinter &printer);
};

/// The options in the order in which each is done.
extern const std::array<const PrinterOptionRow *, 18> printerOptionRowsInReadingOrder;
extern const std::array<const PrinterOptionRow *, 18> printerOptionRowsInSavingOrder;
extern const std::array<const PrinterOptionRow *, 17> printerOptionRowsInLoadingOrder;

/// What a preset's keys and values come to. A key is looked for among all elements of \a options, whether
/// they stand for a key or for a value; the first counts. One behind which nothing stands has an empty text.
PrinterValues valuesOfPreset(const QStringList &options, const PrinterTexts &texts);
