// Fuzz target: a message catalogue from any bytes, against a plain walk over the same tables.
#include "fuzztarget.h"

#include "messagecatalogue.h"

#include <algorithm>

namespace {

quint32 numberAt(const uint8_t *data, size_t offset, bool bigEndian)
{
    quint32 number = 0;
    for (size_t i = 0; i < 4; ++i)
        number |= quint32(data[offset + i]) << (8 * (bigEndian ? 3 - i : i));
    return number;
}

// Every message that the bytes hold whole, the same as the catalogue is asked for.
template <typename Use> void forEachMessage(const uint8_t *data, size_t size, const Use &use)
{
    if (size < 28)
        return;
    const bool bigEndian = data[0] == 0x95;
    const quint64 count = std::min<quint32>(numberAt(data, 8, bigEndian), 200);
    const quint64 table = numberAt(data, 12, bigEndian);
    for (quint64 row = table; row < table + 8 * count && row + 8 <= size; row += 8) {
        const quint64 length = numberAt(data, row, bigEndian);
        const quint64 offset = numberAt(data, row + 4, bigEndian);
        if (offset + length <= size)
            use(QByteArray(reinterpret_cast<const char *>(data) + offset, int(length)));
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const MessageCatalogue catalogue(
        QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size)));
    if (!catalogue.translation("German").isNull() && !catalogue.isValid())
        reportDifference("no translation", "a translation out of no catalogue");
    forEachMessage(data, size, [&](const QByteArray &message) {
        const QString translation = catalogue.translation(message);
        if (translation.size() > int(size) || translation.contains(QChar::ReplacementCharacter))
            reportDifference("a translation out of the bytes", translation.toStdString());
    });
    return 0;
}
