#include "Kelpkit/Text.h"

#include "text/Blocks.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <immintrin.h>
#include <string_view>
#include <utility>

#if defined(_MSC_VER)
#include <intrin.h>
#define KELPKIT_AVX2
#else
#define KELPKIT_AVX2 __attribute__((target("avx2")))
#endif

namespace KELPKIT
{
namespace
{

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char kPadding = '=';

constexpr std::array<unsigned char, 256> MakeValues()
{
    std::array<unsigned char, 256> values = {};
    for (unsigned char value = 0; value < 64; ++value)
        values[static_cast<unsigned char>(kAlphabet[value])] = value;
    return values;
}

// The value of each character: its place in the alphabet, 0 for those that are not in it.
constexpr std::array<unsigned char, 256> kValues = MakeValues();

// Whether processor and system know AVX2: 256-bit registers for integers.
bool DetectAvx2()
{
#if defined(_MSC_VER)
    int features[4];
    int extendedFeatures[4];
    __cpuid(features, 1);
    __cpuidex(extendedFeatures, 7, 0);
    const bool systemSavesRegisters = (features[2] & 1 << 27) != 0 && (_xgetbv(0) & 6) == 6;
    return systemSavesRegisters && (extendedFeatures[1] & 1 << 5) != 0;
#else
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") != 0;
#endif
}

const bool g_hasAvx2 = DetectAvx2();

// One table for both halves of a register: shuffles look up in each half on its own.
KELPKIT_AVX2 __m256i Twice(__m128i table)
{
    return _mm256_broadcastsi128_si256(table);
}

// Encodes 24 bytes at a time, as long as there are 28 to load. Returns the number of bytes encoded.
KELPKIT_AVX2 std::size_t EncodeBlocks(const char* bytes, std::size_t length, char* out)
{
    // Bytes 0, 1, 2 go to 1, 0, 2, 1: each half of the four then holds two characters' bits, which multiplications
    // move to their places.
    const __m256i order = Twice(_mm_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10));
    // The way from a value to its character: values 0 to 51 are in row 0 or, the upper-case letters, in row 13; the
    // digits have a row each from 1 on, "+" and "/" the next two.
    constexpr char kDigit = '0' - 52;
    const __m256i ways = Twice(_mm_setr_epi8('a' - 26, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit,
                                             kDigit, kDigit, '+' - 62, '/' - 63, 'A', 0, 0));
    std::size_t done = 0;
    for (; length - done >= 28; done += 24, out += 32) {
        const __m256i triples =
            _mm256_shuffle_epi8(_mm256_inserti128_si256(_mm256_castsi128_si256(blocks::Load(bytes + done)),
                                                        blocks::Load(bytes + done + 12), 1),
                                order);
        const __m256i even =
            _mm256_mulhi_epu16(_mm256_and_si256(triples, _mm256_set1_epi32(0x0FC0FC00)), _mm256_set1_epi32(0x04000040));
        const __m256i odd =
            _mm256_mullo_epi16(_mm256_and_si256(triples, _mm256_set1_epi32(0x003F03F0)), _mm256_set1_epi32(0x01000010));
        const __m256i values = _mm256_or_si256(even, odd);
        const __m256i isUpper = _mm256_cmpgt_epi8(_mm256_set1_epi8(26), values);
        const __m256i row = _mm256_or_si256(_mm256_subs_epu8(values, _mm256_set1_epi8(51)),
                                            _mm256_and_si256(isUpper, _mm256_set1_epi8(13)));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), _mm256_add_epi8(values, _mm256_shuffle_epi8(ways, row)));
    }
    return done;
}

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

std::string EncodeBytes(const char* bytes, std::size_t length)
{
    std::string text((length + 2) / 3 * 4, kPadding);
    std::size_t done = g_hasAvx2 ? EncodeBlocks(bytes, length, text.data()) : 0;
    char* out = text.data() + done / 3 * 4;
    for (; length - done >= 3; done += 3)
        out = EncodeQuantum(bytes + done, 3, out);
    if (done != length)
        EncodeQuantum(bytes + done, length - done, out);
    return text;
}

bool IsSkipped(char c)
{
    return c == '\r' || c == '\n' || c == '\1' || c == '\2';
}

// Copies the bytes of the quanta whose four bits are set, up to the first that is not; returns their number. One by one,
// since the load that follows then waits for a branch that is foreseen, not for a sum.
std::size_t CopyQuanta(const char* bytes, unsigned right, char* out)
{
    std::size_t count = 0;
    for (; (right & 0xF) == 0xF; right >>= 4) {
        std::memcpy(out + 3 * count, bytes + 3 * count, 3);
        ++count;
    }
    return count;
}

struct Progress {
    std::size_t charactersRead;
    std::size_t bytesWritten;
};

