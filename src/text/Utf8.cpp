#include "text/Utf8.h"

#include "text/Blocks.h"

#include <algorithm>
#include <cstdint>

namespace KELPKIT::utf8
{
namespace
{

std::size_t HorizontalSum(__m128i twoSums)
{
    alignas(16) std::uint64_t sums[2];
    _mm_store_si128(reinterpret_cast<__m128i*>(sums), twoSums);
    return static_cast<std::size_t>(sums[0] + sums[1]);
}

// By how much each of eight units makes less than three bytes, negated: one below 0x800, one more below 0x80. Each half
// of a surrogate pair makes two.
__m128i BytesLess(__m128i units)
{
    const __m128i below80 = _mm_cmpeq_epi16(_mm_subs_epu16(units, _mm_set1_epi16(0x7F)), _mm_setzero_si128());
    const __m128i below800 = _mm_cmpeq_epi16(_mm_subs_epu16(units, _mm_set1_epi16(0x7FF)), _mm_setzero_si128());
    const __m128i surrogates = _mm_cmpeq_epi16(_mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xF800))),
                                               _mm_set1_epi16(static_cast<short>(0xD800)));
    return _mm_add_epi16(_mm_add_epi16(below80, below800), surrogates);
}

// The number of units that each of 16 bytes makes, negated: one for a byte that is not a trail byte, one more for the
// first of four.
__m128i UnitsNegated(__m128i bytes)
{
    const __m128i notTrail = _mm_cmpgt_epi8(bytes, _mm_set1_epi8(static_cast<char>(0xBF)));
    const __m128i firstOfFour = _mm_set1_epi8(static_cast<char>(0xF0));
    return _mm_add_epi8(notTrail, _mm_cmpeq_epi8(_mm_max_epu8(bytes, firstOfFour), bytes));
}

bool IsTrail(unsigned char byte)
{
    return (byte & 0xC0) == 0x80;
}

bool IsSurrogate(unsigned code)
{
    return (code & 0xFFFFF800) == 0xD800;
}

__m128i Same(unsigned value)
{
    return _mm_set1_epi32(static_cast<int>(value));
}

// How many of four lanes, from the first on, are good: well-formed, neither below U+0800 nor surrogates. The code is in
// the upper half of its lane.
std::size_t GoodThrees(__m128i upperCodes, __m128i wellFormed)
{
    const __m128i upper = _mm_and_si128(upperCodes, Same(0xF8000000));
    const __m128i bad =
        _mm_or_si128(_mm_cmpeq_epi32(upper, _mm_setzero_si128()), _mm_cmpeq_epi32(upper, Same(0xD8000000)));
    const int good = _mm_movemask_ps(_mm_castsi128_ps(_mm_andnot_si128(bad, wellFormed)));
    return blocks::TrailingZeros(~static_cast<unsigned>(good));
}

// Chinese text is made of three-byte sequences: four of them at a time. False where there is anything else among them.
// Up to three sequences too many are read and written.
bool ConvertThrees(const char* in, std::size_t count, wchar_t* out)
{
    for (std::size_t i = 0; i < count; i += 4, in += 12) {
        // Two sequences, side by side, in each half.
        const __m128i sixes = _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(in)),
                                                 _mm_loadl_epi64(reinterpret_cast<const __m128i*>(in + 6)));
        const __m128i bytes = _mm_or_si128(_mm_and_si128(sixes, _mm_set1_epi64x(0xFFFFFF)),
                                           _mm_and_si128(_mm_slli_epi64(sixes, 8), _mm_set1_epi64x(0xFFFFFFLL << 32)));
        const __m128i first = _mm_slli_epi32(bytes, 28);
        const __m128i second = _mm_and_si128(_mm_slli_epi32(bytes, 14), Same(0x0FC00000));
        const __m128i third = _mm_and_si128(bytes, Same(0x003F0000));
        const __m128i upperCodes = _mm_or_si128(_mm_or_si128(first, second), third);
        const __m128i wellFormed = _mm_cmpeq_epi32(_mm_and_si128(bytes, Same(0x00C0C0F0)), Same(0x008080E0));
        const std::size_t good = GoodThrees(upperCodes, wellFormed);
        if (good < 4 && i + good < count)
            return false;
        const __m128i codes = _mm_srai_epi32(upperCodes, 16);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + i), _mm_packs_epi32(codes, codes));
    }
    return true;
}

