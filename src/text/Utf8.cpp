#include "text/Utf8.h"

#include "text/Blocks.h"

#include <cstdint>
#include <cstring>

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

bool IsTrail(unsigned char byte)
{
    return (byte & 0xC0) == 0x80;
}

bool IsSurrogate(unsigned code)
{
    return (code & 0xFFFFF800) == 0xD800;
}

constexpr auto kBlock = static_cast<std::ptrdiff_t>(kLeastRoom);

void CopyBlock(const char* in, wchar_t* out)
{
    blocks::Widen(blocks::Load(in), out);
}

void CopyBlock(const wchar_t* in, char* out)
{
    blocks::Store(out, blocks::Narrow(in));
}

// Copies the ASCII that `in` starts with: whole blocks, then the run that the next one starts with, or one unit near
// the end.
template <class From, class To>
void CopyAscii(const From*& in, const From* end, To*& out, const To* outEnd)
{
    if (end - in < kBlock) {
        *out++ = static_cast<To>(*in++);
        return;
    }
    while (end - in >= kBlock && outEnd - out >= kBlock) {
        CopyBlock(in, out);
        const unsigned plain = blocks::PlainMask(in);
        if (plain != 0xFFFF) {
            const unsigned run = blocks::TrailingZeros(~plain);
            in += run;
            out += run;
            return;
        }
        in += kBlock;
        out += kBlock;
    }
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

// Runs of three-byte sequences, which Chinese text is made of: four bytes are looked at, or written, at once. Both stop
// at anything else, well-formed or not.
void DecodeThrees(const char*& in, const char* end, wchar_t*& out, const wchar_t* outEnd)
{
    while (end - in >= 4 && out != outEnd) {
        std::uint32_t bytes = 0;
        std::memcpy(&bytes, in, sizeof bytes);
        const unsigned code = (bytes & 0xF) << 12 | (bytes >> 2 & 0xFC0) | (bytes >> 16 & 0x3F);
        if ((bytes & 0x00C0C0F0) != 0x008080E0 || code < 0x800 || IsSurrogate(code))
            return;
        *out++ = static_cast<wchar_t>(code);
        in += 3;
    }
}

void EncodeThrees(const wchar_t*& in, const wchar_t* end, char*& out, const char* outEnd)
{
    while (in != end && outEnd - out >= 4) {
        const unsigned unit = *in;
        if (unit < 0x800 || IsSurrogate(unit))
            return;
        const std::uint32_t bytes = 0x008080E0 | unit >> 12 | (unit << 2 & 0x3F00) | (unit << 16 & 0x3F0000);
        std::memcpy(out, &bytes, sizeof bytes);
        out += 3;
        ++in;
    }
}

} // namespace

std::size_t DecodedLength(const char* text, std::size_t length)
{
    // One unit for every byte that is not a trail byte, one more for the first of four.
    const __m128i lastTrail = _mm_set1_epi8(static_cast<char>(0xBF));
    const __m128i firstOfFour = _mm_set1_epi8(static_cast<char>(0xF0));
    const __m128i zero = _mm_setzero_si128();
    __m128i sums = zero;
    std::size_t i = 0;
    for (; length - i >= 16; i += 16) {
        const __m128i bytes = blocks::Load(text + i);
        const __m128i notTrail = _mm_cmpgt_epi8(bytes, lastTrail);
        const __m128i fours = _mm_cmpeq_epi8(_mm_max_epu8(bytes, firstOfFour), bytes);
        const __m128i units = _mm_sub_epi8(_mm_sub_epi8(zero, notTrail), fours);
        sums = _mm_add_epi64(sums, _mm_sad_epu8(units, zero));
    }
    std::size_t units = HorizontalSum(sums);
    for (; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        units += (IsTrail(byte) ? 0U : 1U) + (byte >= 0xF0 ? 1U : 0U);
    }
    return units;
}

