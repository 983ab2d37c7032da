// Fuzz target: the display lines of the printer's offsets, against a walk over the characters that counts
// line ends.
#include "fuzztarget.h"

#include "offsets.h"

#include <algorithm>
#include <string>

namespace {

std::u16string expectedLines(const std::u16string &text)
{
    std::u16string heads[2];
    size_t value = 0;
    for (const char16_t character : text) {
        const bool isValueEnd = character == u'\n';
        if (!isValueEnd && value < 10)
            heads[value / 5] += character;
        if (!isValueEnd)
            continue;
        if (value < 9 && value % 5 != 4)
            heads[value / 5] += u", ";
        ++value;
    }
    for (; value < 9; ++value) {
        if (value % 5 != 4)
            heads[value / 5] += u", ";
    }
    return heads[0] + u'\n' + heads[1];
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // A tool's output is read up to the first NUL byte.
    const std::string bytes(reinterpret_cast<const char *>(data), std::find(data, data + size, 0) - data);
    const QString text = QString::fromStdString(bytes);

    const QStringList lines = offsetLines(text);
    if (lines.size() != 2)
        reportDifference("2 lines", std::to_string(lines.size()) + " lines");
    const std::u16string expected = expectedLines(text.toStdU16String());
    const std::u16string actual = lines.join(QLatin1Char('\n')).toStdU16String();
    if (actual != expected)
        reportDifference(expected, actual);
    return 0;
}
