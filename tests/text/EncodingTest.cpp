#include "support/CodePage.h"
#include "support/FailingCall.h"
#include "support/GuardedBuffer.h"
#include "support/ImportPatch.h"
#include "support/Random.h"
#include "support/Threads.h"

#include <Kelpkit/Text.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdlib>
#include <new>
#include <string>
#include <vector>

using namespace KELPKIT;
using test::UnderCodePage1252;
using test::UnderCodePage936;
using test::UnderUtf8;

namespace
{

// The conversions as two bare system calls each, with a buffer of zeros between: the results that are wanted.
std::wstring SystemWide(UINT codePage, const std::string& text)
{
    const int count = ::MultiByteToWideChar(codePage, 0, text.c_str(), -1, nullptr, 0);
    if (count <= 0)
        return L"";
    std::vector<wchar_t> buffer(static_cast<std::size_t>(count) + 1);
    ::MultiByteToWideChar(codePage, 0, text.c_str(), -1, buffer.data(), count);
    return buffer.data();
}

std::string SystemNarrow(UINT codePage, const std::wstring& text)
{
    const int count = ::WideCharToMultiByte(codePage, 0, text.c_str(), -1, nullptr, 0, nullptr, nullptr);
    if (count <= 0)
        return "";
    std::vector<char> buffer(static_cast<std::size_t>(count) + 1);
    ::WideCharToMultiByte(codePage, 0, text.c_str(), -1, buffer.data(), count, nullptr, nullptr);
    return buffer.data();
}

void ExpectSystemResults(const std::string& text)
{
    ASSERT_EQ(AnsiToUnicode(text), SystemWide(CP_ACP, text)) << testing::PrintToString(text);
    ASSERT_EQ(UTF8ToUnicode(text), SystemWide(CP_UTF8, text)) << testing::PrintToString(text);
}

void ExpectSystemResults(const std::wstring& text)
{
    ASSERT_EQ(UnicodeToAnsi(text), SystemNarrow(CP_ACP, text)) << testing::PrintToString(text);
    ASSERT_EQ(UnicodeToUTF8(text), SystemNarrow(CP_UTF8, text)) << testing::PrintToString(text);
}

// The pattern again and again, up to a length.
std::wstring Repeated(const std::wstring& pattern, std::size_t length)
{
    std::wstring text;
    while (text.size() < length)
        text += pattern;
    text.resize(length);
    return text;
}

class Random : public test::Random
{
public:
    using test::Random::Random;

    // Mostly short, at times as long as the buffers behind the conversions, at times longer.
    unsigned Length()
    {
        const unsigned limits[] = {8, 40, 300, 1100, 4000};
        return Below(limits[Below(5)]);
    }

    char32_t CodePoint()
    {
        switch (Below(6)) {
        case 0:
            return 0x80 + Below(0x780);
        case 1:
            return 0x10000 + Below(0x100000);
        case 2:
            return 0xE000 + Below(0x2000);
        default:
            return 0x4E00 + Below(0x5000);
        }
    }

    // Text whose share of ASCII runs is as given, in percent.
    std::wstring WellFormed(unsigned asciiShare)
    {
        std::wstring text;
        for (unsigned length = Length(); text.size() < length;) {
            if (Below(100) < asciiShare) {
                for (unsigned run = Below(40); run > 0; --run)
                    text += static_cast<wchar_t>(1 + Below(0x7F));
                continue;
            }
            const char32_t code = CodePoint();
            if (code >= 0x10000) {
                text += static_cast<wchar_t>(0xD7C0 + (code >> 10));
                text += static_cast<wchar_t>(0xDC00 + (code & 0x3FF));
            } else {
                text += static_cast<wchar_t>(code);
            }
        }
        return text;
    }
};

} // namespace

TEST(Encoding, EmptyTextGivesEmptyResult)
{
    EXPECT_EQ(AnsiToUnicode(""), L"");
    EXPECT_EQ(UnicodeToAnsi(L""), "");
    EXPECT_EQ(UTF8ToUnicode(""), L"");
    EXPECT_EQ(UnicodeToUTF8(L""), "");
}

