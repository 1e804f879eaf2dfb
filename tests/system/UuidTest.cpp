#include "support/FailingCall.h"
#include "support/ImportPatch.h"
#include "support/OddLocale.h"
#include "support/Threads.h"

#include <Kelpkit/SystemInfo.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <bcrypt.h>
#include <boost/uuid/entropy_error.hpp>

#include <cstdint>
#include <cwchar>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

using namespace KELPKIT;
using test::ImportPatch;

namespace
{

// 36 characters in groups of 8, 4, 4, 4 and 12, with version 4 and the variant of RFC 4122.
bool IsWellFormed(const std::wstring& uuid)
{
    if (uuid.size() != 36)
        return false;
    for (std::size_t i = 0; i < uuid.size(); ++i) {
        const std::wstring allowed = i == 8 || i == 13 || i == 18 || i == 23 ? L"-"
                                     : i == 14                               ? L"4"
                                     : i == 19                               ? L"89ab"
                                                                             : L"0123456789abcdef";
        if (allowed.find(uuid[i]) == std::wstring::npos)
            return false;
    }
    return true;
}

// Random numbers that are none: byte i of all is i times this.
unsigned g_step = 0;

int g_draws = 0;

NTSTATUS WINAPI FakeRandom(BCRYPT_ALG_HANDLE, PUCHAR bytes, ULONG size, ULONG)
{
    ++g_draws;
    for (ULONG i = 0; i < size; ++i)
        bytes[i] = static_cast<UCHAR>(i * g_step);
    return 0;
}

// The same bytes as words, for a Mersenne twister.
struct FakeSeed {
    using result_type = std::uint32_t;
    template <class Word>
    void generate(Word* begin, const Word* end) const
    {
        unsigned byte = 0;
        for (; begin != end; ++begin) {
            *begin = 0;
            for (unsigned shift = 0; shift < 32; shift += 8)
                *begin |= Word{static_cast<UCHAR>(byte++ * g_step)} << shift;
        }
    }
};

// The UUID that a Mersenne twister of that seed gives, each number taken lowest byte first.
std::wstring ExpectedUuid()
{
    FakeSeed seed;
    std::mt19937 engine(seed);
    std::vector<unsigned> bytes;
    for (int word = 0; word < 4; ++word) {
        for (std::uint32_t number = engine(), byte = 0; byte < 4; ++byte, number >>= 8)
            bytes.push_back(number & 0xFF);
    }
    bytes[6] = (bytes[6] & 0x4F) | 0x40;
    bytes[8] = (bytes[8] & 0xBF) | 0x80;
    std::wstring text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        wchar_t digits[8];
        std::swprintf(digits, 8, i == 4 || i == 6 || i == 8 || i == 10 ? L"-%02x" : L"%02x", bytes[i]);
        text += digits;
    }
    return text;
}

} // namespace

TEST(GenerateUUID, IsMadeByAMersenneTwisterThatTheSystemSeeds)
{
    const ImportPatch patch("BCryptGenRandom", FakeRandom);
    for (g_step = 0; g_step < 256; ++g_step) {
        SCOPED_TRACE(g_step);
        EXPECT_EQ(GenerateUUID(), ExpectedUuid());
    }
}

TEST(GenerateUUID, IsTheKnownOneOfAKnownSeed)
{
    const ImportPatch patch("BCryptGenRandom", FakeRandom);
    g_step = 1;
    EXPECT_EQ(GenerateUUID(), L"5c9a33ed-adff-4845-b26a-bc00d35aca6b");
    g_step = 77;
    EXPECT_EQ(GenerateUUID(), L"7076e161-834b-40a8-b66b-454f00106069");
}

TEST(GenerateUUID, DoesNotDependOnTheLocale)
{
    const ImportPatch patch("BCryptGenRandom", FakeRandom);
    g_step = 77;
    const test::OddLocale odd;
    EXPECT_EQ(GenerateUUID(), ExpectedUuid());
}

TEST(GenerateUUID, GivesAnotherOneEachTime)
{
    EXPECT_NE(GenerateUUID(), GenerateUUID());
}

TEST(GenerateUUID, OneHundredThousandAreWellFormedAndDistinct)
{
    std::set<std::wstring> uuids;
    std::set<wchar_t> variants;
    for (int i = 0; i < 100000; ++i) {
        const std::wstring uuid = GenerateUUID();
        ASSERT_TRUE(IsWellFormed(uuid)) << testing::PrintToString(uuid);
        variants.insert(uuid[19]);
        uuids.insert(uuid);
    }
    EXPECT_EQ(uuids.size(), 100000U);
    EXPECT_EQ(variants, (std::set<wchar_t>{L'8', L'9', L'a', L'b'}));
}

TEST(GenerateUUID, EveryDigitTakesEveryValue)
{
    std::set<wchar_t> seen[36];
    for (int i = 0; i < 1000; ++i) {
        const std::wstring uuid = GenerateUUID();
        for (std::size_t place = 0; place < 36; ++place)
            seen[place].insert(uuid[place]);
    }
    for (std::size_t place = 0; place < 36; ++place) {
        const bool fixed = place == 8 || place == 13 || place == 14 || place == 18 || place == 23;
        EXPECT_EQ(seen[place].size(), fixed ? 1U : place == 19 ? 4U : 16U) << place;
    }
}

TEST(GenerateUUID, SeedsAGeneratorInEachCall)
{
    const ImportPatch patch("BCryptGenRandom", FakeRandom);
    for (const unsigned step : {5U, 5U, 7U, 5U}) {
        g_step = step;
        g_draws = 0;
        EXPECT_EQ(GenerateUUID(), ExpectedUuid()) << "with nothing of the call before";
        EXPECT_EQ(g_draws, 1);
    }
}

TEST(GenerateUUID, ThrowsWhereTheSystemHasNoRandomNumbers)
{
    constexpr auto kUnsuccessful = static_cast<NTSTATUS>(0xC0000001);
    // The first exception of all opens what the runtime needs.
    EXPECT_THROW(throw std::runtime_error("first"), std::runtime_error);
    GenerateUUID();
    const test::FailingCall<decltype(::BCryptGenRandom)> failing("BCryptGenRandom", kUnsuccessful);
    EXPECT_THROW(GenerateUUID(), boost::uuids::entropy_error);
}

TEST(GenerateUUID, EightThreadsAtOnceGetDistinctOnes)
{
    std::vector<std::vector<std::wstring>> results(8);
    test::InThreads(results.size(), [&results](std::size_t thread) {
        for (int i = 0; i < 1000; ++i)
            results[thread].push_back(GenerateUUID());
    });
    std::set<std::wstring> uuids;
    for (const std::vector<std::wstring>& result : results) {
        for (const std::wstring& uuid : result) {
            EXPECT_TRUE(IsWellFormed(uuid));
            uuids.insert(uuid);
        }
    }
    EXPECT_EQ(uuids.size(), 8000U);
}
