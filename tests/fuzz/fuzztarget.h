// What every fuzz target has: the entry point, which libFuzzer or the driver of this folder calls, and the
// way to say that the code under test gave another answer than the target's own version of the rules.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// One run of the target on \a size bytes. Returns 0; a difference ends the process.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

/// Prints both answers, with what is not printable escaped, and aborts, which fuzzers take for a crash.
[[noreturn]] void reportDifference(std::string_view expected, std::string_view actual);
[[noreturn]] void reportDifference(std::u16string_view expected, std::u16string_view actual);
