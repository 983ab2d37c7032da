// Fuzz target: what a preset's keys and values come to, against the same rules on bytes and without Qt. The
// elements of the list are separated by NUL bytes.
#include "fuzztarget.h"
#include "numbertext.h"

#include "printeroptionrows.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace {

using List = std::vector<std::string>;

// NUL is one byte in UTF-8 too, and part of no other character: so the bytes can be split before they are
// decoded.
List elementsOf(const std::string &bytes)
{
    List elements;
    if (bytes.empty())
        return elements;
    elements.emplace_back();
    for (const char byte : bytes) {
        if (byte == '\0')
            elements.emplace_back();
        else
            elements.back() += byte;
    }
    // QString drops it.
    const std::string byteOrderMark = "\xef\xbb\xbf";
    for (std::string &element : elements) {
        if (element.compare(0, byteOrderMark.size(), byteOrderMark) == 0)
            element.erase(0, byteOrderMark.size());
    }
    return elements;
}

std::optional<std::string> valueOf(const char *key, const List &list)
{
    const auto found = std::find(list.begin(), list.end(), key);
    if (found == list.end())
        return {};
    return std::next(found) == list.end() ? std::string() : *std::next(found);
}

int integerIn(const std::string &text)
{
    const long long number = numberIn(text).value_or(0);
    const bool isInteger =
        number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
    return isInteger ? static_cast<int>(number) : 0;
}

std::string orientationName(const std::optional<std::string> &text)
{
    if (!text)
        return "Landscape";
    switch (integerIn(*text)) {
    case 3:
        return "Portrait 180";
    case 5:
        return "Landscape";
    case 6:
        return "Portrait";
    default:
        return "Landscape 180";
    }
}

std::string cutName(const std::optional<std::string> &text)
{
    if (!text)
        return "Cut After Page";
    switch (integerIn(*text)) {
    case 0:
        return "No Cut";
    case 2:
        return "Cut After Job";
    default:
        return "Cut After Page";
    }
}

std::string ditheringName(const std::optional<std::string> &text)
{
    if (!text)
        return "Atkinson Dither";
    switch (integerIn(*text)) {
    case 0:
        return "Threshold (No) Dither";
    case 16:
        return "Floyd-Steinberg Dither";
    case 17:
        return "JaJuNi Dither";
    case 18:
        return "Stucki Dither";
    case 20:
        return "Burkes Dither";
    case 24:
        return "Sierra Dither";
    case 25:
        return "Sierra2 Dither";
    case 32:
        return "BayerOrdered Dither";
    case 33:
        return "Yliluoma Ordered Dither";
    case 65:
        return "Grayscale Ribbon 1";
    case 66:
        return "Grayscale Ribbon 2";
    default:
        return "Atkinson Dither";
    }
}

std::string expectedValues(const List &list)
{
    std::string text;
    for (const char *const key : {"NegativePrint", "MirrorPrint", "Overprint", "WhiteBase"})
        text += valueOf(key, list) == "True" ? "1 " : "0 ";
    for (const char *const key : {"head1Offset", "head2Offset", "Hoffset1", "Hoffset2", "Voffset1",
                                  "Voffset2", "Stop", "Feed", "R1TensionAdjust", "R2TensionAdjust"})
        text += std::to_string(integerIn(valueOf(key, list).value_or(std::string()))) + ' ';
    return text + orientationName(valueOf("orientation-requested", list)) + ", "
        + ditheringName(valueOf("Dithering", list)) + ", " + cutName(valueOf("CutMedia", list));
}

std::string written(const PrinterValues &values)
{
    std::string text;
    for (const bool flag : {values.negative, values.mirror, values.overprint, values.whitebase})
        text += flag ? "1 " : "0 ";
    for (const int number : {values.head1HeatOffset, values.head2HeatOffset, values.horizontal1Offset,
                             values.horizontal2Offset, values.vertical1Offset, values.vertical2Offset,
                             values.backfeedOffset, values.feedOffset, values.r1Tension, values.r2Tension})
        text += std::to_string(number) + ' ';
    const QStringList names{values.orientationOption, values.ditheringMethod, values.cutOption};
    return text + names.join(QStringLiteral(", ")).toStdString();
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const List elements = elementsOf(std::string(reinterpret_cast<const char *>(data), size));
    QStringList options;
    for (const std::string &element : elements)
        options.append(QString::fromUtf8(element.data(), static_cast<int>(element.size())));

    static const PrinterTexts texts = PrinterTexts::translated();
    const std::string expected = expectedValues(elements);
    const std::string actual = written(valuesOfPreset(options, texts));
    if (actual != expected)
        reportDifference(expected, actual);
    return 0;
}
