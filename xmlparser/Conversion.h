#pragma once

#include "Encoding.h"

#include <string>
#include <string_view>

namespace xmlparser
{

std::string ToUtf8(std::wstring_view text);

// Turns the bytes of a file into UTF-8 without byte order mark. False if they are not all valid in the encoding, or
// Windows does not know it. UTF-8 itself is taken as it is, so that a save gives back even its errors.
bool ToUtf8(const Encoding& encoding, std::string& file);

// Turns UTF-8 without byte order mark into the bytes of a file. False if the encoding cannot hold it.
bool FromUtf8(const Encoding& encoding, std::string& text);

// Whether the encoding has bytes for a character of one or two UTF-16 units.
bool CanHold(const Encoding& encoding, std::wstring_view character);

} // namespace xmlparser