TEST(Encoding, TextEndsAtItsFirstZeroCharacter)
{
    EXPECT_EQ(AnsiToUnicode(std::string("ab\0cd", 5)), L"ab");
    EXPECT_EQ(UnicodeToAnsi(std::wstring(L"ab\0cd", 5)), "ab");
    EXPECT_EQ(UTF8ToUnicode(std::string("\xE4\xB8\xAD\0cd", 6)), L"中");
    EXPECT_EQ(UnicodeToUTF8(std::wstring(L"中\0文", 3)), "\xE4\xB8\xAD");
    EXPECT_EQ(UTF8ToUnicode(std::string("\0cd", 3)), L"");
    EXPECT_EQ(AnsiToUnicode(std::string("\0\xD6\xD0", 3)), L"");
}

TEST(Encoding, ZeroBehindAnyLengthEndsTheText)
{
    for (std::size_t length = 0; length < 70; ++length) {
        const std::string narrow = std::string(length, 'x') + '\0' + "\xE4\xB8\xAD";
        const std::wstring wide = std::wstring(length, L'x') + L'\0' + L"中";
        EXPECT_EQ(AnsiToUnicode(narrow), std::wstring(length, L'x'));
        EXPECT_EQ(UTF8ToUnicode(narrow), std::wstring(length, L'x'));
        EXPECT_EQ(UnicodeToAnsi(wide), std::string(length, 'x'));
        EXPECT_EQ(UnicodeToUTF8(wide), std::string(length, 'x'));
    }
}

TEST(Encoding, EveryCodePointMakesTheRoundTripThroughUtf8)
{
    for (char32_t code = 1; code < 0x110000; ++code) {
        if (code >= 0xD800 && code < 0xE000)
            continue;
        std::wstring text;
        if (code >= 0x10000)
            text = {static_cast<wchar_t>(0xD7C0 + (code >> 10)), static_cast<wchar_t>(0xDC00 + (code & 0x3FF))};
        else
            text = {static_cast<wchar_t>(code)};
        const std::string utf8 = UnicodeToUTF8(text);
        ASSERT_EQ(utf8, SystemNarrow(CP_UTF8, text)) << code;
        ASSERT_EQ(UTF8ToUnicode(utf8), text) << code;
    }
}

TEST(Encoding, EveryUtf16UnitGoesToTheCodePageAsTheSystemConvertsIt)
{
    for (unsigned unit = 1; unit < 0x10000; ++unit)
        ExpectSystemResults(std::wstring(1, static_cast<wchar_t>(unit)));
}

TEST(Encoding, EveryPairOfBytesIsConvertedAsTheSystemConvertsIt)
{
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            const char pair[] = {static_cast<char>(first), static_cast<char>(second)};
            ExpectSystemResults(std::string(pair, 2));
            ExpectSystemResults("x" + std::string(pair, 2) + "yz");
        }
    }
}

TEST(Encoding, ByteOrderMarkStays)
{
    EXPECT_EQ(UTF8ToUnicode("\xEF\xBB\xBFx"), L"\xFEFFx");
    EXPECT_EQ(UnicodeToUTF8(L"\xFEFFx"), "\xEF\xBB\xBFx");
}

