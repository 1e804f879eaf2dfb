#include "Markup.h"

#include "support/GuardedBuffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

using namespace std::string_view_literals;
using namespace xmlparser;

namespace
{

std::wstring Character(char32_t c)
{
    if (c < 0x10000)
        return std::wstring(1, static_cast<wchar_t>(c));
    return {static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10)), static_cast<wchar_t>(0xDC00 + (c & 0x3FF))};
}

// A copy of a text directly before memory that nobody may touch.
class LastText
{
public:
    explicit LastText(std::wstring_view text)
        : m_buffer(text.size() * sizeof(wchar_t) + 1),
          m_units(reinterpret_cast<wchar_t*>(m_buffer.Last(text.size() * sizeof(wchar_t)))), m_length(text.size())
    {
        std::memcpy(m_units, text.data(), text.size() * sizeof(wchar_t));
    }

    wchar_t* Units() const { return m_units; }
    std::wstring_view View() const { return {m_units, m_length}; }

private:
    test::GuardedBuffer m_buffer;
    wchar_t* m_units;
    std::size_t m_length;
};

bool HoldEverything(std::wstring_view /*unused*/)
{
    return true;
}

bool HoldAsciiOnly(std::wstring_view /*unused*/)
{
    return false;
}

std::wstring Unescaped(std::wstring_view text, bool isCData = false)
{
    const LastText last(text);
    const std::size_t length = Unescape(last.Units(), text.size(), isCData);
    EXPECT_LE(length, text.size());
    return {last.Units(), length};
}

} // namespace

TEST(IsName, KnowsEveryCharacter)
{
    struct Range {
        char32_t first;
        char32_t last;
        bool mayStart;
    };
    const Range ranges[] = {{'-', '.', false},      {'0', '9', false},      {':', ':', true},
                            {'A', 'Z', true},       {'_', '_', true},       {'a', 'z', true},
                            {0xB7, 0xB7, false},    {0xC0, 0xD6, true},     {0xD8, 0xF6, true},
                            {0xF8, 0x2FF, true},    {0x300, 0x36F, false},  {0x370, 0x37D, true},
                            {0x37F, 0x1FFF, true},  {0x200C, 0x200D, true}, {0x203F, 0x2040, false},
                            {0x2070, 0x218F, true}, {0x2C00, 0x2FEF, true}, {0x3001, 0xD7FF, true},
                            {0xF900, 0xFDCF, true}, {0xFDF0, 0xFFFD, true}, {0x10000, 0xEFFFF, true}};
    for (char32_t c = 0; c <= 0x10FFFF; ++c) {
        const Range* const range = std::find_if(std::begin(ranges), std::end(ranges),
                                                [c](const Range& each) { return c >= each.first && c <= each.last; });
        const bool isKnown = range != std::end(ranges);
        ASSERT_EQ(IsName(Character(c)), isKnown && range->mayStart) << static_cast<unsigned>(c);
        ASSERT_EQ(IsName(L"a" + Character(c)), isKnown) << static_cast<unsigned>(c);
    }
}

TEST(IsName, NeedsACharacterAndWholePairs)
{
    EXPECT_FALSE(IsName(L""));
    EXPECT_FALSE(IsName(L"\xD840"));
    EXPECT_FALSE(IsName(L"\xDC00"));
    EXPECT_FALSE(IsName(L"a\xD840"));
    EXPECT_FALSE(IsName(L"\xD840\xD840\xDC00"));
    EXPECT_FALSE(IsName(L"\xDC00\xD840"));
    EXPECT_FALSE(IsName(L"a\0"sv));
    EXPECT_FALSE(IsName(L"\0a"sv));
}

TEST(IsName, ReadsNothingBehindTheText)
{
    EXPECT_TRUE(IsName(LastText(L"ab").View()));
    EXPECT_FALSE(IsName(LastText(L"a\xD840").View()));
}

TEST(WhiteSpace, IsBlankTabAndLineEndsOnly)
{
    for (const char* const text : {" ", "\t", "\r", "\n", " \t\r\n \n"})
        EXPECT_TRUE(IsAllWhiteSpace(text)) << text;
    for (const char* const text : {"", "x", " x", "x ", "\v", "\f", "\xA0", " \xC2\xA0", "&#32;"})
        EXPECT_FALSE(IsAllWhiteSpace(text)) << text;
}

TEST(WhiteSpace, IndentsWithALineEnd)
{
    for (const char* const text : {"\n", "\r", "\r\n", "  \n", "\n\t", " \r "})
        EXPECT_TRUE(IsIndentingWhiteSpace(text)) << text;
    for (const char* const text : {"", " ", "\t ", "\nx", "x\n", "\n\xA0"})
        EXPECT_FALSE(IsIndentingWhiteSpace(text)) << text;
}

TEST(Escape, MakesEntitiesOfWhatMarkupIsMadeOf)
{
    EXPECT_EQ(Escape(L"a<b>&c;\"'", HoldEverything), L"a&lt;b&gt;&amp;c;\"'");
    EXPECT_EQ(Escape(L"&lt;]]>", HoldEverything), L"&amp;lt;]]&gt;");
    EXPECT_EQ(Escape(L"", HoldEverything), L"");
}

