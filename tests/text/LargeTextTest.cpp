#include "support/ImportPatch.h"
#include "support/RepeatingHeap.h"

#include <Kelpkit/Text.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <climits>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>

using namespace KELPKIT;
using test::ImportPatch;
using test::RepeatingHeap;

namespace
{

// The most that an int counts together with the terminator.
constexpr std::size_t kMost = INT_MAX - 1;

constexpr std::size_t kChinese = kMost / 3; // characters of three bytes in UTF-8, which make up the most
static_assert(kChinese * 3 == kMost);

// The platform's conversions count in int, and so do their results.
class LargeText : public testing::Test
{
private:
    RepeatingHeap m_heap;
};

} // namespace

TEST_F(LargeText, WideIsUtf8UpToTheMostThatIsCounted)
{
    EXPECT_EQ(UnicodeToUTF8(std::wstring(kChinese, L'中')).size(), kMost);
    std::wstring longer(kChinese + 1, L'中');
    longer.back() = L'k';
    EXPECT_EQ(UnicodeToUTF8(longer).size(), 0U);
}

// What is not plain goes to Windows, for which so much would take long.
TEST_F(LargeText, WindowsIsAskedForTextUpToTheMostThatItCounts)
{
    static bool asked;
    const ImportPatch patch(
        "MultiByteToWideChar", +[](UINT, DWORD, const char*, int length, wchar_t* out, int size) -> int {
            asked = true;
            EXPECT_EQ(length, INT_MAX);
            if (size < INT_MAX)
                return 0; // too little room
            out[0] = L'x';
            out[1] = L'\0';
            return size;
        });
    EXPECT_EQ(AnsiToUnicode(std::string(kMost, '\xD6')), L"x");
    asked = false;
    EXPECT_EQ(AnsiToUnicode(std::string(kMost + 1, '\xD6')), L"");
    EXPECT_FALSE(asked);
}

TEST_F(LargeText, WhatWindowsGivesPieceByPieceIsCountedAsAWhole)
{
    const ImportPatch patch(
        "WideCharToMultiByte", +[](UINT, DWORD, const wchar_t* text, int length, char* out, int, const char*, BOOL*) {
            const int size = text[length - 1] == L'k' ? 3 * length - 2 : 3 * length;
            std::memset(out, 'x', static_cast<std::size_t>(size));
            return size;
        });
    EXPECT_EQ(UnicodeToAnsi(std::wstring(kChinese, L'中')).size(), kMost);
    std::wstring longer(kChinese + 1, L'中');
    longer.back() = L'k';
    EXPECT_EQ(UnicodeToAnsi(longer).size(), 0U);
}

TEST_F(LargeText, Base64OfTheMostDataIsLongerThanAnIntCounts)
{
    const std::string data(INT_MAX, 'k');
    const std::string text = CBase64::Encode(data.data(), INT_MAX);
    EXPECT_EQ(text.size(), 2863311532U);
    EXPECT_EQ(text.substr(text.size() - 8), "a2traw==");
}

TEST_F(LargeText, Base64OfTheMostCharactersIsDecodedAndOfMoreIsNot)
{
    std::string out;
    EXPECT_EQ(CBase64::DecodeEx(std::string(INT_MAX, 'k'), out), 1610612736);
    out = "what was there before";
    EXPECT_EQ(CBase64::DecodeEx(std::string(INT_MAX + std::size_t(1), 'k'), out), 0);
    EXPECT_EQ(out, "");
    char* buffer = nullptr;
    int length = -1;
    CBase64::DecodeEx(std::string(INT_MAX + std::size_t(1), 'k'), buffer, length);
    const std::unique_ptr<char[]> owner(buffer);
    EXPECT_EQ(length, 0);
    EXPECT_EQ(buffer[0], '\0');
}