TEST(Encoding, InvalidUtf8GivesReplacementCharacters)
{
    const char* const texts[] = {
        "\x80",                     // a trail byte alone
        "\xBF\xBF",                 //
        "\xC0\x80",                 // overlong forms
        "\xC1\xBF",                 //
        "\xE0\x9F\xBF",             //
        "\xF0\x8F\xBF\xBF",         //
        "\xED\xA0\x80",             // a surrogate
        "\xED\xA0\x80\xED\xB0\x80", // a pair of them
        "\xF4\x90\x80\x80",         // above U+10FFFF
        "\xF8\x88\x80\x80\x80",     // five bytes
        "\xFE",                     //
        "\xFF\xFF",                 //
        "\xC3",                     // cut short
        "\xE4\xB8",                 //
        "\xF0\x9F\x98",             //
        "\xE4\xB8x",                //
        "\xE4\xE4\xB8\xAD",         //
    };
    for (const char* const text : texts) {
        EXPECT_NE(UTF8ToUnicode(text).find(L'\xFFFD'), std::wstring::npos) << testing::PrintToString(text);
        // At every place of a text that spans several blocks.
        for (std::size_t before = 0; before < 100; ++before) {
            for (const std::wstring& start :
                 {std::wstring(before, L'a'), Repeated(L"中", before), Repeated(L"中文 a", before)}) {
                ExpectSystemResults(UnicodeToUTF8(start) + text);
                ExpectSystemResults(UnicodeToUTF8(start) + text + "\xE4\xB8\xAD and more that is plain");
                ExpectSystemResults(UnicodeToUTF8(start + L"b") + text + UnicodeToUTF8(start + L"tail"));
            }
        }
    }
}

TEST(Encoding, LoneSurrogatesGiveReplacementCharacters)
{
    EXPECT_EQ(UnicodeToUTF8(L"\xD83D"), "\xEF\xBF\xBD");
    EXPECT_EQ(UnicodeToUTF8(L"a\xDE00z"), "a\xEF\xBF\xBDz");
    for (std::size_t before = 0; before < 100; ++before) {
        for (const wchar_t kind : {L'a', L'中'}) {
            const std::wstring start(before, kind);
            for (const wchar_t* const lone : {L"\xD83D", L"\xDE00"})
                ExpectSystemResults(start + lone);
            for (const wchar_t* const among : {L"\xDE00\xD83D", L"\xD83D\xD83D\xDE00", L"\xD83D\xDE00\xDE00"})
                ExpectSystemResults((start + among).append(L" tail").append(start));
        }
    }
}

TEST(Encoding, BytePairCutAtTheEndIsConvertedAsTheSystemConvertsIt)
{
    for (std::size_t before = 0; before < 40; ++before) {
        ExpectSystemResults(std::string(before, 'a') + "\xD6");
        ExpectSystemResults(std::string(before, 'a') + "\xD6\xD0\xD6");
    }
}

// A high byte is a character by itself in one code page, half of one in another, and both or neither in some.
TEST(Encoding, LongRunsOfEveryHighByteAreConvertedAsTheSystemConvertsThem)
{
    for (int high = 0x80; high <= 0xFF; ++high) {
        for (const std::size_t length : {1000U, 2048U, 2049U, 5001U}) {
            std::string text(length, static_cast<char>(high));
            ExpectSystemResults(text);
            text[length / 2] = 'k';
            ExpectSystemResults(text);
        }
    }
}

TEST(Encoding, OneForeignCharacterAtEveryPlaceOfEveryLengthUpToABlockAndMore)
{
    const std::wstring foreign[] = {L"k",      L"\x80",         L"é",     L"中", L"\x8000", L"\xFF41",
                                    L"\xFFFF", L"\xD83D\xDE00", L"\xD83D"};
    for (std::size_t length = 1; length <= 132; length += length < 50 ? 1 : 7) {
        for (const wchar_t fill : {L'k', L'中'}) {
            for (std::size_t place = 0; place < length; ++place) {
                for (const std::wstring& units : foreign) {
                    std::wstring text(length, fill);
                    text.replace(place, 1, units);
                    ExpectSystemResults(text);
                    ExpectSystemResults(UnicodeToUTF8(text));
                }
            }
        }
    }
}

TEST(Encoding, RunsOfEveryLengthTakeTurns)
{
    for (std::size_t ascii = 0; ascii < 70; ascii += ascii < 20 ? 1 : 5) {
        for (std::size_t chinese = 0; chinese < 70; chinese += chinese < 20 ? 1 : 5) {
            const std::wstring pattern = std::wstring(ascii, L'k') + std::wstring(chinese, L'中') + L'x';
            for (const std::size_t length : {150U, 167U, 181U}) {
                const std::wstring text = Repeated(pattern, length);
                ExpectSystemResults(text);
                ExpectSystemResults(UnicodeToUTF8(text));
                ExpectSystemResults(UnicodeToAnsi(text));
            }
        }
    }
}

