// Prints two different answers and ends the process.
#include "fuzztarget.h"

#include <cstdio>
#include <cstdlib>

namespace {

template <typename Text> void print(const char *title, Text text)
{
    std::fprintf(stderr, "%s", title);
    for (const auto character : text) {
        if (character >= ' ' && character < 127 && character != '\\')
            std::fprintf(stderr, "%c", static_cast<char>(character));
        else if (character == '\n')
            std::fprintf(stderr, "\\n");
        else
            std::fprintf(stderr, "\\x{%x}", static_cast<unsigned>(character) & 0xffffU);
    }
    std::fprintf(stderr, "\n");
}

template <typename Text> [[noreturn]] void report(Text expected, Text actual)
{
    print("Expected: ", expected);
    print("Actual:   ", actual);
    std::abort();
}

} // namespace

void reportDifference(std::string_view expected, std::string_view actual)
{
    report(expected, actual);
}

void reportDifference(std::u16string_view expected, std::u16string_view actual)
{
    report(expected, actual);
}
