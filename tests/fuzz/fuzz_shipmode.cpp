// Fuzz target: the ship mode in what the boot-loader tool printed, against the same rule on bytes and without
// Qt, and in whole numbers of every width, as the utility daemon may send them.
#include "fuzztarget.h"
#include "numbertext.h"

#include "shipmode.h"

#include <QtCore/QString>
#include <QtCore/QVariant>

#include <algorithm>
#include <cstring>
#include <string>

namespace {

bool expectedIsMilitary(std::string text)
{
    const std::string byteOrderMark = "\xef\xbb\xbf";
    if (text.compare(0, byteOrderMark.size(), byteOrderMark) == 0)
        text.erase(0, byteOrderMark.size());
    return numberIn(text) == 2;
}

void compare(bool expected, bool actual)
{
    if (actual != expected)
        reportDifference(expected ? "military" : "not military", actual ? "military" : "not military");
}

template <typename Number> void compareNumber(const uint8_t *data, size_t size)
{
    Number number = 0;
    if (size > 0)
        std::memcpy(&number, data, std::min(size, sizeof number));
    compare(number == 2, isMilitaryShipMode(QVariant::fromValue(number)));
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // A tool's output is read up to the first NUL byte.
    const std::string text(reinterpret_cast<const char *>(data), std::find(data, data + size, 0) - data);
    compare(expectedIsMilitary(text), isMilitaryShipMode(QString::fromStdString(text)));

    compareNumber<uchar>(data, size);
    compareNumber<short>(data, size);
    compareNumber<ushort>(data, size);
    compareNumber<int>(data, size);
    compareNumber<uint>(data, size);
    compareNumber<qlonglong>(data, size);
    compareNumber<qulonglong>(data, size);
    return 0;
}