TEST(Encoding, EveryLengthIsConvertedWhole)
{
    for (const wchar_t* const pattern : {L"k", L"é", L"中", L"\xD83D\xDE00", L"模型 gear_17, 零件 é\xD83D\xDE00; "}) {
        for (std::size_t length = 0; length <= 300; ++length) {
            const std::wstring text = Repeated(pattern, length);
            ExpectSystemResults(text);
            ExpectSystemResults(UnicodeToUTF8(text));
            ExpectSystemResults(UnicodeToAnsi(text));
        }
    }
}

TEST(Encoding, ZeroAtEveryPlaceEndsTheText)
{
    const std::wstring text = Repeated(L"模型 gear_17, 零件已打开 é\xD83D\xDE00; ", 200);
    const std::string utf8 = UnicodeToUTF8(text);
    const std::string ansi = UnicodeToAnsi(text);
    // What lies behind the zero could not be converted.
    for (std::size_t place = 0; place < text.size(); ++place)
        ExpectSystemResults(text.substr(0, place) + L'\0' + L"\xDE00" + text);
    for (std::size_t place = 0; place < utf8.size(); ++place)
        ExpectSystemResults(utf8.substr(0, place) + '\0' + "\xFF" + utf8);
    for (std::size_t place = 0; place < ansi.size(); ++place)
        ExpectSystemResults(ansi.substr(0, place) + '\0' + "\xFF" + ansi);
    // Nor is it counted, where the text takes more than one piece.
    const std::wstring longText = Repeated(text, 3000);
    EXPECT_EQ(UnicodeToUTF8(longText + L'\0' + longText), UnicodeToUTF8(longText));
    EXPECT_EQ(UTF8ToUnicode(UnicodeToUTF8(longText) + '\0' + utf8), longText);
}

TEST(Encoding, LengthsAroundTheInnerBufferAreConvertedWhole)
{
    for (std::size_t length = 1000; length < 1050; ++length) {
        for (const wchar_t c : {L'a', L'é', L'中'}) {
            const std::wstring text(length, c);
            ExpectSystemResults(text);
            ExpectSystemResults(UnicodeToUTF8(text));
            ExpectSystemResults(UnicodeToAnsi(text));
        }
        std::wstring pairs;
        while (pairs.size() < length)
            pairs += L"\xD83D\xDE00";
        ExpectSystemResults(pairs);
        ExpectSystemResults(L'a' + pairs);
        ExpectSystemResults(UnicodeToUTF8(L"a" + pairs));
    }
}

TEST(Encoding, WellFormedRandomTextsAreConvertedAsTheSystemConvertsThem)
{
    Random random(1);
    for (int round = 0; round < 12000; ++round) {
        const std::wstring text = random.WellFormed(random.Below(101));
        ExpectSystemResults(text);
        const std::string utf8 = UnicodeToUTF8(text);
        ExpectSystemResults(utf8);
        ASSERT_EQ(UTF8ToUnicode(utf8), text);
        ExpectSystemResults(UnicodeToAnsi(text));
    }
}

TEST(Encoding, DamagedRandomTextsAreConvertedAsTheSystemConvertsThem)
{
    Random random(2);
    for (int round = 0; round < 12000; ++round) {
        std::wstring wide = random.WellFormed(random.Below(101));
        std::string utf8 = UnicodeToUTF8(wide);
        for (unsigned damages = 1 + random.Below(3); damages > 0 && !wide.empty(); --damages) {
            wide[random.Below(static_cast<unsigned>(wide.size()))] =
                static_cast<wchar_t>(random.Below(4) == 0 ? random.Below(0x10000) : 0xD800 + random.Below(0x800));
            utf8[random.Below(static_cast<unsigned>(utf8.size()))] = static_cast<char>(random.Below(256));
        }
        ExpectSystemResults(wide);
        ExpectSystemResults(utf8);
    }
}

