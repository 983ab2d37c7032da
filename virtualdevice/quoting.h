// Texts made safe for two readers: a POSIX shell, and the address parser of D-Bus.
#pragma once

#include <string>

/// TEXT as one word of a POSIX shell, whatever it holds: 'it'\''s'.
std::string shellQuoted(const std::string &text);

/// PATH as a value inside a D-Bus server address: every byte but letters, digits and -_/.\* becomes %xx.
std::string busAddressEscaped(const std::string &path);
