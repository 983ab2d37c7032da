// Reads a number from UTF-8 bytes, one step at a time.
#include "numbertext.h"

#include <string_view>

namespace {

// All white space of Unicode but the line feed's relatives that are one byte, which follow in the same list.
constexpr std::string_view whiteSpace[] = {
    "\t",           "\n",           "\v",           "\f",           "\r",           " ",
    "\xc2\x85", // next line
    "\xc2\xa0", // no-break space
    "\xe1\x9a\x80", // ogham space mark
    "\xe2\x80\x80", "\xe2\x80\x81", "\xe2\x80\x82", "\xe2\x80\x83", "\xe2\x80\x84", "\xe2\x80\x85",
    "\xe2\x80\x86", "\xe2\x80\x87", "\xe2\x80\x88", "\xe2\x80\x89", "\xe2\x80\x8a", // spaces of fixed width
    "\xe2\x80\xa8", "\xe2\x80\xa9", // line and paragraph separator
    "\xe2\x80\xaf", // narrow no-break space
    "\xe2\x81\x9f", // mathematical space
    "\xe3\x80\x80", // ideographic space
};

bool dropWhiteSpace(std::string &text)
{
    for (const std::string_view space : whiteSpace) {
        if (text.compare(0, space.size(), space) == 0) {
            text.erase(0, space.size());
            return true;
        }
        if (text.size() >= space.size()
            && text.compare(text.size() - space.size(), space.size(), space) == 0) {
            text.erase(text.size() - space.size());
            return true;
        }
    }
    return false;
}

} // namespace

std::optional<long long> numberIn(std::string text)
{
    while (dropWhiteSpace(text)) { }

    bool negative = false;
    if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
        negative = text.front() == '-';
        text.erase(0, 1);
    }
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos)
        return std::nullopt;
    while (text.size() > 1 && text.front() == '0')
        text.erase(0, 1);
    if (text.size() > 18)
        return std::nullopt;
    const long long number = std::stoll(text);
    return negative ? -number : number;
}
