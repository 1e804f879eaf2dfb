#include "text/Utf8.h"

#include "text/Blocks.h"

#include <algorithm>
#include <cstdint>

namespace KELPKIT::utf8
{
namespace
{

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

template <class From, class To>
using ConvertMany = void (*)(const From*& in, const From* end, To*& out, const To* outEnd);

template <class From, class To>
To* Convert(ConvertMany<From, To> convertMany, const From*& position, const From* end, To* out, const To* outEnd)
{
    const From* in = position;
    bool good = true;
    while (good && in != end && outEnd - out >= kLeastRoom) {
        convertMany(in, end, out, outEnd);
        for (int i = 0; i < 16 && good && in != end && outEnd - out >= 4; ++i)
            good = ConvertOne(in, out);
    }
    position = in;
    return good ? out : nullptr;
}

} // namespace

const Blocks kNoBlocks = {blocks::CopyPlain<char, wchar_t>, blocks::CopyPlain<wchar_t, char>};

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
    std::size_t units = blocks::HorizontalSum(sums);
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
    std::size_t bytes = blocks::HorizontalSum(sums);
    for (; i < length; ++i)
        bytes += 3U - (text[i] < 0x80 ? 1U : 0U) - (text[i] < 0x800 ? 1U : 0U) - (IsSurrogate(text[i]) ? 1U : 0U);
    return bytes;
}

char* Encode(const Blocks& blocks, const wchar_t*& position, const wchar_t* end, char* out, const char* outEnd)
{
    return Convert(blocks.encode, position, end, out, outEnd);
}

} // namespace KELPKIT::utf8
