// Quoting for shells and for D-Bus addresses. Neither looks at the locale.
#include "quoting.h"

std::string shellQuoted(const std::string &text)
{
    std::string result = "'";
    for (const char character : text) {
        if (character == '\'')
            result += "'\\''";
        else
            result += character;
    }
    return result + "'";
}

std::string busAddressEscaped(const std::string &path)
{
    static const std::string unescaped = "-_/.\\*"
                                         "0123456789"
                                         "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                         "abcdefghijklmnopqrstuvwxyz";
    static const std::string digits = "0123456789abcdef";
    std::string result;
    for (const char character : path) {
        if (unescaped.find(character) != std::string::npos) {
            result += character;
            continue;
        }
        const auto byte = static_cast<unsigned char>(character);
        result += '%';
        result += digits[byte / 16];
        result += digits[byte % 16];
    }
    return result;
}