TEST(Encoding, RandomUnitsAreConvertedAsTheSystemConvertsThem)
{
    Random random(3);
    for (int round = 0; round < 6000; ++round) {
        std::string bytes(random.Length(), '\0');
        for (char& c : bytes)
            c = static_cast<char>(random.Below(256));
        ExpectSystemResults(bytes);
        std::wstring units(random.Length(), L'\0');
        for (wchar_t& unit : units)
            unit = static_cast<wchar_t>(random.Below(0x10000));
        ExpectSystemResults(units);
    }
}

TEST(Encoding, LongTextsAreConvertedWhole)
{
    std::wstring text;
    while (text.size() < 4 << 20)
        text += L"模型 gear-17, 零件 é\xD83D\xDE00; ";
    const std::string utf8 = UnicodeToUTF8(text);
    EXPECT_TRUE(utf8 == SystemNarrow(CP_UTF8, text));
    EXPECT_TRUE(UTF8ToUnicode(utf8) == text);
    const std::string ansi = UnicodeToAnsi(text);
    EXPECT_TRUE(ansi == SystemNarrow(CP_ACP, text));
    EXPECT_TRUE(AnsiToUnicode(ansi) == SystemWide(CP_ACP, ansi));
}

TEST(Encoding, LongTextsAreConvertedWholeWhereTheCodePageIsNotKnown)
{
    std::string text;
    while (text.size() < 5000)
        text += "\xD6\xD0 plate \x80";
    const test::FailingCall<decltype(::GetCPInfo)> failing("GetCPInfo", FALSE);
    EXPECT_EQ(AnsiToUnicode(text), SystemWide(CP_ACP, text));
}

TEST(Encoding, TextThatTheSystemRefusesGivesAnEmptyResult)
{
    for (const std::size_t length : {1U, 5000U}) {
        {
            const test::FailingCall<decltype(::MultiByteToWideChar)> failing("MultiByteToWideChar", 0);
            EXPECT_EQ(AnsiToUnicode(std::string(length, '\xD6')), L"");
            EXPECT_EQ(UTF8ToUnicode(std::string(length, '\xD6')), L"");
        }
        const test::FailingCall<decltype(::WideCharToMultiByte)> failing("WideCharToMultiByte", 0);
        EXPECT_EQ(UnicodeToAnsi(std::wstring(length, L'中')), "");
        EXPECT_EQ(UnicodeToUTF8(std::wstring(length, L'\xD800')), "");
    }
}

TEST(Encoding, ManyThreadsConvertAtOnce)
{
    std::vector<int> wrong(8);
    test::InThreads(wrong.size(), [&wrong](std::size_t thread) {
        Random random(static_cast<unsigned>(10 + thread));
        for (int round = 0; round < 300; ++round) {
            const std::wstring text = random.WellFormed(50);
            if (UTF8ToUnicode(UnicodeToUTF8(text)) != text || UnicodeToAnsi(text) != SystemNarrow(CP_ACP, text))
                ++wrong[thread];
        }
    });
    EXPECT_EQ(wrong, std::vector<int>(8));
}

TEST_F(UnderCodePage936, ChineseCharacterMakesTheRoundTripThroughAnsi)
{
    EXPECT_EQ(UnicodeToAnsi(L"中"), "\xD6\xD0");
    EXPECT_EQ(AnsiToUnicode("\xD6\xD0"), L"中");
}

TEST_F(UnderCodePage1252, WhatTheCodePageLacksBecomesTheDefaultCharacter)
{
    EXPECT_EQ(UnicodeToAnsi(L"a中b"), "a?b");
    EXPECT_EQ(AnsiToUnicode("\xD6\xD0\x80"), L"\x00D6\x00D0\x20AC");
}

TEST_F(UnderUtf8, EveryCharacterMakesTheRoundTripThroughAnsi)
{
    const std::wstring text = L"a\x00E9中\xD83D\xDE00";
    EXPECT_EQ(UnicodeToAnsi(text), "a\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80");
    EXPECT_EQ(AnsiToUnicode(UnicodeToAnsi(text)), text);
    EXPECT_EQ(AnsiToUnicode("\xD6\xD0"), L"\xFFFD\xFFFD") << "the bytes of code page 936";
    EXPECT_EQ(UnicodeToAnsi(L"\xD83D"), "\xEF\xBF\xBD");
}