bool ConvertThrees(const wchar_t* in, std::size_t count, char* out)
{
    for (std::size_t i = 0; i < count; i += 4, out += 12) {
        const __m128i units = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(in + i));
        const __m128i upperCodes = _mm_unpacklo_epi16(_mm_setzero_si128(), units);
        const std::size_t good = GoodThrees(upperCodes, Same(0xFFFFFFFF));
        if (good < 4 && i + good < count)
            return false;
        const __m128i first = _mm_srli_epi32(upperCodes, 28);
        const __m128i second = _mm_and_si128(_mm_srli_epi32(upperCodes, 14), Same(0x3F00));
        const __m128i third = _mm_and_si128(upperCodes, Same(0x3F0000));
        const __m128i bytes = _mm_or_si128(_mm_or_si128(first, second), _mm_or_si128(third, Same(0x8080E0)));
        const __m128i sixes = _mm_or_si128(_mm_and_si128(bytes, _mm_set1_epi64x(0xFFFFFF)),
                                           _mm_and_si128(_mm_srli_epi64(bytes, 8), _mm_set1_epi64x(0xFFFFFFLL << 24)));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out), sixes);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 6), _mm_unpackhi_epi64(sixes, sixes));
    }
    return true;
}

// The code point of the sequence of `size` bytes at `in`, or 0 where the bytes behind the first are not trail bytes.
// The terminator is no trail byte, so nothing behind it is read.
template <int size>
unsigned Sequence(const char* in)
{
    unsigned code = static_cast<unsigned char>(in[0]) & (0x7F >> size);
    for (int i = 1; i < size; ++i) {
        const auto byte = static_cast<unsigned char>(in[i]);
        if (!IsTrail(byte))
            return 0;
        code = code << 6 | (byte & 0x3F);
    }
    return code;
}

// Converts one character; false where there is none, as at the terminator.
bool ConvertOne(const char*& in, wchar_t*& out)
{
    const auto lead = static_cast<unsigned char>(*in);
    if (lead < 0x80) {
        if (lead == 0)
            return false;
        *out++ = lead;
        ++in;
    } else if (lead >= 0xE0 && lead < 0xF0) {
        const unsigned code = Sequence<3>(in);
        if (code < 0x800 || IsSurrogate(code))
            return false;
        *out++ = static_cast<wchar_t>(code);
        in += 3;
    } else if (lead >= 0xC0 && lead < 0xE0) {
        const unsigned code = Sequence<2>(in);
        if (code < 0x80)
            return false;
        *out++ = static_cast<wchar_t>(code);
        in += 2;
    } else {
        const unsigned code = lead >= 0xF0 && lead < 0xF8 ? Sequence<4>(in) : 0;
        if (code < 0x10000 || code > 0x10FFFF)
            return false;
        *out++ = static_cast<wchar_t>(0xD7C0 + (code >> 10));
        *out++ = static_cast<wchar_t>(0xDC00 + (code & 0x3FF));
        in += 4;
    }
    return true;
}

bool ConvertOne(const wchar_t*& in, char*& out)
{
    const unsigned unit = *in;
    if (unit < 0x80) {
        if (unit == 0)
            return false;
        *out++ = static_cast<char>(unit);
        ++in;
    } else if (unit < 0x800) {
        *out++ = static_cast<char>(0xC0 | unit >> 6);
        *out++ = static_cast<char>(0x80 | (unit & 0x3F));
        ++in;
    } else if (!IsSurrogate(unit)) {
        *out++ = static_cast<char>(0xE0 | unit >> 12);
        *out++ = static_cast<char>(0x80 | (unit >> 6 & 0x3F));
        *out++ = static_cast<char>(0x80 | (unit & 0x3F));
        ++in;
    } else {
        // The terminator is no second half, so nothing behind it is read.
        const unsigned second = in[1];
        if (unit >= 0xDC00 || (second & 0xFC00) != 0xDC00)
            return false;
        const unsigned code = 0x10000 + ((unit - 0xD800) << 10) + (second - 0xDC00);
        *out++ = static_cast<char>(0xF0 | code >> 18);
        *out++ = static_cast<char>(0x80 | (code >> 12 & 0x3F));
        *out++ = static_cast<char>(0x80 | (code >> 6 & 0x3F));
        *out++ = static_cast<char>(0x80 | (code & 0x3F));
        in += 2;
    }
    return true;
}

// Copies by sixteens, so that up to 15 units too many are read and written.
template <class From, class To>
void CopyRun(const From* in, std::size_t length, To* out)
{
    blocks::CopySixteen(in, out);
    for (std::size_t i = 16; i < length; i += 16)
        blocks::CopySixteen(in + i, out + i);
}

// Runs of ASCII and runs of anything else take turns: a bit for each place, from `at` on, where one of the latter begins
// or ends, and one behind the block.
template <class From>
std::uint64_t Edges(const From* block, std::size_t at, std::size_t size)
{
    std::uint64_t plain = ((std::uint64_t(1) << at) - 1) | std::uint64_t(1) << size;
    for (std::size_t i = 0; i < size; i += 16)
        plain |= std::uint64_t(blocks::PlainMask(block + i)) << i;
    return plain ^ (plain << 1 | 1);
}

