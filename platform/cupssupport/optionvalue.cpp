// Reads and writes values, without the locale, which would put a comma into a number.
#include "optionvalue.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace {

// The longest shortest double, such as -2.2250738585072014e-308, has 24 characters.
constexpr size_t roomForNumber = 32;

QByteArray decimal(double value)
{
    std::array<char, roomForNumber> text{};
    const std::to_chars_result result = std::to_chars(text.data(), text.data() + text.size(), value);
    return QByteArray(text.data(), int(result.ptr - text.data()));
}

} // namespace

bool switchIn(const QByteArray &text)
{
    const QByteArray word = text.toLower();
    return word == "true" || word == "yes" || word == "on" || word == "enabled" || word == "1";
}

double numberIn(const QByteArray &text)
{
    constexpr char custom[] = "custom.";
    constexpr uint customSize = sizeof custom - 1;
    const char *begin = text.constData();
    const char *const end = begin + text.size();
    if (qstrnicmp(begin, custom, customSize) == 0)
        begin += customSize;
    if (begin + 1 < end && begin[0] == '+' && begin[1] != '-')
        ++begin;
    double value = 0;
    if (std::from_chars(begin, end, value).ec != std::errc() || !std::isfinite(value))
        return 0;
    return value;
}

int wholeNumberIn(const QByteArray &text)
{
    return int(std::clamp(numberIn(text), double(std::numeric_limits<int>::min()),
                          double(std::numeric_limits<int>::max())));
}

QByteArray textOf(ValueForm form, double value)
{
    switch (form) {
    case ValueForm::TrueFalse:
        return value != 0 ? QByteArrayLiteral("True") : QByteArrayLiteral("False");
    case ValueForm::EnabledDisabled:
        return value != 0 ? QByteArrayLiteral("Enabled") : QByteArrayLiteral("Disabled");
    case ValueForm::Choice:
        return decimal(value);
    case ValueForm::Custom:
        return value == 0 ? QByteArrayLiteral("0") : "Custom." + decimal(value);
    case ValueForm::Code:
        return value == 0 ? QByteArray() : decimal(value);
    }
    return {};
}