TEST(Escape, MakesReferencesOfWhatXmlHasNoCharacterFor)
{
    EXPECT_EQ(Escape(L"a\0b"sv, HoldEverything), L"a&#x0;b");
    EXPECT_EQ(Escape(L"\x1\x8\xB\xC\xE\x1F", HoldEverything), L"&#x1;&#x8;&#xB;&#xC;&#xE;&#x1F;");
    EXPECT_EQ(Escape(L"\t\n \x7F", HoldEverything), L"\t\n \x7F");
    EXPECT_EQ(Escape(L"\r\n", HoldEverything), L"&#xD;\n");
    EXPECT_EQ(Escape(L"\xFFFD\xFFFE\xFFFF", HoldEverything), L"\xFFFD&#xFFFE;&#xFFFF;");
    EXPECT_EQ(Escape(L"\xD7FF\xD800\xE000", HoldEverything), L"\xD7FF&#xD800;\xE000");
    EXPECT_EQ(Escape(L"\xD7FF\xDFFE", HoldEverything), L"\xD7FF&#xDFFE;");
    EXPECT_EQ(Escape(L"\xDFFF\xDBFF", HoldEverything), L"&#xDFFF;&#xDBFF;");
    EXPECT_EQ(Escape(L"\xDC00\xDC00", HoldEverything), L"&#xDC00;&#xDC00;");
    EXPECT_EQ(Escape(L"\xDBFF\xDBFF", HoldEverything), L"&#xDBFF;&#xDBFF;");
    EXPECT_EQ(Escape(L"\xD83D\xD83D\xDE00", HoldEverything), L"&#xD83D;\xD83D\xDE00");
}

TEST(Escape, MakesReferencesOfWhatTheEncodingRefuses)
{
    EXPECT_EQ(Escape(L"\x7Fé中\xD83D\xDE00\xDBFF\xDFFF", HoldAsciiOnly), L"\x7F&#xE9;&#x4E2D;&#x1F600;&#x10FFFF;");
}

TEST(Escape, AsksForWholeCharactersBeyondAsciiOnly)
{
    std::vector<std::wstring> asked;
    Escape(L"a\x7F<\x80\xD83D\xDE00\xD800\0"sv, [&](std::wstring_view character) {
        asked.emplace_back(character);
        return true;
    });
    EXPECT_EQ(asked, (std::vector<std::wstring>{L"\x80", L"\xD83D\xDE00"}));
}

TEST(Escape, ReadsNothingBehindTheText)
{
    EXPECT_EQ(Escape(LastText(L"a\xD83D").View(), HoldEverything), L"a&#xD83D;");
}

TEST(Unescape, ResolvesEntitiesAndCharacterReferences)
{
    EXPECT_EQ(Unescaped(L"&lt;&gt;&amp;&quot;&apos;"), L"<>&\"'");
    EXPECT_EQ(Unescaped(L"&#65;&#x41;&#x4e2D;&#x0000041;&#9;&#13;"), L"AA中A\t\r");
    EXPECT_EQ(Unescaped(L"x&#xFFFF;y&#x10000;z&#x10FFFF;"), L"x\xFFFFy\xD800\xDC00z\xDBFF\xDFFF");
    EXPECT_EQ(Unescaped(L"&#xD83D;&#xDE00;"), L"\xD83D\xDE00");
    EXPECT_EQ(Unescaped(L"a&#0;b"), L"a\0b"sv);
    EXPECT_EQ(Unescaped(L"&amp;lt;"), L"&lt;");
}

TEST(Unescape, LeavesWhatIsNoReference)
{
    for (const std::wstring_view text :
         {L"&"sv,       L"&&"sv,         L"&;"sv,         L"&lt"sv,           L"&l t;"sv,         L"&LT;"sv,
          L"&nbsp;"sv,  L"&#"sv,         L"&#;"sv,        L"&#x"sv,           L"&#x;"sv,          L"&#X41;"sv,
          L"&#6A;"sv,   L"&#xG;"sv,      L"&# 65;"sv,     L"&#+65;"sv,        L"&#-1;"sv,         L"&#65"sv,
          L"&#x41"sv,   L"&#1114112;"sv, L"&#x110000;"sv, L"&#4294967361;"sv, L"&#x100000041;"sv, L"&l\0t;"sv,
          L"&#65\0;"sv, L"&#\xFF16;"sv})
        EXPECT_EQ(Unescaped(text), text);
}

TEST(Unescape, MakesEachLineEndALineFeed)
{
    EXPECT_EQ(Unescaped(L"a\r\nb\rc\nd\r\r\n\r"), L"a\nb\nc\nd\n\n\n");
    EXPECT_EQ(Unescaped(L"\r&#10;\r&#xD;\n"), L"\n\n\n\r\n");
}

TEST(Unescape, ResolvesNothingInCData)
{
    EXPECT_EQ(Unescaped(L"&lt;&#65;", true), L"&lt;&#65;");
    EXPECT_EQ(Unescaped(L"&lt;\r\n&#65;\r&", true), L"&lt;\n&#65;\n&");
}

TEST(Unescape, TakesZerosForCharacters)
{
    EXPECT_EQ(Unescaped(L"a\0b&lt;\0\r\0"sv), L"a\0b<\0\n\0"sv);
    EXPECT_EQ(Unescaped(L""), L"");
}

TEST(Unescape, IsTheReverseOfEscape)
{
    std::wstring text;
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit)
        text += static_cast<wchar_t>(unit);
    for (const auto& canHold : {HoldEverything, HoldAsciiOnly})
        EXPECT_TRUE(Unescaped(Escape(text, canHold)) == text);
}
