#pragma once

// UTF-8 and UTF-16 (the Unicode Standard, chapter 3), for well-formed text without zero characters.

#include <cstddef>

namespace KELPKIT::utf8
{

// What the two conversions need as room to make headway: three bytes for each unit of a block of 48, and a little more.
constexpr std::ptrdiff_t kLeastRoom = 160;

// The number of UTF-16 units in the decoded text.
std::size_t DecodedLength(const char* text, std::size_t length);

// Decodes from `position`, which must be zero-terminated at `end`, as long as `out` has room. Returns the end of what
// was written and moves `position` behind what was read; returns null where the text is not well-formed or has a zero.
// What lies in `out` behind the end returned may be overwritten.
wchar_t* Decode(const char*& position, const char* end, wchar_t* out, const wchar_t* outEnd);

// The number of bytes in the encoded text.
std::size_t EncodedLength(const wchar_t* text, std::size_t length);

// The same the other way round.
char* Encode(const wchar_t*& position, const wchar_t* end, char* out, const char* outEnd);

} // namespace KELPKIT::utf8
