#include "text/Base64Codec.h"

#include <array>

namespace KELPKIT::base64
{
namespace
{

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<unsigned char, 256> MakeValues()
{
    std::array<unsigned char, 256> values = {};
    for (unsigned char value = 0; value < 64; ++value)
        values[static_cast<unsigned char>(kAlphabet[value])] = value;
    return values;
}

// The value of each character: its place in the alphabet, 0 for those that are not in it.
constexpr std::array<unsigned char, 256> kValues = MakeValues();

// Encodes up to three bytes; what three bytes would need beyond them is left as it is.
char* EncodeQuantum(const char* bytes, std::size_t count, char* out)
{
    unsigned bits = 0;
    for (std::size_t i = 0; i < count; ++i)
        bits |= static_cast<unsigned>(static_cast<unsigned char>(bytes[i])) << (16 - 8 * i);
    for (std::size_t i = 0; i <= count; ++i)
        *out++ = kAlphabet[bits >> (18 - 6 * i) & 63];
    return out;
}

// Reads up to four characters from `at`; those behind the end count as the terminator does, with the value 0. A "=" in
// the third or fourth place is no part of the quantum and not read.
char* DecodeQuantum(std::string_view text, std::size_t& at, char* out)
{
    const auto next = [&] {
        const unsigned value = at < text.size() ? kValues[static_cast<unsigned char>(text[at])] : 0;
        ++at;
        return value;
    };
    const auto isPadded = [&] { return at < text.size() && text[at] == kPadding; };

    unsigned bits = next() << 18;
    bits |= next() << 12;
    *out++ = static_cast<char>(bits >> 16);
    if (isPadded())
        return out;
    bits |= next() << 6;
    *out++ = static_cast<char>(bits >> 8);
    if (isPadded())
        return out;
    bits |= next();
    *out++ = static_cast<char>(bits);
    return out;
}

} // namespace

const Blocks kNoBlocks = {[](std::string_view, char*) -> std::size_t { return 0; },
                          [](std::string_view, char*) -> Progress {
                              return {0, 0};
                          }};

void Encode(const Blocks& blocks, std::string_view data, char* out)
{
    std::size_t done = blocks.encode(data, out);
    out += done / 3 * 4;
    for (; data.size() - done >= 3; done += 3)
        out = EncodeQuantum(data.data() + done, 3, out);
    if (done != data.size())
        EncodeQuantum(data.data() + done, data.size() - done, out);
}

std::size_t Decode(const Blocks& blocks, std::string_view text, char* out)
{
    char* to = out;
    std::size_t at = 0;
    // By contract a quantum counts for four, however many of its characters were read: `at` may stay behind.
    for (std::size_t counted = 0; counted < text.size();) {
        if (IsSkipped(text[at])) {
            ++at;
            ++counted;
            continue;
        }
        // A last quantum is not worth a register.
        if (text.size() - counted > 4) {
            const Progress progress = blocks.decode(text.substr(at, text.size() - counted), to);
            at += progress.charactersRead;
            counted += progress.charactersRead;
            to += progress.bytesWritten;
            if (progress.charactersRead != 0)
                continue;
        }
        to = DecodeQuantum(text, at, to);
        counted += 4;
    }
    *to = '\0';
    return static_cast<std::size_t>(to - out);
}

} // namespace KELPKIT::base64
