#include "support/CodePage.h"
#include "support/PageTouches.h"
#include "support/Random.h"
#include "text/VersionModel.h"

#include <Kelpkit/Text.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <string>

using namespace KELPKIT;
using test::ModelVersionOrder;
using test::PageTouches;
using test::UnderCodePage936;
using test::UnderUtf8;

namespace
{

struct Case {
    const wchar_t* a;
    const wchar_t* b;
    int result;
};

void ExpectBothWays(const Case& expected)
{
    EXPECT_EQ(ALargeB(expected.a, expected.b), expected.result) << testing::PrintToString(std::wstring(expected.a));
    EXPECT_EQ(ALargeB(expected.b, expected.a), -expected.result) << testing::PrintToString(std::wstring(expected.b));
}

class RandomVersions : public test::Random
{
public:
    RandomVersions() : Random(1) {}

    // Texts that share much, so that they often agree for long.
    std::wstring Next()
    {
        static const std::wstring pieces[] = {
            L"0", L"1",  L"01", L"2",          L"9",          L"10",         L".",
            L".", L"-",  L"v",  L"V",          L"beta",       L"a",          L":",
            L"/", L"版", L"é",  L"2147483646", L"2147483647", L"2147483648", L"99999999999999999999"};
        std::wstring text;
        for (unsigned length = Below(6); length > 0; --length)
            text += pieces[Below(static_cast<unsigned>(std::size(pieces)))];
        return text;
    }
};

} // namespace

TEST(ALargeB, ComparesRunsOfDigitsAsNumbers)
{
    ExpectBothWays({L"1.10", L"1.9", 1});
    ExpectBothWays({L"2.10.3", L"2.10.12", -1});
    ExpectBothWays({L"1.01", L"1.1", 0});
    ExpectBothWays({L"0001", L"1", 0});
    ExpectBothWays({L"000", L"0", 0});
}

TEST(ALargeB, MoreRunsAreLargerWhereTheOthersAreEqual)
{
    ExpectBothWays({L"1.0", L"1.0.0", -1});
    ExpectBothWays({L"1.0", L"1.0.", -1});
    ExpectBothWays({L"1", L"1a", -1});
}

TEST(ALargeB, EmptyTextIsTheSmallest)
{
    ExpectBothWays({L"", L"", 0});
    ExpectBothWays({L"", L"1", -1});
    ExpectBothWays({L"", L"a", -1});
}

TEST(ALargeB, ComparesAnythingElseAsTexts)
{
    ExpectBothWays({L"1.2a", L"1.2b", -1});
    ExpectBothWays({L"1.2", L"1.a", -1});
    ExpectBothWays({L"v2", L"10", 1});
    ExpectBothWays({L"V1", L"v1", -1});
    ExpectBothWays({L"1.2", L"1..2", -1});
    ExpectBothWays({L"beta", L"betas", -1});
    ExpectBothWays({L"2beta", L"2betas", -1});
}

TEST(ALargeB, BytesOfTextsAreUnsigned)
{
    // E9, A8 A6 or C3 A9, as the code page is; all are above the 7A of z.
    ExpectBothWays({L"é", L"z", 1});
}

TEST(ALargeB, NumbersSaturate)
{
    ExpectBothWays({L"2147483647", L"2147483648", 0});
    ExpectBothWays({L"2147483646", L"2147483648", -1});
    ExpectBothWays({L"4294967296", L"1", 1});
    ExpectBothWays({L"99999999999999999999999999", L"2147483647", 0});
    ExpectBothWays({L"00000000000000000000000001", L"1", 0});
}

TEST(ALargeB, TextEndsAtItsFirstZeroCharacter)
{
    EXPECT_EQ(ALargeB(std::wstring(L"1\0002", 3), L"1"), 0);
}

class ALargeBUnder936 : public UnderCodePage936
{
};

TEST_F(ALargeBUnder936, ComparesTheBytesOfTheCodePage)
{
    // D6 D0 and CE C4; by code point it would be the other way round than by pinyin.
    ExpectBothWays({L"中", L"文", 1});
    ExpectBothWays({L"版2", L"版10", -1});
}

class ALargeBUnderUtf8 : public UnderUtf8
{
};

