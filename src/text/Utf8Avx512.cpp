#include "text/Blocks.h"
#include "text/Processor.h"
#include "text/Utf8.h"

#include <algorithm>
#include <cstdint>
#include <immintrin.h>

namespace KELPKIT::utf8
{
namespace
{

KELPKIT_AVX512_VBMI2 inline __m512i Bytes(unsigned value)
{
    return _mm512_set1_epi8(static_cast<char>(value));
}

KELPKIT_AVX512_VBMI2 inline __m512i Units(unsigned value)
{
    return _mm512_set1_epi16(static_cast<short>(value));
}

// A mask with the lowest bits set, 1 to 64 of them.
inline std::uint64_t LowBits(std::ptrdiff_t count)
{
    return ~std::uint64_t{0} >> (64 - count);
}

KELPKIT_AVX512_VBMI2 inline std::ptrdiff_t Count(std::uint64_t mask)
{
    return static_cast<std::ptrdiff_t>(_mm_popcnt_u64(mask));
}

// The bits of `first` where it has the mask's, those of `second` elsewhere.
KELPKIT_AVX512_VBMI2 inline __m512i Select(__m512i mask, __m512i first, __m512i second)
{
    return _mm512_ternarylogic_epi32(mask, first, second, 0xCA);
}

// The lower and the upper halves of units.
struct Halves {
    __m512i low;
    __m512i high;
};

KELPKIT_AVX512_VBMI2 inline void Store(wchar_t* out, const Halves& halves)
{
    // Unpacking works in each quarter of a register on its own.
    const __m512i order = _mm512_setr_epi64(0, 4, 1, 5, 2, 6, 3, 7);
    const __m512i low = _mm512_permutexvar_epi64(order, halves.low);
    const __m512i high = _mm512_permutexvar_epi64(order, halves.high);
    _mm512_storeu_si512(out, _mm512_unpacklo_epi8(low, high));
    _mm512_storeu_si512(out + 32, _mm512_unpackhi_epi8(low, high));
}

// Bytes side by side; those behind the end of the text are zeros.
struct Bytes3 {
    __m512i first;
    __m512i second;
    __m512i third;
};

// Which bytes begin a sequence: of two and more bytes, of three and more, and of four.
struct Leads {
    std::uint64_t ofTwo;
    std::uint64_t ofThree;
    std::uint64_t ofFour;
};

// The unit that each lead byte of up to three begins, and ASCII, in `halves`. Returns which of them are the first of a
// longer form than needed or of a surrogate.
KELPKIT_AVX512_VBMI2 inline std::uint64_t DecodeThrees(const Bytes3& bytes, const Leads& leads, Halves& halves)
{
    const __m512i last = _mm512_mask_mov_epi8(bytes.second, leads.ofThree, bytes.third);
    const __m512i beforeLast = _mm512_mask_mov_epi8(bytes.first, leads.ofThree, bytes.second);
    const __m512i low = Select(Bytes(0x3F), last, _mm512_slli_epi16(beforeLast, 6));
    const __m512i highOfTwo = _mm512_and_si512(_mm512_srli_epi16(beforeLast, 2), Bytes(0x0F));
    const __m512i highOfThree = Select(Bytes(0xF0), _mm512_slli_epi16(bytes.first, 4), highOfTwo);
    halves.low = _mm512_mask_mov_epi8(bytes.first, leads.ofTwo, low);
    halves.high = _mm512_mask_mov_epi8(_mm512_maskz_mov_epi8(leads.ofTwo, highOfTwo), leads.ofThree, highOfThree);
    const __m512i top = _mm512_and_si512(highOfThree, Bytes(0xF8));
    const std::uint64_t badThree = _mm512_testn_epi8_mask(top, top) | _mm512_cmpeq_epi8_mask(top, Bytes(0xD8));
    return (leads.ofThree & badThree) | _mm512_mask_cmple_epu8_mask(leads.ofTwo, bytes.first, Bytes(0xC1));
}

// The first of four bytes gives the high surrogate, the second one the low surrogate. Returns which of them stand for no
// code point above U+FFFF.
KELPKIT_AVX512_VBMI2 inline std::uint64_t DecodeFours(const Bytes3& bytes, std::uint64_t ofFour, Halves& halves)
{
    // The upper bits of the code point, to which D7C0 is added.
    const __m512i bits = Select(Bytes(0xFC), _mm512_slli_epi16(bytes.second, 2), _mm512_srli_epi16(bytes.third, 4));
    const __m512i top = _mm512_add_epi8(_mm512_and_si512(bytes.first, Bytes(0x0F)), Bytes(0xD7));
    const std::uint64_t carries = _mm512_cmpge_epu8_mask(bits, Bytes(0x40));
    const __m512i high = _mm512_mask_add_epi8(top, carries, top, Bytes(1));
    halves.low = _mm512_mask_add_epi8(halves.low, ofFour, bits, Bytes(0xC0));
    halves.high = _mm512_mask_mov_epi8(halves.high, ofFour, high);

    const std::uint64_t seconds = ofFour << 1;
    const __m512i lowOfSecond = Select(Bytes(0x3F), bytes.third, _mm512_slli_epi16(bytes.second, 6));
    const __m512i highOfSecond = Select(Bytes(0x03), _mm512_srli_epi16(bytes.second, 2), Bytes(0xDC));
    halves.low = _mm512_mask_mov_epi8(halves.low, seconds, lowOfSecond);
    halves.high = _mm512_mask_mov_epi8(halves.high, seconds, highOfSecond);
    return _mm512_mask_cmpneq_epi8_mask(ofFour, _mm512_and_si512(high, Bytes(0xFC)), Bytes(0xD8));
}

// Decodes the characters that begin in the first 61 of 64 bytes, and so end in these; at last, all that are left.
KELPKIT_AVX512_VBMI2 void DecodeAvx512(const char*& in, const char* end, wchar_t*& out, const wchar_t* outEnd)
{
    const char* from = in;
    wchar_t* to = out;
    while (from != end && outEnd - to >= 64) {
        const std::ptrdiff_t size = std::min<std::ptrdiff_t>(end - from, 64);
        const std::uint64_t mask = LowBits(size);
        const __m512i first = _mm512_maskz_loadu_epi8(mask, from);
        if (_mm512_mask_testn_epi8_mask(mask, first, first) != 0)
            break;
        const std::uint64_t notAscii = _mm512_movepi8_mask(first);
        if (notAscii == 0) {
            Store(to, {first, _mm512_setzero_si512()});
            from += size;
            to += size;
            continue;
        }
        const Bytes3 bytes = {first, _mm512_maskz_loadu_epi8(mask >> 1, from + 1),
                              _mm512_maskz_loadu_epi8(mask >> 2, from + 2)};
        const std::uint64_t trails = _mm512_cmplt_epi8_mask(first, Bytes(0xC0));
        const std::uint64_t ofFour = _mm512_cmpge_epu8_mask(first, Bytes(0xF0));
        const Leads leads = {notAscii & ~trails, _mm512_cmpge_epu8_mask(first, Bytes(0xE0)), ofFour};
        Halves halves;
        std::uint64_t bad = DecodeThrees(bytes, leads, halves) & ~ofFour;
        if (ofFour != 0)
            bad |= DecodeFours(bytes, ofFour, halves);
        const std::uint64_t whole = size == 64 ? LowBits(61) : mask;
        if ((bad & whole) != 0 || trails != (leads.ofTwo << 1 | leads.ofThree << 2 | leads.ofFour << 3))
            break;

        const std::uint64_t kept = (~trails & whole) | (ofFour & whole) << 1;
        Store(to, {_mm512_maskz_compress_epi8(kept, halves.low), _mm512_maskz_compress_epi8(kept, halves.high)});
        to += Count(kept);
        from += size == 64 ? 61 + blocks::TrailingZeros(~trails >> 61 | 8) : size;
    }
    in = from;
    out = to;
}

// Which units there are, which of them take more bytes than one, which take three, and the two halves of surrogate
// pairs, which take two each.
struct Kinds {
    __mmask32 all;
    __mmask32 ofTwo;
    __mmask32 ofThree;
    __mmask32 highs;
    __mmask32 lows;
};

KELPKIT_AVX512_VBMI2 inline void StoreBytes(char*& out, __m512i bytes, std::uint64_t kept)
{
    _mm512_storeu_si512(out, _mm512_maskz_compress_epi8(kept, bytes));
    out += Count(kept);
}

// Encodes 32 units below U+0800.
KELPKIT_AVX512_VBMI2 inline void EncodeTwos(char*& out, __m512i units, const Kinds& kinds)
{
    const __m512i ascii = _mm512_slli_epi16(units, 8);
    const __m512i bits = Select(Units(0x3F00), ascii, _mm512_srli_epi16(units, 6));
    const __m512i bytes = _mm512_mask_or_epi32(bits, 0xFFFF, bits, Units(0x80C0));
    StoreBytes(out, _mm512_mask_mov_epi16(ascii, kinds.ofTwo, bytes),
               _pdep_u64(kinds.ofTwo, 0x5555555555555555) | _pdep_u64(kinds.all, 0xAAAAAAAAAAAAAAAA));
}

// Encodes sixteen units, whose bits are given, each in a lane of four bytes: those of the longest form, and one left out.
KELPKIT_AVX512_VBMI2 inline void EncodeThrees(char*& out, __m256i bits, const Kinds& kinds, unsigned first)
{
    const auto lanes = [first](__mmask32 mask) { return static_cast<__mmask16>(mask >> first); };
    const __m512i wide = _mm512_cvtepu16_epi32(bits);
    // From these bits on in each half: 12, 6, and 0.
    const __m512i sixes = _mm512_multishift_epi64_epi8(_mm512_set1_epi64(0x0020262C0000060C), wide);
    __m512i bytes = Select(_mm512_set1_epi32(0x3F3F0F), sixes, _mm512_set1_epi32(0x8080E0));
    bytes = _mm512_mask_or_epi32(bytes, lanes(kinds.ofTwo & ~kinds.ofThree & ~kinds.lows), bytes,
                                 _mm512_set1_epi32(0x4000));
    bytes = _mm512_mask_or_epi32(bytes, lanes(kinds.highs), bytes, _mm512_set1_epi32(0x7000));
    bytes = _mm512_mask_slli_epi32(bytes, lanes(~kinds.ofTwo), wide, 16);
    StoreBytes(out, bytes,
               _pdep_u64(lanes(kinds.ofThree), 0x1111111111111111) | _pdep_u64(lanes(kinds.ofTwo), 0x2222222222222222) |
                   _pdep_u64(lanes(kinds.all), 0x4444444444444444));
}

// The bits that the last two bytes of each unit hold, where there are pairs.
KELPKIT_AVX512_VBMI2 inline __m512i BitsOfPairs(const wchar_t* in, __m512i units, const Kinds& kinds)
{
    const __m512i ten = _mm512_and_si512(units, Units(0x3FF));
    const __m512i before = _mm512_maskz_loadu_epi16(kinds.all & ~1U, in - 1);
    const __m512i bits = _mm512_mask_srli_epi16(units, kinds.highs, _mm512_add_epi16(ten, Units(0x40)), 2);
    return _mm512_mask_mov_epi16(bits, kinds.lows, _mm512_or_si512(_mm512_slli_epi16(before, 10), ten));
}

// Encodes 32 units at a time, or 31 where the last begins a pair; at last, all that are left.
KELPKIT_AVX512_VBMI2 void EncodeAvx512(const wchar_t*& in, const wchar_t* end, char*& out, const char* outEnd)
{
    const wchar_t* from = in;
    char* to = out;
    while (from != end && outEnd - to >= 128) {
        const std::ptrdiff_t size = std::min<std::ptrdiff_t>(end - from, 32);
        const auto mask = static_cast<__mmask32>(LowBits(size));
        const __m512i units = _mm512_maskz_loadu_epi16(mask, from);
        if (_mm512_mask_testn_epi16_mask(mask, units, units) != 0)
            break;
        Kinds kinds = {mask, _mm512_cmpge_epu16_mask(units, Units(0x80)), _mm512_cmpge_epu16_mask(units, Units(0x800)),
                       0, 0};
        if (kinds.ofTwo == 0) {
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), _mm512_cvtepi16_epi8(units));
            from += size;
            to += size;
            continue;
        }
        if (kinds.ofThree == 0) {
            EncodeTwos(to, units, kinds);
            from += size;
            continue;
        }
        __m512i bits = units;
        const __mmask32 surrogates = _mm512_cmpeq_epi16_mask(_mm512_and_si512(units, Units(0xF800)), Units(0xD800));
        if (surrogates != 0) {
            kinds.highs = _mm512_mask_cmplt_epu16_mask(surrogates, units, Units(0xDC00));
            kinds.lows = surrogates & ~kinds.highs;
            if (kinds.lows != kinds.highs << 1)
                break;
            kinds.ofThree &= ~surrogates;
            bits = BitsOfPairs(from, units, kinds);
            const __mmask32 cut = kinds.highs & 0x80000000;
            kinds.all &= ~cut;
            kinds.ofTwo &= ~cut;
        }
        EncodeThrees(to, _mm512_castsi512_si256(bits), kinds, 0);
        EncodeThrees(to, _mm512_extracti64x4_epi64(bits, 1), kinds, 16);
        from += Count(kinds.all);
    }
    in = from;
    out = to;
}

} // namespace

const Blocks kAvx512Blocks = {DecodeAvx512, EncodeAvx512};

} // namespace KELPKIT::utf8
