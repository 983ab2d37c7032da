// Fuzz target: the kept list of keyboard layouts from any bytes. What is accepted is what would be written,
// and gives a list and a table of the same length.
#include "fuzztarget.h"

#include "keyboardlayouts.h"
#include "layoutcache.h"

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));
    const QByteArray packed = layoutsIn(bytes, "fingerprint");
    if (!packed.isEmpty() && cacheOf(packed, "fingerprint") != bytes)
        reportDifference(cacheOf(packed, "fingerprint").toStdString(), bytes.toStdString());
    for (const QByteArray &layouts : {packed, bytes}) {
        if (layoutNames(layouts).size() != layoutTable(layouts).size())
            reportDifference("as many names as layouts", layouts.toStdString());
    }
    return 0;
}
