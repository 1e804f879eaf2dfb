#include "color/ColorModel.h"
#include "support/OddLocale.h"
#include "support/Random.h"

#include <Kelpkit/Color.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <string>
#include <type_traits>

using namespace KELPKIT;
using test::ModelHexColorToREF;
using test::ModelRGBColorToREF;

namespace
{

static_assert(std::is_same_v<COLORREF, unsigned long>, "the interface says so");

constexpr COLORREF kWhite = 0xFFFFFF;

std::wstring RandomText(test::Random& random, const std::wstring& characters, unsigned maxLength)
{
    std::wstring text(random.Below(maxLength + 1), L'\0');
    for (wchar_t& c : text)
        c = characters[random.Below(static_cast<unsigned>(characters.size()))];
    return text;
}

} // namespace

TEST(RGBColorToREF, ReadsThreeNumbers)
{
    EXPECT_EQ(RGBColorToREF(L"255,0,0"), 0x0000FFU);
    EXPECT_EQ(RGBColorToREF(L"0,128,255"), 0xFF8000U);
    EXPECT_EQ(RGBColorToREF(L"0,0,0"), 0U);
    EXPECT_EQ(RGBColorToREF(L"007,+8,9"), 0x090807U);
}

TEST(RGBColorToREF, SkipsWhiteSpaceBeforeANumberAndIgnoresWhatStandsBehindIt)
{
    EXPECT_EQ(RGBColorToREF(L" 10 , 20 , 30"), 0x1E140AU);
    EXPECT_EQ(RGBColorToREF(L"\t10\r\n,\v\f20px,30.9"), 0x1E140AU);
    EXPECT_EQ(RGBColorToREF(L"1 2,3-4,5#6"), 0x050301U);
    EXPECT_EQ(RGBColorToREF(L"- 1,0x10,1e2"), 0x010000U);
}

TEST(RGBColorToREF, IsWhiteUnlessThereAreThreePieces)
{
    for (const wchar_t* const text : {L"", L",", L",,,", L"1", L"1,2", L"1,2,3,4", L"255,0,", L"1;2;3", L"1,2,3,4,5"})
        EXPECT_EQ(RGBColorToREF(text), kWhite) << testing::PrintToString(std::wstring(text));
}

TEST(RGBColorToREF, CommasInARowCountAsOne)
{
    EXPECT_EQ(RGBColorToREF(L",255,,0,0,"), 0x0000FFU);
    EXPECT_EQ(RGBColorToREF(L",,,1,,,2,,,3,,,"), 0x030201U);
    EXPECT_EQ(RGBColorToREF(L"1, ,3"), 0x030001U) << "a blank is a piece";
}

TEST(RGBColorToREF, PiecesWithoutDigitsAreZero)
{
    EXPECT_EQ(RGBColorToREF(L"a,b,c"), 0U);
    EXPECT_EQ(RGBColorToREF(L"-,+,#"), 0U);
    EXPECT_EQ(RGBColorToREF(L"红,绿,蓝"), 0U);
}

TEST(RGBColorToREF, KeepsTheLowEightBits)
{
    EXPECT_EQ(RGBColorToREF(L"256,-1,0"), 0x00FF00U);
    EXPECT_EQ(RGBColorToREF(L"300,-300,65535"), 0xFFD42CU);
}

TEST(RGBColorToREF, NumbersSaturate)
{
    EXPECT_EQ(RGBColorToREF(L"2147483647,2147483648,99999999999999999999"), 0xFFFFFFU);
    EXPECT_EQ(RGBColorToREF(L"-2147483648,-2147483649,-99999999999999999999"), 0U);
    EXPECT_EQ(RGBColorToREF(L"4294967297,0,0"), 0x0000FFU);
    EXPECT_EQ(RGBColorToREF(L"0000000000000000000007,0,0"), 7U);
}

TEST(RGBColorToREF, TextEndsAtItsFirstZeroCharacter)
{
    EXPECT_EQ(RGBColorToREF(std::wstring(L"1,2,3\0,4", 8)), 0x030201U);
    EXPECT_EQ(RGBColorToREF(std::wstring(L"1,2\0,3", 6)), kWhite);
}

TEST(RGBColorToREF, RandomTextsAreReadByTheSplittersRule)
{
    test::Random random(1);
    for (int round = 0; round < 300000; ++round) {
        const std::wstring text = RandomText(random, L"0123456789,,,,,, \t+-ax#\r\n中", 24);
        ASSERT_EQ(RGBColorToREF(text), ModelRGBColorToREF(text)) << testing::PrintToString(text);
    }
}

