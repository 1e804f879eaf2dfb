#pragma once

// Text sixteen units at a time. SSE2 belongs to every 64-bit x86 processor.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <emmintrin.h>
#include <string_view>

#if defined(_MSC_VER)
#include <intrin.h>
#endif

namespace KELPKIT::blocks
{

inline __m128i Load(const void* from)
{
    return _mm_loadu_si128(static_cast<const __m128i*>(from));
}

inline void Store(void* to, __m128i block)
{
    _mm_storeu_si128(static_cast<__m128i*>(to), block);
}

inline void Widen(__m128i bytes, wchar_t* to)
{
    Store(to, _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
    Store(to + 8, _mm_unpackhi_epi8(bytes, _mm_setzero_si128()));
}

// Sixteen UTF-16 units as bytes: 0..0x7F stay, 0x80..0x7FFF become 0x80..0xFF, and 0x8000 and above become 0.
inline __m128i Narrow(const wchar_t* from)
{
    return _mm_packus_epi16(Load(from), Load(from + 8));
}

// A bit for each of sixteen units that is in 1..0x7F: as signed bytes, those are the positive ones.
inline unsigned PlainMask(__m128i bytes)
{
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpgt_epi8(bytes, _mm_setzero_si128())));
}

inline unsigned PlainMask(const char* from)
{
    return PlainMask(Load(from));
}

inline unsigned PlainMask(const wchar_t* from)
{
    return PlainMask(Narrow(from));
}

// The place of the lowest bit that is set; there must be one.
inline unsigned TrailingZeros(std::uint64_t mask)
{
#if defined(_MSC_VER)
    unsigned long place = 0;
    _BitScanForward64(&place, mask);
    return place;
#else
    return static_cast<unsigned>(__builtin_ctzll(mask));
#endif
}

inline std::size_t HorizontalSum(__m128i twoSums)
{
    alignas(16) std::uint64_t sums[2];
    _mm_store_si128(reinterpret_cast<__m128i*>(sums), twoSums);
    return static_cast<std::size_t>(sums[0] + sums[1]);
}

// The number of bytes of 0x80 and above.
inline std::size_t CountHigh(const char* text, std::size_t length)
{
    const __m128i zero = _mm_setzero_si128();
    __m128i sums = zero;
    std::size_t i = 0;
    for (; length - i >= 16; i += 16) {
        const __m128i ones = _mm_sub_epi8(zero, _mm_cmpgt_epi8(zero, Load(text + i)));
        sums = _mm_add_epi64(sums, _mm_sad_epu8(ones, zero));
    }
    std::size_t count = HorizontalSum(sums);
    for (; i < length; ++i)
        count += static_cast<unsigned char>(text[i]) >> 7;
    return count;
}

// The number of units before the first zero, or length.
template <class Char>
std::size_t LengthToZero(const Char* text, std::size_t length)
{
    constexpr std::size_t kStep = 16 / sizeof(Char);
    const auto zeros = [text](std::size_t i) {
        const __m128i units = Load(text + i);
        return sizeof(Char) == 1 ? _mm_cmpeq_epi8(units, _mm_setzero_si128())
                                 : _mm_cmpeq_epi16(units, _mm_setzero_si128());
    };
    const auto fourZeros = [&zeros](std::size_t i) {
        return _mm_or_si128(_mm_or_si128(zeros(i), zeros(i + kStep)),
                            _mm_or_si128(zeros(i + 2 * kStep), zeros(i + 3 * kStep)));
    };
    std::size_t i = 0;
    while (length - i >= 4 * kStep && _mm_movemask_epi8(fourZeros(i)) == 0)
        i += 4 * kStep;
    while (length - i >= kStep && _mm_movemask_epi8(zeros(i)) == 0)
        i += kStep;
    while (i < length && text[i] != 0)
        ++i;
    return i;
}

// Whether text is ASCII, which every ANSI code page and UTF-8 write alike, up to its first zero or its end.
template <class Char>
bool IsAscii(const Char* text, std::size_t length)
{
    std::size_t i = 0;
    while (length - i >= 16 && PlainMask(text + i) == 0xFFFF)
        i += 16;
    while (i < length && text[i] > 0 && text[i] < 0x80)
        ++i;
    return i == length || text[i] == 0;
}

inline void CopySixteen(const char* from, wchar_t* to)
{
    Widen(Load(from), to);
}

inline void CopySixteen(const wchar_t* from, char* to)
{
    Store(to, Narrow(from));
}

// Copies sixteens of 1..0x7F, which ANSI code pages, UTF-8 and UTF-16 have in common, as far as they go.
template <class From, class To>
void CopyPlain(const From*& in, const From* end, To*& out, const To* outEnd)
{
    while (end - in >= 32 && outEnd - out >= 32 && (PlainMask(in) & PlainMask(in + 16)) == 0xFFFF) {
        CopySixteen(in, out);
        CopySixteen(in + 16, out + 16);
        in += 32;
        out += 32;
    }
    if (end - in >= 16 && outEnd - out >= 16 && PlainMask(in) == 0xFFFF) {
        CopySixteen(in, out);
        in += 16;
        out += 16;
    }
}

// A bit for each of sixteen units that equals the given one.
inline unsigned EqualMask(const char* from, char unit)
{
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(Load(from), _mm_set1_epi8(unit))));
}

inline unsigned EqualMask(const wchar_t* from, wchar_t unit)
{
    const __m128i wanted = _mm_set1_epi16(static_cast<short>(unit));
    const __m128i low = _mm_cmpeq_epi16(Load(from), wanted);
    const __m128i high = _mm_cmpeq_epi16(Load(from + 8), wanted);
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(low, high)));
}

// Calls use(place) for each hit of a pattern, which is not empty, that does not overlap the hit before. Looks where the
// first and the last unit of the pattern fit. By then, use may have changed what lies before the end of the hit.
template <class Char, class Use>
void ForEachHit(std::basic_string_view<Char> text, std::basic_string_view<Char> pattern, const Use& use)
{
    const std::size_t last = pattern.size() - 1;
    if (text.size() < last + 16) {
        for (std::size_t hit = text.find(pattern); hit != text.npos; hit = text.find(pattern, hit + pattern.size()))
            use(hit);
        return;
    }
    // The last block overlaps the one before it, whose hits lie before next.
    const std::size_t lastBlock = text.size() - last - 16;
    std::size_t next = 0;
    for (std::size_t block = 0;; block = std::min(block + 16, lastBlock)) {
        const Char* const at = text.data() + block;
        unsigned fits = EqualMask(at, pattern.front()) & EqualMask(at + last, pattern.back());
        for (; fits != 0; fits &= fits - 1) {
            const std::size_t hit = block + TrailingZeros(fits);
            if (hit < next || (last > 1 && text.compare(hit + 1, last - 1, pattern.substr(1, last - 1)) != 0))
                continue;
            use(hit);
            next = hit + pattern.size();
        }
        if (block == lastBlock)
            return;
    }
}

} // namespace KELPKIT::blocks