TEST(EncodingAlias, ConvertUtf8ToGBKGivesUtf16)
{
    EXPECT_EQ(ConvertUtf8ToGBK("\xE4\xB8\xAD"), L"中");
}

TEST(EncodingAlias, ConvertGBKToUtf8TakesUtf16)
{
    EXPECT_EQ(ConvertGBKToUtf8(L"中"), "\xE4\xB8\xAD");
}

TEST(EncodingAlias, ConvertTStringToStringGivesAnsi)
{
    for (const wchar_t* const text : {L"", L"abc", L"中文", L"é"})
        EXPECT_EQ(ConvertTStringToString(text), SystemNarrow(CP_ACP, text));
}

TEST(EncodingAlias, ConvertGBKToAnsiGivesUtf8AndNeverAnsi)
{
    EXPECT_EQ(ConvertGBKToAnsi(L"中"), "\xE4\xB8\xAD");
    EXPECT_EQ(ConvertGBKToAnsi(L"中"), UnicodeToUTF8(L"中"));
}

TEST(EncodingAlias, ConvertGBKToUnicodeAndConvertUnicodeToGBKReturnTheirArgument)
{
    for (const std::wstring& text : {std::wstring(), std::wstring(L"中文 abc"), std::wstring(L"a\0b\0", 4),
                                     std::wstring(L"\xD83D"), std::wstring(L"\xDE00\xFFFF")}) {
        EXPECT_EQ(ConvertGBKToUnicode(text), text);
        EXPECT_EQ(ConvertUnicodeToGBK(text), text);
    }
}

TEST(EncodingAlias, ConvertUnicodeToGBKIsTheSameFunctionAsConvertGBKToUnicode)
{
    // Compilers may take functions of two names for two without looking.
    using Function = std::wstring(const std::wstring&);
    Function* const volatile second = &ConvertUnicodeToGBK;
    Function* const volatile first = &ConvertGBKToUnicode;
    EXPECT_EQ(second, first);
}

TEST(EncodingAlias, ConvertAnsiToGBKGivesUtf16)
{
    for (const char* const text : {"", "abc", "\xD6\xD0"})
        EXPECT_EQ(ConvertAnsiToGBK(text), SystemWide(CP_ACP, text));
}

namespace
{

int g_systemCalls = 0;
int WINAPI CountedToWide(UINT, DWORD, const char*, int, wchar_t*, int)
{
    return ++g_systemCalls;
}
int WINAPI CountedToNarrow(UINT, DWORD, const wchar_t*, int, char*, int, const char*, BOOL*)
{
    return ++g_systemCalls;
}

} // namespace

TEST(Encoding, WellFormedTextTakesNoSystemCall)
{
    const test::ImportPatch toWide("MultiByteToWideChar", &CountedToWide);
    const test::ImportPatch toNarrow("WideCharToMultiByte", &CountedToNarrow);
    for (const wchar_t* const pattern : {L"k", L"é", L"中", L"\xD83D\xDE00", L"中文 gear", L"模型 gear_17, 零件 é"}) {
        for (std::size_t length = 0; length <= 3000; length += length < 300 ? 2 : 100) {
            const std::wstring text = Repeated(pattern, length);
            EXPECT_EQ(UTF8ToUnicode(UnicodeToUTF8(text)), text);
        }
    }
    EXPECT_EQ(AnsiToUnicode(UnicodeToAnsi(std::wstring(3000, L'k'))), std::wstring(3000, L'k'));
    EXPECT_EQ(g_systemCalls, 0);
}