// Converts ASCII and three-byte sequences while there is room: block by block, and a block run by run. Returns the end
// of what follows `in` and is to be converted one by one: a run with something else in it, or the last few units.
template <class From, class To>
const From* ConvertBlocks(const From*& in, const From* end, To*& out, const To* outEnd)
{
    // What a three-byte sequence takes of either text.
    constexpr std::size_t kOfFrom = sizeof(From) == 1 ? 3 : 1;
    constexpr std::size_t kOfTo = sizeof(To) == 1 ? 3 : 1;
    std::size_t at = 0; // in the block, which the last sequence of the block before may reach into
    for (;;) {
        blocks::CopyPlain(in, end, out, outEnd);
        if (end - in < 32 || outEnd - out < kLeastRoom)
            break;
        // Up to 16 units behind the block are read.
        const std::size_t size = std::min<std::size_t>(static_cast<std::size_t>(end - in) / 16 * 16 - 16, 48);
        std::size_t over = 0;
        for (std::uint64_t edges = Edges(in, at, size); at < size; edges &= edges - 1) {
            const std::size_t first = std::min<std::size_t>(blocks::TrailingZeros(edges), size);
            CopyRun(in + at, first - at, out);
            out += first - at;
            at = first;
            if (at == size)
                break;
            edges &= edges - 1;
            at = blocks::TrailingZeros(edges);
            const std::size_t threes = (at - first + kOfFrom - 1) / kOfFrom;
            if (!ConvertThrees(in + first, threes, out)) {
                const From* const runEnd = in + at;
                in += first;
                return runEnd;
            }
            out += kOfTo * threes;
            over = kOfFrom * threes - (at - first);
        }
        in += size;
        at = over;
    }
    in += at;
    return outEnd - out >= kLeastRoom ? end : in;
}

template <class From, class To>
using ConvertMany = void (*)(const From*& in, const From* end, To*& out, const To* outEnd);

template <class From, class To>
To* Convert(ConvertMany<From, To> convertMany, const From*& position, const From* end, To* out, const To* outEnd)
{
    const From* in = position;
    bool good = true;
    while (good && in < end && outEnd - out >= kLeastRoom) {
        // Where ASCII is short, it is not worth a call.
        if (end - in < 32)
            blocks::CopyPlain(in, end, out, outEnd);
        if (end - in >= kLeastText<From>)
            convertMany(in, end, out, outEnd);
        const From* const runEnd = ConvertBlocks(in, end, out, outEnd);
        while (good && in < runEnd)
            good = ConvertOne(in, out);
    }
    position = in;
    return good ? out : nullptr;
}

} // namespace

const Blocks kNoBlocks = {[](const char*&, const char*, wchar_t*&, const wchar_t*) {},
                          [](const wchar_t*&, const wchar_t*, char*&, const char*) {}};

std::size_t DecodedLength(const char* text, std::size_t length)
{
    // One unit for every byte that is not a trail byte, one more for the first of four.
    const __m128i zero = _mm_setzero_si128();
    __m128i sums = zero;
    std::size_t i = 0;
    for (; length - i >= 32; i += 32) {
        const __m128i less =
            _mm_add_epi8(UnitsNegated(blocks::Load(text + i)), UnitsNegated(blocks::Load(text + i + 16)));
        sums = _mm_add_epi64(sums, _mm_sad_epu8(_mm_sub_epi8(zero, less), zero));
    }
    std::size_t units = HorizontalSum(sums);
    for (; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        units += (IsTrail(byte) ? 0U : 1U) + (byte >= 0xF0 ? 1U : 0U);
    }
    return units;
}

wchar_t* Decode(const Blocks& blocks, const char*& position, const char* end, wchar_t* out, const wchar_t* outEnd)
{
    return Convert(blocks.decode, position, end, out, outEnd);
}

std::size_t EncodedLength(const wchar_t* text, std::size_t length)
{
    const __m128i zero = _mm_setzero_si128();
    __m128i sums = zero;
    std::size_t i = 0;
    for (; length - i >= 16; i += 16) {
        const __m128i less = _mm_add_epi16(BytesLess(blocks::Load(text + i)), BytesLess(blocks::Load(text + i + 8)));
        sums = _mm_add_epi64(sums, _mm_sad_epu8(_mm_add_epi16(_mm_set1_epi16(6), less), zero));
    }
    std::size_t bytes = HorizontalSum(sums);
    for (; i < length; ++i)
        bytes += 3U - (text[i] < 0x80 ? 1U : 0U) - (text[i] < 0x800 ? 1U : 0U) - (IsSurrogate(text[i]) ? 1U : 0U);
    return bytes;
}

char* Encode(const Blocks& blocks, const wchar_t*& position, const wchar_t* end, char* out, const char* outEnd)
{
    return Convert(blocks.encode, position, end, out, outEnd);
}

} // namespace KELPKIT::utf8
