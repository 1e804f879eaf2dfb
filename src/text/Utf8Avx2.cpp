#include "text/Blocks.h"
#include "text/Processor.h"
#include "text/Utf8.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <immintrin.h>
#include <iterator>

namespace KELPKIT::utf8
{
namespace
{

// For a shuffle: the places that 16 bytes are taken from. One for each value of a mask of eight bits.
struct alignas(16) Order {
    std::uint8_t places[16];
};
using Orders = std::array<Order, 256>;

// Moves those of eight units together that have a bit in the mask.
constexpr Orders MakeUnitOrders()
{
    Orders orders = {};
    for (unsigned mask = 0; mask < orders.size(); ++mask) {
        std::uint8_t* to = orders[mask].places;
        for (unsigned unit = 0; unit < 8; ++unit) {
            if ((mask >> unit & 1) == 0)
                continue;
            *to++ = static_cast<std::uint8_t>(2 * unit);
            *to++ = static_cast<std::uint8_t>(2 * unit + 1);
        }
    }
    return orders;
}

// Moves the bytes of four characters together, each of which comes with the three bytes of the longest form, and then
// the first byte of the form that it has if that is shorter. Bits 0 to 3 of the mask tell which of them have more than
// one byte, bits 4 to 7 which have three.
constexpr Orders MakeByteOrders()
{
    Orders orders = {};
    for (unsigned mask = 0; mask < orders.size(); ++mask) {
        std::uint8_t* to = orders[mask].places;
        for (unsigned first = 0; first < 16; first += 4) {
            const unsigned sizes = mask >> first / 4;
            const bool isThree = (sizes & 0x10) != 0;
            *to++ = static_cast<std::uint8_t>(first + (isThree ? 0 : 3));
            if (isThree)
                *to++ = static_cast<std::uint8_t>(first + 1);
            if ((sizes & 0x11) != 0)
                *to++ = static_cast<std::uint8_t>(first + 2);
        }
    }
    return orders;
}

constexpr Orders kUnitOrders = MakeUnitOrders();
constexpr Orders kByteOrders = MakeByteOrders();

KELPKIT_AVX2 inline __m256i Load(const void* from)
{
    return _mm256_loadu_si256(static_cast<const __m256i*>(from));
}

KELPKIT_AVX2 inline __m256i Bytes(unsigned value)
{
    return _mm256_set1_epi8(static_cast<char>(value));
}

KELPKIT_AVX2 inline __m256i Units(unsigned value)
{
    return _mm256_set1_epi16(static_cast<short>(value));
}

KELPKIT_AVX2 inline unsigned Mask(__m256i bytes)
{
    return static_cast<unsigned>(_mm256_movemask_epi8(bytes));
}

KELPKIT_AVX2 inline void StoreInOrder(void* to, __m128i block, const Order& order)
{
    blocks::Store(to, _mm_shuffle_epi8(block, _mm_load_si128(reinterpret_cast<const __m128i*>(order.places))));
}

KELPKIT_AVX2 inline void StoreUnits(wchar_t*& out, __m128i units, unsigned kept)
{
    StoreInOrder(out, units, kUnitOrders[kept]);
    out += _mm_popcnt_u32(kept);
}

KELPKIT_AVX2 inline void StoreBytes(char*& out, __m128i bytes, unsigned sizes)
{
    StoreInOrder(out, bytes, kByteOrders[sizes]);
    out += 4 + _mm_popcnt_u32(sizes);
}

// Moves the bytes of a register up by some places, over the middle, too. Zeros come in.
template <int count>
KELPKIT_AVX2 inline __m256i MoveUp(__m256i bytes)
{
    return _mm256_alignr_epi8(bytes, _mm256_permute2x128_si256(bytes, bytes, 0x08), 16 - count);
}

// The bits of `first` where it has the mask's, those of `second` elsewhere.
KELPKIT_AVX2 inline __m256i Select(__m256i mask, __m256i first, __m256i second)
{
    return _mm256_or_si256(_mm256_and_si256(mask, first), _mm256_andnot_si256(mask, second));
}

// Each of 32 bytes is taken for the first of a character, whose unit is put together in two halves; for trail bytes,
// that is anything. The highest bit of a byte in `bad` marks the first of a longer form than needed, of a surrogate, of
// four bytes or none, and a zero.
struct Decoded {
    __m256i low;
    __m256i high;
    __m256i bad;
};

KELPKIT_AVX2 inline Decoded DecodeEach(const char* in, __m256i first, __m256i isThree)
{
    const __m256i zero = _mm256_setzero_si256();
    const __m256i isAscii = _mm256_cmpgt_epi8(first, zero);
    const __m256i second = Load(in + 1);
    const __m256i last = _mm256_blendv_epi8(second, Load(in + 2), isThree);
    const __m256i beforeLast = _mm256_blendv_epi8(first, second, isThree);
    const __m256i low = Select(Bytes(0x3F), last, _mm256_slli_epi16(beforeLast, 6));
    const __m256i highOfThree = _mm256_and_si256(_mm256_slli_epi16(first, 4), _mm256_and_si256(isThree, Bytes(0xF0)));
    const __m256i high = _mm256_or_si256(_mm256_and_si256(_mm256_srli_epi16(beforeLast, 2), Bytes(0x0F)), highOfThree);

    const __m256i top = _mm256_and_si256(high, Bytes(0xF8));
    const __m256i isSurrogate = _mm256_cmpeq_epi8(top, Bytes(0xD8));
    const __m256i isC0OrC1 = _mm256_cmpeq_epi8(_mm256_and_si256(first, Bytes(0xFE)), Bytes(0xC0));
    // Above EF, the bit that is moved to the top is set.
    const __m256i badThree =
        _mm256_and_si256(isThree, _mm256_or_si256(_mm256_cmpeq_epi8(top, zero), _mm256_slli_epi16(first, 3)));
    const __m256i isZero = _mm256_cmpeq_epi8(first, zero);
    return {_mm256_blendv_epi8(low, first, isAscii), _mm256_andnot_si256(isAscii, high),
            _mm256_or_si256(_mm256_or_si256(isSurrogate, isC0OrC1), _mm256_or_si256(badThree, isZero))};
}

// The first of four bytes gives the high surrogate, the second one the low surrogate.
KELPKIT_AVX2 inline void DecodeFours(const char* in, __m256i first, __m256i isFour, Decoded& decoded)
{
    const __m256i second = Load(in + 1);
    const __m256i third = Load(in + 2);
    // The sum of D7C0 and the upper bits of the code point, in which the lower half may carry.
    const __m256i bits = Select(Bytes(0xFC), _mm256_slli_epi16(second, 2), _mm256_srli_epi16(third, 4));
    const __m256i carry = _mm256_cmpeq_epi8(_mm256_max_epu8(bits, Bytes(0x40)), bits);
    const __m256i high = _mm256_sub_epi8(_mm256_add_epi8(_mm256_and_si256(first, Bytes(0x0F)), Bytes(0xD7)), carry);
    const __m256i isGood = _mm256_cmpeq_epi8(_mm256_and_si256(high, Bytes(0xFC)), Bytes(0xD8));
    const __m256i isSecond = MoveUp<1>(isFour);
    const __m256i lowOfSecond = Select(Bytes(0x3F), third, _mm256_slli_epi16(second, 6));
    const __m256i highOfSecond =
        _mm256_or_si256(_mm256_srli_epi16(_mm256_and_si256(second, Bytes(0x0F)), 2), Bytes(0xDC));
    decoded.low = _mm256_blendv_epi8(decoded.low, _mm256_add_epi8(bits, Bytes(0xC0)), isFour);
    decoded.low = _mm256_blendv_epi8(decoded.low, lowOfSecond, isSecond);
    decoded.high = _mm256_blendv_epi8(decoded.high, high, isFour);
    decoded.high = _mm256_blendv_epi8(decoded.high, highOfSecond, isSecond);
    decoded.bad = Select(isFour, _mm256_andnot_si256(isGood, isFour), decoded.bad);
}

// What is read at a time: 32 bytes, each with the two behind it.
constexpr std::ptrdiff_t kBlockBytes = 34;

// The last few units of a text, and ASCII up to a whole block. What becomes of that is taken back.
template <class Char, std::size_t size>
const Char* Pad(Char (&padded)[size], const Char* from, std::ptrdiff_t left)
{
    std::fill(std::copy_n(from, left, padded), std::end(padded), Char('x'));
    return padded;
}

// Decodes the characters that begin in the first 29 of 32 bytes, and so end in these.
KELPKIT_AVX2 void DecodeAvx2(const char*& in, const char* end, wchar_t*& out, const wchar_t* outEnd)
{
    const char* from = in;
    wchar_t* to = out;
    while (from != end && outEnd - to >= 32) {
        const char* block = from;
        char padded[kBlockBytes];
        const std::ptrdiff_t left = end - from;
        if (left < kBlockBytes)
            block = Pad(padded, from, left);
        const __m256i bytes = Load(block);
        const unsigned notAscii = Mask(bytes);
        if (notAscii == 0 && left >= kBlockBytes) {
            const char* const before = from;
            blocks::CopyPlain(from, end, to, outEnd);
            if (from == before)
                break;
            continue;
        }
        const __m256i isThree = _mm256_cmpeq_epi8(_mm256_max_epu8(bytes, Bytes(0xE0)), bytes);
        const __m256i isFour = _mm256_cmpeq_epi8(_mm256_max_epu8(bytes, Bytes(0xF0)), bytes);
        const unsigned trails = Mask(_mm256_cmpgt_epi8(Bytes(0xC0), bytes));
        const unsigned leads = notAscii & ~trails;
        const unsigned fours = Mask(isFour);
        Decoded decoded = DecodeEach(block, bytes, isThree);
        if (fours != 0)
            DecodeFours(block, bytes, isFour, decoded);
        if (trails != (leads << 1 | Mask(isThree) << 2 | fours << 3) || Mask(decoded.bad) != 0)
            break;

        // Unpacking works in each half of a register on its own.
        const __m256i units0And16 = _mm256_unpacklo_epi8(decoded.low, decoded.high);
        const __m256i units8And24 = _mm256_unpackhi_epi8(decoded.low, decoded.high);
        const unsigned kept = (~trails & 0x1FFFFFFF) | (fours & 0x1FFFFFFF) << 1;
        StoreUnits(to, _mm256_castsi256_si128(units0And16), kept & 0xFF);
        StoreUnits(to, _mm256_castsi256_si128(units8And24), kept >> 8 & 0xFF);
        StoreUnits(to, _mm256_extracti128_si256(units0And16, 1), kept >> 16 & 0xFF);
        StoreUnits(to, _mm256_extracti128_si256(units8And24, 1), kept >> 24);
        const std::ptrdiff_t taken =
            blocks::TrailingZeros(std::uint64_t{~trails & 0xE0000000} | std::uint64_t{1} << 32);
        from += std::min(taken, left);
        to -= std::max<std::ptrdiff_t>(taken - left, 0);
    }
    in = from;
    out = to;
}

// Of each of 16 units, the bits that its last two bytes hold, six each, and what the first byte of a form of two bytes
// has beside such bits. Each half of a surrogate pair has such a form, too.
struct Pairs {
    __m256i bits;
    __m256i leads;
};

KELPKIT_AVX2 inline Pairs EncodePairs(__m256i units, __m256i isHigh, __m256i isLow)
{
    const __m256i ten = _mm256_and_si256(units, Units(0x3FF));
    const __m256i ofHigh = _mm256_srli_epi16(_mm256_add_epi16(ten, Units(0x40)), 2);
    const __m256i ofLow = Select(Units(0xC00), _mm256_slli_epi16(MoveUp<2>(units), 10), ten);
    return {_mm256_blendv_epi8(_mm256_blendv_epi8(units, ofHigh, isHigh), ofLow, isLow),
            _mm256_blendv_epi8(_mm256_blendv_epi8(Units(0xC0), Units(0xF0), isHigh), Units(0x80), isLow)};
}

// Encodes 16 units at a time, or 15 where the last begins a pair.
KELPKIT_AVX2 void EncodeAvx2(const wchar_t*& in, const wchar_t* end, char*& out, const char* outEnd)
{
    const wchar_t* from = in;
    char* to = out;
    while (from != end && outEnd - to >= 64) {
        const wchar_t* block = from;
        wchar_t padded[16];
        const std::ptrdiff_t left = end - from;
        if (left < 16)
            block = Pad(padded, from, left);
        const __m256i units = Load(block);
        const __m256i isOne = _mm256_cmpeq_epi16(_mm256_min_epu16(units, Units(0x7F)), units);
        __m256i isThree = _mm256_cmpeq_epi16(_mm256_max_epu16(units, Units(0x800)), units);
        const __m256i isZero = _mm256_cmpeq_epi16(units, _mm256_setzero_si256());
        const __m256i isSurrogate = _mm256_cmpeq_epi16(_mm256_and_si256(units, Units(0xF800)), Units(0xD800));
        Pairs pairs = {units, Units(0xC0)};
        bool isCut = false;
        if (Mask(_mm256_or_si256(isZero, isSurrogate)) != 0) {
            const __m256i isLow = _mm256_cmpeq_epi16(_mm256_and_si256(units, Units(0xFC00)), Units(0xDC00));
            const __m256i isHigh = _mm256_andnot_si256(isLow, isSurrogate);
            const unsigned highs = Mask(isHigh);
            if (Mask(isZero) != 0 || Mask(isLow) != highs << 2)
                break;
            isThree = _mm256_andnot_si256(isSurrogate, isThree);
            pairs = EncodePairs(units, isHigh, isLow);
            isCut = highs >> 31 != 0;
        }
        // A byte for each four units, as the orders have it.
        const unsigned sizes = 0x0F0F0F0F ^ Mask(_mm256_packs_epi16(_mm256_unpacklo_epi64(isOne, isThree),
                                                                    _mm256_unpackhi_epi64(isOne, isThree)));
        if (sizes == 0 && left >= 16) {
            blocks::CopyPlain(from, end, to, outEnd);
            continue;
        }

        // Of three bytes, the first and the second; then the third, and the first of a shorter form.
        const __m256i firsts = _mm256_or_si256(_mm256_and_si256(_mm256_slli_epi16(units, 2), Units(0x3F00)),
                                               _mm256_or_si256(_mm256_srli_epi16(units, 12), Units(0x80E0)));
        const __m256i ofShorter =
            _mm256_blendv_epi8(_mm256_or_si256(_mm256_srli_epi16(pairs.bits, 6), pairs.leads), units, isOne);
        const __m256i lasts = _mm256_or_si256(_mm256_or_si256(_mm256_and_si256(pairs.bits, Units(0x3F)), Units(0x80)),
                                              _mm256_slli_epi16(ofShorter, 8));
        const __m256i bytes0And8 = _mm256_unpacklo_epi16(firsts, lasts);
        const __m256i bytes4And12 = _mm256_unpackhi_epi16(firsts, lasts);
        StoreBytes(to, _mm256_castsi256_si128(bytes0And8), sizes & 0xFF);
        StoreBytes(to, _mm256_castsi256_si128(bytes4And12), sizes >> 8 & 0xFF);
        StoreBytes(to, _mm256_extracti128_si256(bytes0And8, 1), sizes >> 16 & 0xFF);
        StoreBytes(to, _mm256_extracti128_si256(bytes4And12, 1), sizes >> 24);
        from += 16;
        if (isCut) {
            --from;
            to -= 2;
        }
        if (left < 16) {
            to -= 16 - left;
            from = end;
        }
    }
    in = from;
    out = to;
}

} // namespace

const Blocks kAvx2Blocks = {DecodeAvx2, EncodeAvx2};

} // namespace KELPKIT::utf8