namespace
{

// Whose import of malloc brings the memory of C++: with GCC the runtime's, with Visual Studio that of each module, which
// are the library and this program.
#if defined(_MSC_VER)
constexpr const wchar_t* kLibrarysMalloc = L"Kelpkit.dll";
constexpr const wchar_t* kProgramsMalloc = nullptr;
#else
constexpr const wchar_t* kLibrarysMalloc = L"libstdc++-6.dll";
constexpr const wchar_t* kProgramsMalloc = L"libstdc++-6.dll";
#endif

int g_allocations = 0;
void* CountedMalloc(std::size_t size)
{
    ++g_allocations;
    return std::malloc(size);
}

// Strings may ask for more than they need; they get what they need.
const test::GuardedBuffer* g_guarded = nullptr;
std::size_t g_needed = 0;
void* GuardedMalloc(std::size_t)
{
    return g_guarded->Last(g_needed);
}

// A copy of the text, the terminator of which is the last thing before memory that nobody may touch. It must be too
// long for the string object itself.
template <class Text>
struct AtPageEnd {
    AtPageEnd(const Text& from, const test::GuardedBuffer& memory)
    {
        g_guarded = &memory;
        g_needed = (from.size() + 1) * sizeof *from.data();
        const test::ImportPatch patch(kProgramsMalloc, "malloc", &GuardedMalloc);
        new (&text) Text(from.data(), from.size());
    }
    AtPageEnd(const AtPageEnd&) = delete;
    AtPageEnd& operator=(const AtPageEnd&) = delete;
    ~AtPageEnd() { static_cast<void>(text); } // lives on: its memory goes with the guarded buffer

    union {
        Text text;
    };
};

} // namespace

TEST(Encoding, NothingBehindTheTerminatorIsRead)
{
    const test::GuardedBuffer memory(4096);
    for (const wchar_t* const pattern :
         {L"k", L"é", L"中", L"\xD83D\xDE00", L"\xD83D", L"中文 gear", L"模型 gear_17, 零件 "}) {
        for (std::size_t length = 16; length <= 300; ++length) {
            const std::wstring text = Repeated(pattern, length);
            const AtPageEnd wide(text, memory);
            ASSERT_EQ(reinterpret_cast<const char*>(wide.text.c_str() + length + 1), memory.Last(0));
            EXPECT_EQ(UnicodeToUTF8(wide.text), SystemNarrow(CP_UTF8, text));
            EXPECT_EQ(UnicodeToAnsi(wide.text), SystemNarrow(CP_ACP, text));
            for (const std::string& bytes : {UnicodeToUTF8(text), UnicodeToAnsi(text)}) {
                const AtPageEnd narrow(bytes, memory);
                ASSERT_EQ(narrow.text.c_str() + bytes.size() + 1, memory.Last(0));
                EXPECT_EQ(UTF8ToUnicode(narrow.text), SystemWide(CP_UTF8, bytes));
                EXPECT_EQ(AnsiToUnicode(narrow.text), SystemWide(CP_ACP, bytes));
                // Cut in the middle of a character, too.
                const std::string cut = bytes.substr(0, bytes.size() - 1);
                if (cut.size() > 15) {
                    const AtPageEnd cutNarrow(cut, memory);
                    EXPECT_EQ(UTF8ToUnicode(cutNarrow.text), SystemWide(CP_UTF8, cut));
                }
            }
        }
    }
}

TEST(Encoding, ShortTextsTakeAtMostOneAllocationBesideTheResult)
{
    const test::ImportPatch patch(kLibrarysMalloc, "malloc", &CountedMalloc);
    for (std::size_t length = 0; length < 256; ++length) {
        for (const wchar_t c : {L'a', L'é', L'中', L'\xD83D'}) {
            const std::wstring wide(length, c);
            const std::string utf8 = UnicodeToUTF8(wide).substr(0, 255);
            const std::string ansi = UnicodeToAnsi(wide).substr(0, 255);
            g_allocations = 0;
            (void)UnicodeToUTF8(wide);
            EXPECT_LE(g_allocations, 2);
            g_allocations = 0;
            (void)UnicodeToAnsi(wide);
            EXPECT_LE(g_allocations, 2);
            g_allocations = 0;
            (void)UTF8ToUnicode(utf8);
            EXPECT_LE(g_allocations, 2);
            g_allocations = 0;
            (void)AnsiToUnicode(ansi);
            EXPECT_LE(g_allocations, 2);
        }
    }
}
