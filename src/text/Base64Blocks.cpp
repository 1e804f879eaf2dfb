#include "text/Base64Codec.h"
#include "text/Blocks.h"
#include "text/Processor.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <immintrin.h>

namespace KELPKIT::base64
{
namespace
{

// The tables are for 16 bytes of a register each; shuffles look up in each 16 on their own.

// To encode, bytes 0, 1, 2 go to 1, 0, 2, 1: each half of the four then holds two characters' bits.
__m128i EncodeOrder()
{
    return _mm_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10);
}

// The way from a value to its character. Values 0 to 51 are in row 0 or, the upper-case letters, in row 13; the digits
// have a row each from 1 on, "+" and "/" the next two.
__m128i EncodeWays()
{
    constexpr char kDigit = '0' - 52;
    return _mm_setr_epi8('a' - 26, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit,
                         '+' - 62, '/' - 63, 'A', 0, 0);
}

// Characters are told by the row and the column that they have in the ASCII table, sixteen to a row. There is a bit for
// each kind of row: 1 is that of "+" and "/", 2 that of the digits, 4 those of A to O and a to o, 8 those of P to Z and
// p to z. A character is right where its column has one in its kind of row. A shuffle gives 0 for what is not ASCII.
__m128i RowKinds()
{
    return _mm_setr_epi8(0, 0, 1, 2, 4, 8, 4, 8, 0, 0, 0, 0, 0, 0, 0, 0);
}

__m128i ColumnKinds()
{
    return _mm_setr_epi8(10, 14, 14, 14, 14, 14, 14, 14, 14, 14, 12, 5, 4, 4, 4, 5);
}

// The way from a character to its value, by row; "/" takes that of row 1, which has no other use.
__m128i DecodeWays()
{
    return _mm_setr_epi8(0, 63 - '/', 62 - '+', 52 - '0', -'A', -'A', 26 - 'a', 26 - 'a', 0, 0, 0, 0, 0, 0, 0, 0);
}

// Four times six bits become 24, whose bytes then are put in order.
__m128i DecodeOrder()
{
    return _mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1);
}

KELPKIT_AVX2 __m256i Twice(__m128i table)
{
    return _mm256_broadcastsi128_si256(table);
}

// Encodes 24 bytes at a time, as long as there are 28 to load.
KELPKIT_AVX2 std::size_t EncodeAvx2(std::string_view data, char* out)
{
    const __m256i order = Twice(EncodeOrder());
    const __m256i ways = Twice(EncodeWays());
    std::size_t done = 0;
    for (; data.size() - done >= 28; done += 24, out += 32) {
        const char* const from = data.data() + done;
        const __m256i triples = _mm256_shuffle_epi8(
            _mm256_inserti128_si256(_mm256_castsi128_si256(blocks::Load(from)), blocks::Load(from + 12), 1), order);
        // Multiplications move bits to their places.
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

// The number of quanta before the first that has a character marked as wrong; there must be one. Counted one by one,
// since the load that follows then waits for branches that are foreseen, not for a sum.
std::size_t CountQuanta(std::uint64_t wrong)
{
    std::size_t count = 0;
    for (; (wrong & 0xF) == 0; wrong >>= 4)
        ++count;
    return count;
}

// Passes over what may stand between quanta; false where nothing does.
bool SkipBetweenQuanta(std::string_view text, std::size_t& at)
{
    const std::size_t start = at;
    while (at < text.size() && IsSkipped(text[at]))
        ++at;
    return at != start;
}

KELPKIT_AVX2 Progress DecodeAvx2(std::string_view text, char* out)
{
    const __m256i rowKinds = Twice(RowKinds());
    const __m256i columnKinds = Twice(ColumnKinds());
    const __m256i ways = Twice(DecodeWays());
    const __m256i order = Twice(DecodeOrder());
    const __m256i together = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7);
    const __m256i first24 = _mm256_setr_epi32(-1, -1, -1, -1, -1, -1, 0, 0);

    char* to = out;
    std::size_t done = 0;
    while (done < text.size()) {
        const char* from = text.data() + done;
        char padded[32];
        if (text.size() - done < 32) {
            // What the text lacks is zero, and so wrong.
            std::memset(padded, 0, sizeof(padded));
            std::memcpy(padded, from, text.size() - done);
            from = padded;
        }
        const __m256i characters = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
        const __m256i row = _mm256_and_si256(_mm256_srli_epi32(characters, 4), _mm256_set1_epi8(0x0F));
        const __m256i right =
            _mm256_and_si256(_mm256_shuffle_epi8(columnKinds, characters), _mm256_shuffle_epi8(rowKinds, row));
        const __m256i isWrong = _mm256_cmpeq_epi8(right, _mm256_setzero_si256());
        const __m256i isSlash = _mm256_cmpeq_epi8(characters, _mm256_set1_epi8('/'));
        const __m256i way = _mm256_shuffle_epi8(ways, _mm256_add_epi8(row, isSlash));
        const __m256i pairs = _mm256_maddubs_epi16(_mm256_add_epi8(characters, way), _mm256_set1_epi16(0x0140));
        const __m256i quanta = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
        const __m256i bytes = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(quanta, order), together);
        const auto wrong = static_cast<unsigned>(_mm256_movemask_epi8(isWrong));
        if (wrong == 0) {
            _mm256_maskstore_epi32(reinterpret_cast<int*>(to), first24, bytes);
            to += 24;
            done += 32;
            continue;
        }

        char piece[32];
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(piece), bytes);
        const std::size_t count = CountQuanta(wrong);
        for (std::size_t i = 0; i < count; ++i, to += 3)
            std::memcpy(to, piece + 3 * i, 3);
        done += 4 * count;
        if (!SkipBetweenQuanta(text, done))
            break;
    }
    return {done, static_cast<std::size_t>(to - out)};
}