TEST(RGBColorToREF, DoesNotDependOnTheLocale)
{
    const test::OddLocale odd;
    EXPECT_EQ(RGBColorToREF(L"1.000,2,3"), 0x030201U);
    EXPECT_EQ(RGBColorToREF(L" 128,1;2,3"), 0x030180U) << "a piece ends at what is no digit";
}

TEST(REFColorToRGB, DoesNotDependOnTheLocale)
{
    const test::OddLocale odd;
    EXPECT_EQ(REFColorToRGB(0xFF8000), L"0,128,255");
}

TEST(REFColorToRGB, WritesThreeNumbers)
{
    EXPECT_EQ(REFColorToRGB(0x00FF8000), L"0,128,255");
    EXPECT_EQ(REFColorToRGB(0), L"0,0,0");
    EXPECT_EQ(REFColorToRGB(0x0000FF), L"255,0,0");
}

TEST(REFColorToRGB, IgnoresTheTopByte)
{
    EXPECT_EQ(REFColorToRGB(0xFFFFFFFF), L"255,255,255");
    EXPECT_EQ(REFColorToRGB(0xAB000001), L"1,0,0");
}

TEST(REFColorToRGB, EveryComponentMakesTheRoundTrip)
{
    for (unsigned value = 0; value < 256; ++value) {
        for (const unsigned shift : {0U, 8U, 16U}) {
            const COLORREF color = 0x102030 ^ value << shift;
            ASSERT_EQ(RGBColorToREF(REFColorToRGB(color)), color);
        }
    }
}

TEST(HexColorToREF, ReadsSixDigitsInBothCases)
{
    for (const wchar_t* const text : {L"#FF0000", L"FF0000", L"ff0000", L"#fF0000"})
        EXPECT_EQ(HexColorToREF(text), 0x0000FFU);
    EXPECT_EQ(HexColorToREF(L"#00ff00"), 0x00FF00U);
    EXPECT_EQ(HexColorToREF(L"#0000FF"), 0xFF0000U);
    EXPECT_EQ(HexColorToREF(L"#FF8000"), 0x0080FFU);
}

TEST(HexColorToREF, IgnoresWhatStandsBeforeTheMark)
{
    EXPECT_EQ(HexColorToREF(L"abc#FF0000"), 0x0000FFU);
    EXPECT_EQ(HexColorToREF(L"no digit at all #FF0000"), 0x0000FFU);
}

TEST(HexColorToREF, IsBlackForNoDigits)
{
    EXPECT_EQ(HexColorToREF(L""), 0U);
    EXPECT_EQ(HexColorToREF(L"#"), 0U);
    EXPECT_EQ(HexColorToREF(L"xyz#"), 0U);
    EXPECT_EQ(HexColorToREF(L"000000"), 0U);
    EXPECT_EQ(HexColorToREF(L"#0"), 0U);
}

TEST(HexColorToREF, ReadsFewerDigitsAsANumber)
{
    EXPECT_EQ(HexColorToREF(L"#F00"), 0x000F00U);
    EXPECT_EQ(HexColorToREF(L"#1"), 0x010000U);
}

TEST(HexColorToREF, TheLastSixDigitsCount)
{
    EXPECT_EQ(HexColorToREF(L"80FF0000"), 0x0000FFU);
    EXPECT_EQ(HexColorToREF(L"123456789ABCDEF0FF0000"), 0x0000FFU);
    EXPECT_EQ(HexColorToREF(std::wstring(1000, L'0') + L"FF0000"), 0x0000FFU);
}

TEST(HexColorToREF, IsWhiteForAnyOtherCharacter)
{
    for (const wchar_t* const text : {L"0x00FF00", L"#FF 000", L" FF0000", L"FF0000 ", L"##FF0000", L"-1", L"+1", L"G",
                                      L"#FF00中", L"1g", L"\xFF11"})
        EXPECT_EQ(HexColorToREF(text), kWhite) << testing::PrintToString(std::wstring(text));
    EXPECT_EQ(HexColorToREF(std::wstring(L"FF0000\0", 7)), kWhite) << "a zero character is one, too";
}

TEST(HexColorToREF, RandomTextsAreReadAsTheModelDoes)
{
    test::Random random(2);
    for (int round = 0; round < 300000; ++round) {
        const std::wstring characters =
            random.Below(3) == 0 ? L"0123456789abcdefABCDEF# xG" : L"000123456789abcdefABCDEF";
        const std::wstring text = (random.Below(2) == 0 ? L"#" : L"") + RandomText(random, characters, 12);
        ASSERT_EQ(HexColorToREF(text), ModelHexColorToREF(text)) << testing::PrintToString(text);
    }
}
