#include "support/Fuzz.h"
#include "text/Md5.h"

#include <Kelpkit/Text.h>

#include <fuzzer/FuzzedDataProvider.h>

#include <array>
#include <cmath>
#include <vector>

using fuzz::Expect;

namespace
{

std::uint32_t Rotated(std::uint32_t value, unsigned count)
{
    return value << count | value >> (32 - count);
}

// The constants of the steps, which take longer to compute than a block.
std::array<std::uint32_t, 64> Sines()
{
    std::array<std::uint32_t, 64> sines;
    for (unsigned i = 0; i < sines.size(); ++i)
        sines[i] = static_cast<std::uint32_t>(std::floor(4294967296.0 * std::fabs(std::sin(i + 1.0))));
    return sines;
}

// One block of 16 words, step by step (RFC 1321, section 3.4).
void Digest(std::array<std::uint32_t, 4>& state, const std::uint32_t* words)
{
    static const std::array<std::uint32_t, 64> sines = Sines();
    static const unsigned shifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};
    auto [a, b, c, d] = state;
    for (unsigned i = 0; i < 64; ++i) {
        const std::uint32_t mixed[] = {(b & c) | (~b & d), (b & d) | (c & ~d), b ^ c ^ d, c ^ (b | ~d)};
        const unsigned places[] = {i, 5 * i + 1, 3 * i + 5, 7 * i};
        const std::uint32_t sum = a + mixed[i / 16] + words[places[i / 16] % 16] + sines[i];
        a = d;
        d = c;
        c = b;
        b += Rotated(sum, shifts[i / 16][i % 4]);
    }
    state = {state[0] + a, state[1] + b, state[2] + c, state[3] + d};
}

std::string ModelDigits(const std::string& bytes)
{
    std::string padded = bytes + '\x80';
    padded.resize((padded.size() + 8 + 63) / 64 * 64);
    for (std::size_t i = 0; i < 8; ++i)
        padded[padded.size() - 8 + i] = static_cast<char>(bytes.size() * 8 >> 8 * i);
    std::vector<std::uint32_t> words(padded.size() / 4);
    for (std::size_t i = 0; i < padded.size(); ++i)
        words[i / 4] |= static_cast<std::uint32_t>(static_cast<unsigned char>(padded[i])) << i % 4 * 8;

    std::array<std::uint32_t, 4> state = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
    for (std::size_t i = 0; i < words.size(); i += 16)
        Digest(state, &words[i]);
    std::string digits;
    for (unsigned i = 0; i < 16; ++i) {
        const unsigned byte = state[i / 4] >> i % 4 * 8 & 0xFF;
        digits += {"0123456789abcdef"[byte / 16], "0123456789abcdef"[byte % 16]};
    }
    return digits;
}

std::string Digits(const KELPKIT::Md5& digest)
{
    const std::array<char, 32> digits = digest.Digits();
    return {digits.begin(), digits.end()};
}

} // namespace

// Lengths of pieces are taken from the end of the input; what is left is the last piece.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    KELPKIT::Md5 digest;
    std::string whole;
    for (int pieces = input.ConsumeIntegralInRange(0, 7); pieces >= 0; --pieces) {
        const std::string piece = pieces == 0
                                      ? input.ConsumeRemainingBytesAsString()
                                      : input.ConsumeBytesAsString(input.ConsumeIntegralInRange<std::size_t>(0, 200));
        digest.Update(fuzz::Exactly(piece).get(), piece.size());
        whole += piece;
        Expect(Digits(digest) == ModelDigits(whole), "the bytes so far are digested as the model does");
    }
    std::string digits;
    KELPKIT::BuildMd5Code(whole, digits);
    Expect(digits == ModelDigits(whole), "so are they all at once");
    return 0;
}
