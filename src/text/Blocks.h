#pragma once

// Text sixteen units at a time. SSE2 belongs to every 64-bit x86 processor.

#include <cstddef>
#include <emmintrin.h>

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
inline unsigned TrailingZeros(unsigned mask)
{
#if defined(_MSC_VER)
    unsigned long place = 0;
    _BitScanForward(&place, mask);
    return place;
#else
    return static_cast<unsigned>(__builtin_ctz(mask));
#endif
}

inline bool HasZero(const char* from)
{
    return _mm_movemask_epi8(_mm_cmpeq_epi8(Load(from), _mm_setzero_si128())) != 0;
}

inline bool HasZero(const wchar_t* from)
{
    const __m128i zero = _mm_setzero_si128();
    const __m128i low = _mm_cmpeq_epi16(Load(from), zero);
    const __m128i high = _mm_cmpeq_epi16(Load(from + 8), zero);
    return _mm_movemask_epi8(_mm_or_si128(low, high)) != 0;
}

// The number of units before the first zero, or length.
template <class Char>
std::size_t LengthToZero(const Char* text, std::size_t length)
{
    std::size_t i = 0;
    while (length - i >= 16 && !HasZero(text + i))
        i += 16;
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

} // namespace KELPKIT::blocks
