#include "text/Md5.h"

#include "Kelpkit/Text.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <utility>

namespace KELPKIT
{
namespace
{

constexpr std::size_t kChunkSize = 1024;

// The whole part of 2^32 * |sin(i + 1)|.
constexpr std::uint32_t kSines[64] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391,
};

constexpr int kShifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

// The digest is kept, and the message read, in little-endian words; so is memory on every Windows machine.
std::uint32_t Word(const char* bytes)
{
    std::uint32_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

std::uint32_t RotateLeft(std::uint32_t value, int count)
{
    return value << count | value >> (32 - count);
}

// Step i of the 64. Each waits for the result of the step before, b: so what does not depend on b is added up first.
template <int i>
inline void Step(std::uint32_t (&state)[4], const char* block)
{
    constexpr int round = i / 16;
    constexpr std::size_t factors[4] = {1, 5, 3, 7};
    constexpr std::size_t offsets[4] = {0, 1, 5, 0};
    constexpr std::size_t word = (i * factors[round] + offsets[round]) % 16;

    std::uint32_t& a = state[(64 - i) % 4];
    const std::uint32_t b = state[(65 - i) % 4];
    const std::uint32_t c = state[(66 - i) % 4];
    const std::uint32_t d = state[(67 - i) % 4];

    a += kSines[i] + Word(block + 4 * word);
    if constexpr (round == 0)
        a += d ^ (b & (c ^ d));
    else if constexpr (round == 1)
        a = (a + (c & ~d)) + (b & d); // the two have no bit in common, so their sum is their union
    else if constexpr (round == 2)
        a += b ^ (c ^ d);
    else
        a += c ^ (b | ~d);
    a = RotateLeft(a, kShifts[round][i % 4]) + b;
}

template <int... i>
inline void Steps(std::uint32_t (&state)[4], const char* block, std::integer_sequence<int, i...>)
{
    (Step<i>(state, block), ...);
}

} // namespace

void Md5::Transform(const char* block)
{
    std::uint32_t state[4] = {m_state[0], m_state[1], m_state[2], m_state[3]};
    Steps(state, block, std::make_integer_sequence<int, 64>());
    for (int i = 0; i < 4; ++i)
        m_state[i] += state[i];
}

void Md5::Update(const char* bytes, std::size_t length)
{
    const std::size_t held = m_length % kBlockSize;
    m_length += length;
    if (held + length < kBlockSize) {
        std::copy_n(bytes, length, m_block + held);
        return;
    }
    std::size_t done = 0;
    if (held != 0) {
        done = kBlockSize - held;
        std::copy_n(bytes, done, m_block + held);
        Transform(m_block);
    }
    for (; length - done >= kBlockSize; done += kBlockSize)
        Transform(bytes + done);
    std::copy_n(bytes + done, length - done, m_block);
}

void Md5::Update(std::ifstream& stream)
{
    char chunk[kChunkSize];
    do {
        stream.read(chunk, sizeof chunk);
        Update(chunk, static_cast<std::size_t>(stream.gcount()));
    } while (stream);
    stream.close();
}

std::array<char, 32> Md5::Digits() const
{
    // A one bit, zeros up to the last eight bytes of a block, and there the length in bits.
    Md5 finished = *this;
    const char padding[kBlockSize] = {'\x80'};
    finished.Update(padding, 1 + (2 * kBlockSize - 9 - m_length % kBlockSize) % kBlockSize);
    const std::uint64_t bits = m_length * 8;
    char length[sizeof bits];
    std::memcpy(length, &bits, sizeof bits);
    finished.Update(length, sizeof length);

    std::array<char, 32> digits;
    char* digit = digits.data();
    for (const std::uint32_t word : finished.m_state) {
        for (int shift = 0; shift < 32; shift += 8) {
            *digit++ = "0123456789abcdef"[word >> (shift + 4) & 0xF];
            *digit++ = "0123456789abcdef"[word >> shift & 0xF];
        }
    }
    return digits;
}

bool BuildMd5Code(const std::string& input, std::string& output)
{
    Md5 digest;
    digest.Update(input.data(), input.size());
    const std::array<char, 32> digits = digest.Digits();
    output.assign(digits.begin(), digits.end());
    return true;
}

// For applications whose headers declare the input without const.
KELPKIT_API bool BuildMd5Code(std::string& input, std::string& output)
{
    return BuildMd5Code(std::as_const(input), output);
}

bool BuildMd5Code(const std::wstring& input, std::wstring& output)
{
    std::string digits;
    BuildMd5Code(UnicodeToAnsi(input), digits);
    output = AnsiToUnicode(digits);
    return true;
}

} // namespace KELPKIT
