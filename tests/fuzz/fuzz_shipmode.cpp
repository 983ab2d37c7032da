// Fuzz target: the ship mode in what the boot-loader tool printed, against the same rule on bytes and without
// Qt.
#include "fuzztarget.h"
#include "numbertext.h"

#include "shipmode.h"

#include <QtCore/QString>
#include <QtCore/QVariant>

#include <algorithm>
#include <string>

namespace {

bool expectedIsMilitary(std::string text)
{
    const std::string byteOrderMark = "\xef\xbb\xbf";
    if (text.compare(0, byteOrderMark.size(), byteOrderMark) == 0)
        text.erase(0, byteOrderMark.size());
    return numberIn(text) == 2;
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // A tool's output is read up to the first NUL byte.
    const std::string text(reinterpret_cast<const char *>(data), std::find(data, data + size, 0) - data);
    const bool expected = expectedIsMilitary(text);
    const bool actual = isMilitaryShipMode(QString::fromStdString(text));
    if (actual != expected)
        reportDifference(expected ? "military" : "not military", actual ? "military" : "not military");
    return 0;
}