// Decodes what text starts with of whole quanta of the alphabet and of what is skipped between them, as long as there
// are 32 characters to load. Writes no byte more than it decodes.
KELPKIT_AVX2 Progress DecodeBlocks(const char* text, std::size_t length, char* out)
{
    // Characters are told by the row and the column that they have in the ASCII table, sixteen to a row. There is a bit
    // for each kind of row: 1 is that of "+" and "/", 2 that of the digits, 4 those of A to O and a to o, 8 those of P
    // to Z and p to z, 16 all others. A character is wrong where its column lacks it in its kind of row.
    const __m256i kind = Twice(_mm_setr_epi8(16, 16, 1, 2, 4, 8, 4, 8, 16, 16, 16, 16, 16, 16, 16, 16));
    const __m256i lacks = Twice(_mm_setr_epi8(21, 17, 17, 17, 17, 17, 17, 17, 17, 17, 19, 26, 27, 27, 27, 26));
    // The way from a character to its value, by row; "/" takes that of row 1, which has no other use.
    const __m256i ways =
        Twice(_mm_setr_epi8(0, 63 - '/', 62 - '+', 52 - '0', -'A', -'A', 26 - 'a', 26 - 'a', 0, 0, 0, 0, 0, 0, 0, 0));
    // Four times six bits become 24, whose bytes then are put in order, and the halves' twelve beside each other.
    const __m256i order = Twice(_mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1));
    const __m256i halves = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7);
    const __m256i nibble = _mm256_set1_epi8(0x0F);

    char* to = out;
    std::size_t done = 0;
    std::size_t runStart = 0;
    while (true) {
        if (length - done < 32) {
            // A last block begins within the run before it, whose end it decodes once more.
            const std::size_t again = 32 - (length - done) / 4 * 4;
            if (length - done < 4 || done - runStart < again)
                break;
            done -= again;
            to -= again / 4 * 3;
        }
        const __m256i characters = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text + done));
        const __m256i row = _mm256_and_si256(_mm256_srli_epi32(characters, 4), nibble);
        const __m256i column = _mm256_and_si256(characters, nibble);
        const __m256i wrong = _mm256_and_si256(_mm256_shuffle_epi8(lacks, column), _mm256_shuffle_epi8(kind, row));
        const __m256i isSlash = _mm256_cmpeq_epi8(characters, _mm256_set1_epi8('/'));
        const __m256i way = _mm256_shuffle_epi8(ways, _mm256_add_epi8(row, isSlash));
        const __m256i pairs = _mm256_maddubs_epi16(_mm256_add_epi8(characters, way), _mm256_set1_epi16(0x0140));
        const __m256i quanta = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
        const __m256i bytes = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(quanta, order), halves);
        if (_mm256_testz_si256(wrong, wrong) != 0) {
            blocks::Store(to, _mm256_castsi256_si128(bytes));
            _mm_storel_epi64(reinterpret_cast<__m128i*>(to + 16), _mm256_extracti128_si256(bytes, 1));
            to += 24;
            done += 32;
            continue;
        }

        char piece[32];
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(piece), bytes);
        const __m256i right = _mm256_cmpeq_epi8(wrong, _mm256_setzero_si256());
        const std::size_t count = CopyQuanta(piece, static_cast<unsigned>(_mm256_movemask_epi8(right)), to);
        to += 3 * count;
        done += 4 * count;
        if (done == length || !IsSkipped(text[done]))
            break;
        do
            ++done;
        while (done < length && IsSkipped(text[done]));
        runStart = done;
    }
    return {done, static_cast<std::size_t>(to - out)};
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

// Decodes and ends with a zero byte. Returns the number of bytes before it.
std::size_t DecodeText(std::string_view text, char* out)
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
        if (g_hasAvx2 && text.size() - counted >= 32) {
            const Progress progress = DecodeBlocks(text.data() + at, text.size() - counted, to);
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

// Room for what any text of this length can give, with the zero byte. A well-formed one of four characters and more
// needs no more than its own length.
std::size_t DecodedRoom(std::size_t length)
{
    return std::max(length, (length + 3) / 4 * 3 + 1);
}

std::size_t Length(int length)
{
    return static_cast<std::size_t>(std::max(length, 0));
}

} // namespace

CBase64& CBase64::operator=(const CBase64&) = default;

std::string CBase64::Encode(const char* data, int length)
{
    return EncodeBytes(data, Length(length));
}

std::string CBase64::Encode(std::string data)
{
    return EncodeBytes(data.data(), data.size());
}

int CBase64::Decode(const char* text, char* out, int length)
{
    return static_cast<int>(DecodeText({text, Length(length)}, out));
}

// By contract the texts are taken by value.
// NOLINTBEGIN(performance-unnecessary-value-param)
int CBase64::DecodeEx(std::string text, std::string& out)
{
    std::string area(DecodedRoom(text.size()), '\0');
    const std::size_t count = DecodeText(text, area.data());
    // By contract the text ends at its first zero byte, whatever the count says.
    area.resize(std::strlen(area.c_str()));
    out = std::move(area);
    return static_cast<int>(count);
}

void CBase64::DecodeEx(std::string text, char*& buffer, int& length)
{
    buffer = new char[DecodedRoom(text.size())]();
    length = static_cast<int>(DecodeText(text, buffer));
}
// NOLINTEND(performance-unnecessary-value-param)

} // namespace KELPKIT
