// Numbers in text, read from bytes without Qt.
#pragma once

#include <optional>
#include <string>

/**
 * The number that UTF-8 text \a text stands for: decimal digits of ASCII, with an optional sign before them
 * and white space of any kind around them. Nothing for everything else and for a number beyond eighteen
 * digits.
 */
std::optional<long long> numberIn(std::string text);