wchar_t* Decode(const char*& position, const char* end, wchar_t* out, const wchar_t* outEnd)
{
    const char* in = position;
    while (in != end && outEnd - out >= kBlock) {
        const auto lead = static_cast<unsigned char>(*in);
        if (lead < 0x80) {
            CopyAscii(in, end, out, outEnd);
        } else if (lead >= 0xE0 && lead < 0xF0) {
            const unsigned code = Sequence<3>(in);
            if (code < 0x800 || IsSurrogate(code))
                return nullptr;
            *out++ = static_cast<wchar_t>(code);
            in += 3;
            DecodeThrees(in, end, out, outEnd);
        } else if (lead >= 0xC0 && lead < 0xE0) {
            const unsigned code = Sequence<2>(in);
            if (code < 0x80)
                return nullptr;
            *out++ = static_cast<wchar_t>(code);
            in += 2;
        } else {
            const unsigned code = lead >= 0xF0 && lead < 0xF8 ? Sequence<4>(in) : 0;
            if (code < 0x10000 || code > 0x10FFFF)
                return nullptr;
            *out++ = static_cast<wchar_t>(0xD7C0 + (code >> 10));
            *out++ = static_cast<wchar_t>(0xDC00 + (code & 0x3FF));
            in += 4;
        }
    }
    position = in;
    return out;
}

std::size_t EncodedLength(const wchar_t* text, std::size_t length)
{
    // Three bytes for every unit, less one below 0x800, less one below 0x80; each half of a surrogate pair makes two.
    const __m128i zero = _mm_setzero_si128();
    __m128i sums = zero;
    std::size_t i = 0;
    for (; length - i >= 8; i += 8) {
        const __m128i units = blocks::Load(text + i);
        const __m128i below80 = _mm_cmpeq_epi16(_mm_subs_epu16(units, _mm_set1_epi16(0x7F)), zero);
        const __m128i below800 = _mm_cmpeq_epi16(_mm_subs_epu16(units, _mm_set1_epi16(0x7FF)), zero);
        const __m128i surrogates = _mm_cmpeq_epi16(_mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xF800))),
                                                   _mm_set1_epi16(static_cast<short>(0xD800)));
        const __m128i less = _mm_add_epi16(_mm_add_epi16(below80, below800), surrogates);
        sums = _mm_add_epi64(sums, _mm_sad_epu8(_mm_add_epi16(_mm_set1_epi16(3), less), zero));
    }
    std::size_t bytes = HorizontalSum(sums);
    for (; i < length; ++i)
        bytes += 3U - (text[i] < 0x80 ? 1U : 0U) - (text[i] < 0x800 ? 1U : 0U) - (IsSurrogate(text[i]) ? 1U : 0U);
    return bytes;
}

char* Encode(const wchar_t*& position, const wchar_t* end, char* out, const char* outEnd)
{
    const wchar_t* in = position;
    while (in != end && outEnd - out >= kBlock) {
        const unsigned unit = *in;
        if (unit < 0x80) {
            CopyAscii(in, end, out, outEnd);
        } else if (unit < 0x800) {
            *out++ = static_cast<char>(0xC0 | unit >> 6);
            *out++ = static_cast<char>(0x80 | (unit & 0x3F));
            ++in;
        } else if (!IsSurrogate(unit)) {
            EncodeThrees(in, end, out, outEnd);
        } else {
            // The terminator is no second half, so nothing behind it is read.
            const unsigned second = in[1];
            if (unit >= 0xDC00 || (second & 0xFC00) != 0xDC00)
                return nullptr;
            const unsigned code = 0x10000 + ((unit - 0xD800) << 10) + (second - 0xDC00);
            *out++ = static_cast<char>(0xF0 | code >> 18);
            *out++ = static_cast<char>(0x80 | (code >> 12 & 0x3F));
            *out++ = static_cast<char>(0x80 | (code >> 6 & 0x3F));
            *out++ = static_cast<char>(0x80 | (code & 0x3F));
            in += 2;
        }
    }
    position = in;
    return out;
}

} // namespace KELPKIT::utf8