KELPKIT_AVX512 __m512i FourTimes(__m128i table)
{
    return _mm512_broadcast_i32x4(table);
}

// Of sixteen groups of four bytes, the first twelve.
constexpr __mmask16 kFirst48 = 0x0FFF;

// A mask with the lowest bits set, 1 to 64 of them.
std::uint64_t LowBits(std::size_t count)
{
    return ~std::uint64_t{0} >> (64 - count);
}

// The characters for 48 bytes.
KELPKIT_AVX512 __m512i Characters(__m512i bytes)
{
    const __m512i twelves = _mm512_setr_epi32(0, 1, 2, 2, 3, 4, 5, 5, 6, 7, 8, 8, 9, 10, 11, 11);
    const __m512i triples = _mm512_shuffle_epi8(_mm512_permutexvar_epi32(twelves, bytes), FourTimes(EncodeOrder()));
    const __m512i even = _mm512_srlv_epi16(triples, _mm512_set1_epi32(0x0006000A));
    const __m512i odd = _mm512_sllv_epi16(triples, _mm512_set1_epi32(0x00080004));
    const __m512i values =
        _mm512_and_si512(_mm512_mask_mov_epi8(even, 0xAAAAAAAAAAAAAAAA, odd), _mm512_set1_epi8(0x3F));
    const __mmask64 isUpper = _mm512_cmplt_epi8_mask(values, _mm512_set1_epi8(26));
    const __m512i row =
        _mm512_mask_mov_epi8(_mm512_subs_epu8(values, _mm512_set1_epi8(51)), isUpper, _mm512_set1_epi8(13));
    return _mm512_add_epi8(values, _mm512_shuffle_epi8(FourTimes(EncodeWays()), row));
}

// Encodes all.
KELPKIT_AVX512 std::size_t EncodeAvx512(std::string_view data, char* out)
{
    std::size_t done = 0;
    for (; data.size() - done >= 48; done += 48, out += 64)
        _mm512_storeu_si512(out, Characters(_mm512_maskz_loadu_epi32(kFirst48, data.data() + done)));
    const std::size_t rest = data.size() - done;
    if (rest != 0) {
        const __m512i bytes = _mm512_maskz_loadu_epi8(LowBits(rest), data.data() + done);
        _mm512_mask_storeu_epi8(out, LowBits((4 * rest + 2) / 3), Characters(bytes));
    }
    return data.size();
}

KELPKIT_AVX512 Progress DecodeAvx512(std::string_view text, char* out)
{
    const __m512i rowKinds = FourTimes(RowKinds());
    const __m512i columnKinds = FourTimes(ColumnKinds());
    const __m512i ways = FourTimes(DecodeWays());
    const __m512i order = FourTimes(DecodeOrder());
    const __m512i together = _mm512_setr_epi32(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 3, 7, 11, 15);

    char* to = out;
    std::size_t done = 0;
    while (done < text.size()) {
        const char* const from = text.data() + done;
        const std::size_t left = text.size() - done;
        // The processor itself fetches ahead to the end of a page only.
        _mm_prefetch(from + 1024, _MM_HINT_T0);
        // What a last load leaves out is zero, and so wrong.
        const __m512i characters = left >= 64 ? _mm512_loadu_si512(from) : _mm512_maskz_loadu_epi8(LowBits(left), from);
        const __m512i row = _mm512_and_si512(_mm512_srli_epi32(characters, 4), _mm512_set1_epi8(0x0F));
        const __mmask64 wrong =
            _mm512_testn_epi8_mask(_mm512_shuffle_epi8(columnKinds, characters), _mm512_shuffle_epi8(rowKinds, row));
        const __mmask64 isSlash = _mm512_cmpeq_epi8_mask(characters, _mm512_set1_epi8('/'));
        const __m512i way = _mm512_shuffle_epi8(ways, _mm512_mask_mov_epi8(row, isSlash, _mm512_set1_epi8(1)));
        const __m512i pairs = _mm512_maddubs_epi16(_mm512_add_epi8(characters, way), _mm512_set1_epi16(0x0140));
        const __m512i quanta = _mm512_madd_epi16(pairs, _mm512_set1_epi32(0x00011000));
        const __m512i bytes = _mm512_permutexvar_epi32(together, _mm512_shuffle_epi8(quanta, order));
        if (wrong == 0) {
            _mm512_mask_storeu_epi32(to, kFirst48, bytes);
            to += 48;
            done += 64;
            continue;
        }

        if (left >= 64) {
            // Where lines end, half as wide registers are faster.
            const Progress rest = DecodeAvx2(text.substr(done), to);
            return {done + rest.charactersRead, static_cast<std::size_t>(to - out) + rest.bytesWritten};
        }
        const std::size_t count = CountQuanta(wrong);
        _mm512_mask_storeu_epi8(to, (std::uint64_t{1} << 3 * count) - 1, bytes);
        to += 3 * count;
        done += 4 * count;
        if (!SkipBetweenQuanta(text, done))
            break;
    }
    return {done, static_cast<std::size_t>(to - out)};
}

} // namespace

const Blocks kAvx2Blocks = {EncodeAvx2, DecodeAvx2};
const Blocks kAvx512Blocks = {EncodeAvx512, DecodeAvx512};

} // namespace KELPKIT::base64
