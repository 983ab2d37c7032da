// Fuzz target: the files of the presets folder from any bytes. What is read is written as a text that reads
// the same, and the bytes taken as options of a preset come back from its text.
#include "fuzztarget.h"

#include "presettext.h"

#include <cstring>

namespace {

void compare(const QByteArray &expected, const QByteArray &actual)
{
    if (actual != expected)
        reportDifference(expected.toStdString(), actual.toStdString());
}

void readPreset(const QByteArray &bytes)
{
    PresetRecord record;
    if (readPresetText(bytes, &record) != PresetTextKind::Readable)
        return;
    PresetRecord again;
    const QByteArray text = presetText(record);
    if (readPresetText(text, &again) != PresetTextKind::Readable || !(again == record))
        reportDifference(text.toStdString(), presetText(again).toStdString());
}

void readOrder(const QByteArray &bytes)
{
    PresetOrder order;
    if (readPresetOrderText(bytes, &order) != PresetTextKind::Readable)
        return;
    PresetOrder again;
    const QByteArray text = presetOrderText(order);
    if (readPresetOrderText(text, &again) != PresetTextKind::Readable)
        reportDifference("readable", text.toStdString());
    compare(text, presetOrderText(again));
}

// Any sequence of UTF-16 code units may be an option; NUL parts them.
void keepOptions(const uint8_t *data, size_t size)
{
    QString units(int(size / 2), Qt::Uninitialized);
    if (!units.isEmpty())
        std::memcpy(units.data(), data, size / 2 * 2);
    const QStringList options = units.split(QChar(0));
    const QString first = options.first();
    const PresetRecord record{first, options.last(), first, int(size), options};
    PresetRecord again;
    if (readPresetText(presetText(record), &again) != PresetTextKind::Readable || !(again == record))
        reportDifference(presetText(record).toStdString(), presetText(again).toStdString());
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));
    readPreset(bytes);
    readOrder(bytes);
    keepOptions(data, size);
    return 0;
}
