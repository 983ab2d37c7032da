// Fuzz target: the tab number of a message of the local socket, against the same rules on bytes and without
// Qt.
#include "fuzztarget.h"
#include "numbertext.h"

#include "tabmessage.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

namespace {

// A line end, a "u" and a digit are one byte each, and in UTF-8, valid or not, no such byte is ever part of
// another character: so the bytes tell as much as the characters.
std::vector<std::string> linesOf(const std::string &text)
{
    std::vector<std::string> lines(1);
    for (const char byte : text) {
        if (byte == '\n')
            lines.emplace_back();
        else
            lines.back() += byte;
    }
    return lines;
}

unsigned tabNumber(const std::string &line)
{
    const bool hasMinus = line.find('-') != std::string::npos;
    const long long number = numberIn(line).value_or(0);
    return hasMinus || number > std::numeric_limits<unsigned>::max() ? 0 : static_cast<unsigned>(number);
}

unsigned expectedTabIndex(std::string text)
{
    text.erase(std::min(text.find('\0'), text.size()));
    const std::string byteOrderMark = "\xef\xbb\xbf";
    if (text.compare(0, byteOrderMark.size(), byteOrderMark) == 0)
        text.erase(0, byteOrderMark.size());

    const std::vector<std::string> lines = linesOf(text);
    const auto holdsLetter = [](const std::string &line) { return line.find('u') != std::string::npos; };
    const auto marked = std::find_if(lines.begin(), lines.end(), holdsLetter);
    if (marked != lines.end() && std::next(marked) != lines.end())
        return tabNumber(*std::next(marked));
    const bool isSelected = std::find(lines.begin(), lines.end(), "u") != lines.end();
    return isSelected ? 0 : tabNumber(lines.front());
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const char *const bytes = reinterpret_cast<const char *>(data);
    const unsigned expected = expectedTabIndex(std::string(bytes, size));
    const unsigned actual = tabIndexFromMessage(QByteArray(bytes, static_cast<int>(size)));
    if (actual != expected)
        reportDifference(std::to_string(expected), std::to_string(actual));
    return 0;
}
