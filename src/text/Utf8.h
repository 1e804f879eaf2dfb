#pragma once

// UTF-8 and UTF-16 (the Unicode Standard, chapter 3), for well-formed text without zero characters.

#include "text/Processor.h"

#include <cstddef>

namespace KELPKIT::utf8
{

// What the two conversions need as room to make headway: three bytes for each unit of a block of 48, and a little more.
constexpr std::ptrdiff_t kLeastRoom = 160;

// The work on many characters at a time, with the registers that one kind of processor has.
struct Blocks {
    // Converts what the text starts with, in whole characters and while there is room, as far as it goes: it stops at
    // zeros, at what is not well-formed, and may stop anywhere. Moves its first and its third argument; what lies in the
    // output behind the latter may be overwritten.
    void (*decode)(const char*& in, const char* end, wchar_t*& out, const wchar_t* outEnd);
    void (*encode)(const wchar_t*& in, const wchar_t* end, char*& out, const char* outEnd);
};

extern const Blocks kNoBlocks;
extern const Blocks kAvx2Blocks;
extern const Blocks kAvx512Blocks;

struct Way {
    processor::Registers needed;
    const Blocks& blocks;
};

constexpr Way kWays[] = {{processor::Registers::kSse2, kNoBlocks},
                         {processor::Registers::kAvx2, kAvx2Blocks},
                         {processor::Registers::kAvx512Vbmi2, kAvx512Blocks}};

// The number of UTF-16 units in the decoded text.
std::size_t DecodedLength(const char* text, std::size_t length);

// Decodes from `position`, which must be zero-terminated at `end`, as long as `out` has room. Returns the end of what
// was written and moves `position` behind what was read; returns null where the text is not well-formed or has a zero.
// What lies in `out` behind the end returned may be overwritten.
wchar_t* Decode(const Blocks& blocks, const char*& position, const char* end, wchar_t* out, const wchar_t* outEnd);

// The number of bytes in the encoded text.
std::size_t EncodedLength(const wchar_t* text, std::size_t length);

// The same the other way round.
char* Encode(const Blocks& blocks, const wchar_t*& position, const wchar_t* end, char* out, const char* outEnd);

} // namespace KELPKIT::utf8
