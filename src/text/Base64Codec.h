#pragma once

#include "text/Processor.h"

#include <cstddef>
#include <string_view>

namespace KELPKIT::base64
{

struct Progress {
    std::size_t charactersRead;
    std::size_t bytesWritten;
};

// The work on many characters at a time, with the registers that one kind of processor has.
struct Blocks {
    // Encodes what data starts with; returns the number of bytes encoded. Those are whole triples, or all.
    std::size_t (*encode)(std::string_view data, char* out);

    // Decodes what text starts with of whole quanta of the alphabet and of what is skipped between them. Writes no byte
    // more than it decodes, and none before it has read what stands there, for out may be where the text is.
    Progress (*decode)(std::string_view text, char* out);
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
                         {processor::Registers::kAvx512, kAvx512Blocks}};

// Encodes data to out, which has "=" in each of its EncodedSize places.
void Encode(const Blocks& blocks, std::string_view data, char* out);

// Decodes and ends with a zero byte. Returns the number of bytes before it. out may be where the text is.
std::size_t Decode(const Blocks& blocks, std::string_view text, char* out);

constexpr char kPadding = '=';

constexpr std::size_t EncodedSize(std::size_t length)
{
    return (length + 2) / 3 * 4;
}

// What may stand between quanta.
constexpr bool IsSkipped(char c)
{
    return static_cast<unsigned char>(c) < 14 && (0x2406U >> c & 1) != 0;
}

} // namespace KELPKIT::base64