TEST_F(ALargeBUnderUtf8, ComparesTheBytesOfTheCodePage)
{
    // E4 B8 AD and E6 96 87.
    ExpectBothWays({L"中", L"文", -1});
    ExpectBothWays({L"版2", L"版10", -1});
}

TEST(ALargeB, RandomTextsAreComparedAsTheModelDoes)
{
    RandomVersions versions;
    for (int round = 0; round < 100000; ++round) {
        const std::wstring a = versions.Next();
        const std::wstring b = versions.Next();
        ASSERT_EQ(ALargeB(a, b), ModelVersionOrder(a, b)) << testing::PrintToString(a) << testing::PrintToString(b);
    }
}

TEST(ALargeB, IsAConsistentOrder)
{
    RandomVersions versions;
    for (int round = 0; round < 100000; ++round) {
        const std::wstring a = versions.Next();
        const std::wstring b = versions.Next();
        const std::wstring c = versions.Next();
        ASSERT_EQ(ALargeB(a, a), 0) << testing::PrintToString(a);
        ASSERT_EQ(ALargeB(a, b), -ALargeB(b, a)) << testing::PrintToString(a) << testing::PrintToString(b);
        if (ALargeB(a, b) <= 0 && ALargeB(b, c) <= 0) {
            ASSERT_LE(ALargeB(a, c), 0) << testing::PrintToString(a) << testing::PrintToString(b)
                                        << testing::PrintToString(c);
        }
        if (ALargeB(a, b) == 0) {
            ASSERT_EQ(ALargeB(a, c), ALargeB(b, c))
                << testing::PrintToString(a) << testing::PrintToString(b) << testing::PrintToString(c);
        }
    }
}

namespace
{

std::wstring Repeated(const std::wstring& pattern, std::size_t times)
{
    std::wstring text;
    while (times-- > 0)
        text += pattern;
    return text;
}

// Each page of what the comparison reads and writes is touched a few times only, however many runs there are.
void ExpectLittleWork(const std::wstring& a, const std::wstring& b, int result)
{
    const PageTouches touches;
    EXPECT_EQ(ALargeB(a, b), result);
    const std::size_t pages = (a.size() + b.size()) * sizeof(wchar_t) / 4096;
    EXPECT_GE(PageTouches::Count(), pages);
    EXPECT_LE(PageTouches::Count(), 10 * pages) << testing::PrintToString(a.substr(0, 20));
}

} // namespace

TEST(ALargeB, DoesWorkInProportionToTheText)
{
    constexpr std::size_t kMany = 30000;
    const std::wstring same = Repeated(L"12.", kMany);
    ExpectLittleWork(same, same, 0);
    ExpectLittleWork(same + L"1", same, 1);
    // Equal, too, but not by their characters.
    ExpectLittleWork(Repeated(L"01.", kMany), Repeated(L"1.", kMany), 0);
    ExpectLittleWork(Repeated(L"版01.", kMany), Repeated(L"版1.", kMany), 0);
    // Of a single run.
    ExpectLittleWork(std::wstring(kMany, L'9'), std::wstring(kMany + 1, L'9'), 0);
    ExpectLittleWork(std::wstring(kMany, L'0') + L'1', std::wstring(kMany, L'0') + L'2', -1);
    ExpectLittleWork(std::wstring(kMany, L'版'), std::wstring(kMany, L'版') + L'a', -1);
}

TEST(IsDoubleZero, IsTrueUpToAMillionthOnBothSides)
{
    const double bound = 0.000001;
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(IsDoubleZero(0.0));
    EXPECT_TRUE(IsDoubleZero(-0.0));
    EXPECT_TRUE(IsDoubleZero(bound));
    EXPECT_TRUE(IsDoubleZero(-bound));
    EXPECT_FALSE(IsDoubleZero(std::nextafter(bound, infinity)));
    EXPECT_FALSE(IsDoubleZero(std::nextafter(-bound, -infinity)));
    EXPECT_FALSE(IsDoubleZero(1.0));
    EXPECT_FALSE(IsDoubleZero(-1.0));
    EXPECT_FALSE(IsDoubleZero(infinity));
    EXPECT_FALSE(IsDoubleZero(-infinity));
}

TEST(IsDoubleZero, IsTrueForNotANumber)
{
    EXPECT_TRUE(IsDoubleZero(std::numeric_limits<double>::quiet_NaN()));
}
