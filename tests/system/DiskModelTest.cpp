#include "system/DiskModel.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using namespace KELPKIT;

namespace
{

using Models = std::vector<CString>;

std::string SwappedNameOf(const wchar_t* name)
{
    return SwappedName(name);
}

// What is taken for the name, and what is left.
std::pair<CString, Models> Taken(Models models, const wchar_t* name)
{
    const CString model = TakeModel(models, name);
    return {model, models};
}

} // namespace

TEST(IsLeftOut, IsTrueForTheSuffix)
{
    EXPECT_TRUE(IsLeftOut(L"WDC WD10EZEX-08WN4A0 ATA Device"));
    EXPECT_TRUE(IsLeftOut(L"x ATA Device"));
    EXPECT_TRUE(IsLeftOut(L" ATA Device"));
}

TEST(IsLeftOut, IsFalseForAnythingElse)
{
    for (const wchar_t* const model :
         {L"Samsung SSD 970 EVO 1TB", L"TA Device", L"x ATA Device ", L"x ATA Device 2", L"x ata device",
          L"xATA Device USB", L"", L"123456789", L"12345678901", L"VBOX HARDDISK"})
        EXPECT_FALSE(IsLeftOut(model)) << testing::PrintToString(model);
}

TEST(IsLeftOut, IsTrueForAModelOfTenCharacters)
{
    EXPECT_TRUE(IsLeftOut(L"1234567890"));
    EXPECT_TRUE(IsLeftOut(L"ATA Device"));
    EXPECT_TRUE(IsLeftOut(L"硬盘硬盘硬盘硬盘硬盘"));
}

TEST(IsLeftOut, IsFalseForTheSuffixTwice)
{
    EXPECT_FALSE(IsLeftOut(L"x ATA Device ATA Device"));
    EXPECT_FALSE(IsLeftOut(L" ATA Device ATA Device"));
}

TEST(TakeModel, IsTheEntryThatEqualsTheName)
{
    EXPECT_EQ(Taken({L"abc", L"ab", L"b"}, L"ab"), std::pair(CString(L"ab"), Models{L"abc", L"b"}));
}

TEST(TakeModel, IsElseTheFirstEntryThatContainsTheName)
{
    EXPECT_EQ(Taken({L"x", L"xaby", L"zab"}, L"ab"), std::pair(CString(L"xaby"), Models{L"x", L"zab"}));
    EXPECT_EQ(Taken({L"Samsung SSD 970"}, L"SSD"), std::pair(CString(L"Samsung SSD 970"), Models{}));
}

TEST(TakeModel, IsElseTheName)
{
    EXPECT_EQ(Taken({L"x", L"AB", L"a b"}, L"ab"), std::pair(CString(L"ab"), Models{L"x", L"AB", L"a b"}));
    EXPECT_EQ(Taken({}, L"ab"), std::pair(CString(L"ab"), Models{}));
    EXPECT_EQ(Taken({L"a"}, L"ab"), std::pair(CString(L"ab"), Models{L"a"})) << "the name contains the entry";
}

TEST(TakeModel, GivesTwoDisksOfOneNameAnEntryEach)
{
    Models models = {L"other", L"disk one", L"disk", L"disk two"};
    EXPECT_EQ(TakeModel(models, L"disk"), CString(L"disk"));
    EXPECT_EQ(TakeModel(models, L"disk"), CString(L"disk one"));
    EXPECT_EQ(TakeModel(models, L"disk"), CString(L"disk two"));
    EXPECT_EQ(TakeModel(models, L"disk"), CString(L"disk"));
    EXPECT_EQ(models, Models{L"other"});
}

TEST(TakeModel, TakesOneOfTwoEqualEntries)
{
    EXPECT_EQ(Taken({L"a", L"a"}, L"a"), std::pair(CString(L"a"), Models{L"a"}));
}

TEST(TakeModel, FindsAnEmptyNameInEveryEntry)
{
    EXPECT_EQ(Taken({L"a", L"b"}, L""), std::pair(CString(L"a"), Models{L"b"}));
    EXPECT_EQ(Taken({L"a", L""}, L""), std::pair(CString(L""), Models{L"a"})) << "an empty one equals it";
    EXPECT_EQ(Taken({}, L""), std::pair(CString(L""), Models{}));
}

TEST(SwapPairs, ExchangesTheBytesOfEachPair)
{
    EXPECT_EQ(SwapPairs("abcd"), "badc");
    EXPECT_EQ(SwapPairs("TS0100MD00 3"), "ST1000DM003 ");
    EXPECT_EQ(SwapPairs("\xD6\xD0"), "\xD0\xD6");
}

TEST(SwapPairs, PairsAnOddLastByteWithASpace)
{
    EXPECT_EQ(SwapPairs("x"), " x");
    EXPECT_EQ(SwapPairs("abc"), "ba c");
}

TEST(SwapPairs, OfNothingIsNothing)
{
    EXPECT_EQ(SwapPairs(""), "");
}

TEST(SwapPairs, EndsAtTheFirstZeroOfTheResult)
{
    EXPECT_EQ(SwapPairs(std::string("a\0", 2)), "");
    EXPECT_EQ(SwapPairs(std::string("\0b", 2)), "b");
    EXPECT_EQ(SwapPairs(std::string("ab\0dxy", 6)), "bad");
}

TEST(SwappedName, OfTwoOrMoreAsciiCharactersIsEmpty)
{
    EXPECT_EQ(SwappedNameOf(L"ab"), "");
    EXPECT_EQ(SwappedNameOf(L"abc"), "");
    EXPECT_EQ(SwappedNameOf(L"Samsung SSD 970 EVO 1TB"), "");
}

TEST(SwappedName, OfOneAsciiCharacterIsThatBehindASpace)
{
    EXPECT_EQ(SwappedNameOf(L"x"), " x");
}

TEST(SwappedName, TakesAsManyBytesAsThereAreCharacters)
{
    EXPECT_EQ(SwappedNameOf(L"\x4142\x4344"), "AB");
    EXPECT_EQ(SwappedNameOf(L"\x4142\x4344\x4546\x4748"), "ABCD");
    EXPECT_EQ(SwappedNameOf(L"\x4142\x4344\x4546"), "AB D") << "an odd number: 42 41 44";
    EXPECT_EQ(SwappedNameOf(L"\x4142"), " B");
    EXPECT_EQ(SwappedNameOf(L"\x4142yxx"), "AB") << "a zero behind the letter y";
}

TEST(SwappedName, OfNothingIsNothing)
{
    EXPECT_EQ(SwappedNameOf(L""), "");
}

TEST(JoinDiskId, JoinsModelAndSerialByAHyphen)
{
    EXPECT_EQ(JoinDiskId(L"TS0100MD00 3", L"W1D4A5B6"), CString(L"TS0100MD00 3-W1D4A5B6"));
    EXPECT_EQ(JoinDiskId(L"", L"W1D4A5B6"), CString(L"-W1D4A5B6"));
    EXPECT_EQ(JoinDiskId(L"a-b", L""), CString(L"a-b-"));
    EXPECT_EQ(JoinDiskId(L"", L""), CString(L"-"));
}

TEST(JoinDiskId, TrimsSpacesOnBothSidesOfBoth)
{
    EXPECT_EQ(JoinDiskId(L"  m o  ", L"   s 1 "), CString(L"m o-s 1"));
    EXPECT_EQ(JoinDiskId(L"    ", L"  "), CString(L"-"));
    EXPECT_EQ(JoinDiskId(L"\tm\t", L"\ts"), CString(L"\tm\t-\ts")) << "spaces only";
}
