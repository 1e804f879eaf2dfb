#include "support/CodePage.h"
#include "support/PageTouches.h"
#include "text/StringsModel.h"

#include <Kelpkit/Text.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cwchar>
#include <random>
#include <string>
#include <vector>

using namespace KELPKIT;
using test::PageTouches;
using test::SlowlyReplaced;
using test::SlowlySplitBySize;
using test::UnderCodePage1252;
using test::UnderCodePage936;
using test::UnderUtf8;

using Pieces = std::vector<std::wstring>;

namespace
{

std::wstring Trimmed(std::wstring& (*trim)(std::wstring&, wchar_t), std::wstring text, wchar_t c)
{
    EXPECT_EQ(&trim(text, c), &text);
    return text;
}

template <class Text>
Text Replaced(Text text, const Text& pattern, const Text& replacement)
{
    StringReplace(text, pattern, replacement);
    return text;
}

Pieces Split(const std::wstring& source, const std::wstring& delimiters)
{
    Pieces pieces = {L"what was there before"};
    StringMulitSplit(source, delimiters, pieces);
    return pieces;
}

// The C library's tokens.
Pieces Tokens(std::wstring source, const std::wstring& delimiters)
{
    Pieces tokens;
    wchar_t* state = nullptr;
    for (wchar_t* token = ::wcstok_s(source.data(), delimiters.c_str(), &state); token != nullptr;
         token = ::wcstok_s(nullptr, delimiters.c_str(), &state))
        tokens.emplace_back(token);
    return tokens;
}

Pieces SplitBySize(const std::wstring& source, int width)
{
    Pieces pieces;
    StringSplitBySize(source, width, pieces);
    return pieces;
}

template <class Text>
Text RandomText(std::mt19937& random, std::size_t longest, const Text& alphabet)
{
    Text text(random() % (longest + 1), typename Text::value_type());
    for (auto& c : text)
        c = alphabet[random() % alphabet.size()];
    return text;
}

} // namespace

TEST(StringTrim, RemovesTheCharacterAtBothEnds)
{
    EXPECT_EQ(Trimmed(StringTrim, L"xxabcxx", L'x'), L"abc");
    EXPECT_EQ(Trimmed(StringTrim, L"xaxbx", L'x'), L"axb");
}

TEST(StringTrim, MakesATextOfNothingElseEmpty)
{
    EXPECT_EQ(Trimmed(StringTrim, L"xxxx", L'x'), L"");
    EXPECT_EQ(Trimmed(StringLtrim, L"xxxx", L'x'), L"");
    EXPECT_EQ(Trimmed(StringRtrim, L"xxxx", L'x'), L"");
}

TEST(StringTrim, LeavesWhiteSpaceThatIsNotTheCharacter)
{
    EXPECT_EQ(Trimmed(StringTrim, L"  abc", L'x'), L"  abc");
    EXPECT_EQ(Trimmed(StringTrim, L" \tabc ", L' '), L"\tabc");
}

TEST(StringTrim, LeavesAnEmptyTextEmpty)
{
    EXPECT_EQ(Trimmed(StringTrim, L"", L'x'), L"");
    EXPECT_EQ(Trimmed(StringLtrim, L"", L'x'), L"");
    EXPECT_EQ(Trimmed(StringRtrim, L"", L'x'), L"");
}

TEST(StringTrim, TakesZerosAndForeignCharactersLikeOthers)
{
    EXPECT_EQ(Trimmed(StringTrim, std::wstring(L"\0a\0b\0", 5), L'\0'), std::wstring(L"a\0b", 3));
    EXPECT_EQ(Trimmed(StringTrim, L"中文中", L'中'), L"文");
}

TEST(StringLtrim, RemovesTheCharacterAtTheStartOnly)
{
    EXPECT_EQ(Trimmed(StringLtrim, L"xxabcxx", L'x'), L"abcxx");
}

TEST(StringRtrim, RemovesTheCharacterAtTheEndOnly)
{
    EXPECT_EQ(Trimmed(StringRtrim, L"xxabcxx", L'x'), L"xxabc");
}

TEST(StringReplace, DoesNotSearchWhatAReplacementBroughtIn)
{
    EXPECT_EQ(Replaced<std::wstring>(L"aaa", L"a", L"aa"), L"aaaaaa");
    EXPECT_EQ(Replaced<std::string>("aaa", "a", "aa"), "aaaaaa");
}

TEST(StringReplace, TakesHitsFromLeftToRight)
{
    EXPECT_EQ(Replaced<std::wstring>(L"aaa", L"aa", L"b"), L"ba");
    EXPECT_EQ(Replaced<std::string>("aaa", "aa", "b"), "ba");
}

TEST(StringReplace, LeavesATextWithoutHits)
{
    EXPECT_EQ(Replaced<std::wstring>(L"abc", L"x", L"yyy"), L"abc");
    EXPECT_EQ(Replaced<std::string>("", "x", "yyy"), "");
    EXPECT_EQ(Replaced<std::string>("ab", "abc", ""), "ab");
}

TEST(StringReplace, LeavesTheTextWhereThePatternIsEmpty)
{
    EXPECT_EQ(Replaced<std::wstring>(L"abc", L"", L"x"), L"abc");
    EXPECT_EQ(Replaced<std::string>("abc", "", "x"), "abc");
    EXPECT_EQ(Replaced<std::string>("", "", "x"), "");
}

TEST(StringReplace, RemovesWhereTheReplacementIsEmpty)
{
    EXPECT_EQ(Replaced<std::string>("abcabc", "b", ""), "acac");
    EXPECT_EQ(Replaced<std::wstring>(L"aaaa", L"a", L""), L"");
}

TEST(StringReplace, TakesZerosLikeOtherCharacters)
{
    EXPECT_EQ(Replaced<std::string>(std::string("a\0b\0", 4), std::string("\0", 1), "--"), "a--b--");
    EXPECT_EQ(Replaced<std::wstring>(L"a-b", L"-", std::wstring(L"\0\0", 2)), std::wstring(L"a\0\0b", 4));
}

TEST(StringReplace, AcceptsTheTextItselfAsPatternOrReplacement)
{
    std::string text = "ab";
    StringReplace(text, text, "xyz");
    EXPECT_EQ(text, "xyz");
    text = "abab";
    StringReplace(text, "b", text);
    EXPECT_EQ(text, "aababaabab");
    text = "ab";
    StringReplace(text, "ab", text);
    EXPECT_EQ(text, "ab");
    StringReplace(text, text, text);
    EXPECT_EQ(text, "ab");
    StringReplace(text, text, "");
    EXPECT_EQ(text, "");
}

TEST(StringReplace, AgreesWithOneHitAtATimeOnRandomTexts)
{
    std::mt19937 random(4);
    for (int round = 0; round < 20000; ++round) {
        const auto text = RandomText<std::string>(random, 60, "ab");
        const auto pattern = RandomText<std::string>(random, 4, "ab");
        const auto replacement = RandomText<std::string>(random, 6, "abc");
        ASSERT_EQ(Replaced(text, pattern, replacement), SlowlyReplaced(text, pattern, replacement))
            << text << " " << pattern << " " << replacement;
        const std::wstring wide(text.begin(), text.end());
        const std::wstring widePattern(pattern.begin(), pattern.end());
        const std::wstring wideReplacement(replacement.begin(), replacement.end());
        ASSERT_EQ(Replaced(wide, widePattern, wideReplacement), SlowlyReplaced(wide, widePattern, wideReplacement));
    }
}

TEST(StringReplace, AgreesWithOneHitAtATimeOnLongTexts)
{
    std::mt19937 random(5);
    for (int round = 0; round < 300; ++round) {
        const auto text = RandomText<std::wstring>(random, 5000, L"ab");
        const auto pattern = text.substr(text.size() / 3, 1 + random() % 30);
        const auto replacement = RandomText<std::wstring>(random, round % 10 == 0 ? 3000 : 40, L"abc");
        ASSERT_EQ(Replaced(text, pattern, replacement), SlowlyReplaced(text, pattern, replacement));
    }
}

TEST(StringReplace, HandlesAMillionHits)
{
    const std::wstring text(1000000, L'a');
    EXPECT_EQ(Replaced<std::wstring>(text, L"a", L"bcd").size(), 3000000U);
    EXPECT_EQ(Replaced<std::wstring>(text, L"aa", L"b"), std::wstring(500000, L'b'));
    EXPECT_EQ(Replaced<std::wstring>(text, L"a", L"b"), std::wstring(1000000, L'b'));
}

TEST(StringReplace, DoesWorkInProportionToTheText)
{
    constexpr std::size_t kSize = 100000;
    for (const wchar_t* const replacement : {L"", L"b", L"bcd"}) {
        const PageTouches touches;
        std::wstring text(kSize, L'a');
        StringReplace(text, L"a", replacement);
        EXPECT_EQ(text.size(), kSize * std::wcslen(replacement));
        const std::size_t pages = (kSize + text.size()) * sizeof(wchar_t) / 4096;
        EXPECT_LE(PageTouches::Count(), 10 * pages) << testing::PrintToString(std::wstring(replacement));
    }
}

TEST(StringMulitSplit, TakesEachDelimiterAndNoEmptyPiece)
{
    EXPECT_EQ(Split(L",a,,b;c,", L",;"), (Pieces{L"a", L"b", L"c"}));
}

TEST(StringMulitSplit, GivesNothingForAnEmptySourceOrOneOfDelimiters)
{
    EXPECT_EQ(Split(L"", L",;"), Pieces());
    EXPECT_EQ(Split(L",;,;", L",;"), Pieces());
    EXPECT_EQ(Split(L"", L""), Pieces());
}

TEST(StringMulitSplit, GivesTheWholeSourceWithoutDelimiters)
{
    EXPECT_EQ(Split(L"a,b", L""), (Pieces{L"a,b"}));
    EXPECT_EQ(Split(L"a,b", L";"), (Pieces{L"a,b"}));
}

TEST(StringMulitSplit, TakesForeignDelimiters)
{
    EXPECT_EQ(Split(L"零件、模型；图", L"、；"), (Pieces{L"零件", L"模型", L"图"}));
}

TEST(StringMulitSplit, EndsAtTheFirstZero)
{
    EXPECT_EQ(Split(std::wstring(L"a,b\0,c", 6), L","), (Pieces{L"a", L"b"}));
    EXPECT_EQ(Split(L"a,b;c", std::wstring(L",\0;", 3)), (Pieces{L"a", L"b;c"}));
}

TEST(StringMulitSplit, AcceptsAPieceOfTheListAsSource)
{
    Pieces pieces = {L"a,b"};
    StringMulitSplit(pieces[0], L",", pieces);
    EXPECT_EQ(pieces, (Pieces{L"a", L"b"}));
}

TEST(StringMulitSplit, AgreesWithTheCLibraryOnRandomTexts)
{
    std::mt19937 random(5);
    for (int round = 0; round < 20000; ++round) {
        const auto source = RandomText<std::wstring>(random, 40, L"ab,;中、\x80");
        const auto delimiters = RandomText<std::wstring>(random, 3, L",;、a\x80");
        ASSERT_EQ(Split(source, delimiters), Tokens(source, delimiters)) << testing::PrintToString(source);
    }
}

TEST(StringSplitLeftRight, SplitsAtTheFirstSeparator)
{
    std::wstring left;
    std::wstring right;
    EXPECT_TRUE(StringSplitLeftRight(L"key=val=x", L"=", left, right));
    EXPECT_EQ(left, L"key");
    EXPECT_EQ(right, L"val=x");
    std::string narrowLeft;
    std::string narrowRight;
    EXPECT_TRUE(StringSplitLeftRight("key::val::x", "::", narrowLeft, narrowRight));
    EXPECT_EQ(narrowLeft, "key");
    EXPECT_EQ(narrowRight, "val::x");
}

TEST(StringSplitLeftRight, LeavesBothOutputsWithoutTheSeparator)
{
    std::wstring left = L"l";
    std::wstring right = L"r";
    EXPECT_FALSE(StringSplitLeftRight(L"key", L"=", left, right));
    EXPECT_FALSE(StringSplitLeftRight(L"", L"=", left, right));
    EXPECT_EQ(left, L"l");
    EXPECT_EQ(right, L"r");
}

TEST(StringSplitLeftRight, FindsAnEmptySeparatorAtTheStart)
{
    std::string left = "l";
    std::string right;
    EXPECT_TRUE(StringSplitLeftRight("abc", "", left, right));
    EXPECT_EQ(left, "");
    EXPECT_EQ(right, "abc");
    EXPECT_TRUE(StringSplitLeftRight("", "", left, right));
    EXPECT_EQ(right, "");
}

TEST(StringSplitLeftRight, FindsASeparatorAtEitherEnd)
{
    std::string left;
    std::string right;
    EXPECT_TRUE(StringSplitLeftRight("=v", "=", left, right));
    EXPECT_EQ(left + "|" + right, "|v");
    EXPECT_TRUE(StringSplitLeftRight("k=", "=", left, right));
    EXPECT_EQ(left + "|" + right, "k|");
}

TEST(StringSplitLeftRight, AcceptsTheSourceAsOutput)
{
    std::string source = "key=val";
    std::string other;
    EXPECT_TRUE(StringSplitLeftRight(source, "=", source, other));
    EXPECT_EQ(source, "key");
    EXPECT_EQ(other, "val");
    source = "key=val";
    EXPECT_TRUE(StringSplitLeftRight(source, "=", other, source));
    EXPECT_EQ(source, "val");
    EXPECT_EQ(other, "key");
}

TEST(StringSplitBySize, CountsTwoSingleByteCharactersAsOneUnit)
{
    EXPECT_EQ(SplitBySize(L"abcde", 1), (Pieces{L"ab", L"cd", L"e"}));
    EXPECT_EQ(SplitBySize(L"abcde", 2), (Pieces{L"abcd", L"e"}));
}

TEST_F(UnderCodePage936, SplitBySizeCountsADoubleByteCharacterAsOneUnit)
{
    EXPECT_EQ(SplitBySize(L"零件模型", 2), (Pieces{L"零件", L"模型"}));
    EXPECT_EQ(SplitBySize(L"a零b件", 2), (Pieces{L"a零b", L"件"}));
}

TEST(StringSplitBySize, DropsALineEndBehindTheLastFullPiece)
{
    EXPECT_EQ(SplitBySize(L"abcd\n\r", 2), (Pieces{L"abcd"}));
    EXPECT_EQ(SplitBySize(L"\n\r", 2), Pieces());
}

TEST(StringSplitBySize, KeepsOtherRests)
{
    EXPECT_EQ(SplitBySize(L"abcd\r\n", 2), (Pieces{L"abcd", L"\r\n"}));
    EXPECT_EQ(SplitBySize(L"abcd\n", 2), (Pieces{L"abcd", L"\n"}));
    EXPECT_EQ(SplitBySize(L"abx\n\r", 2), (Pieces{L"abx\n", L"\r"}));
    EXPECT_EQ(SplitBySize(L"ab\n\r", 1), (Pieces{L"ab", L"\n\r"})) << "here it is a full piece";
}

TEST(StringSplitBySize, AppendsToWhatTheListHolds)
{
    Pieces pieces = {L"first"};
    StringSplitBySize(L"abc", 1, pieces);
    EXPECT_EQ(pieces, (Pieces{L"first", L"ab", L"c"}));
    StringSplitBySize(L"", 1, pieces);
    EXPECT_EQ(pieces.size(), 3U);
}

TEST(StringSplitBySize, MakesEveryCharacterAPieceAtWidthZeroOrLess)
{
    for (const int width : {0, -1, INT_MIN})
        EXPECT_EQ(SplitBySize(L"abc", width), (Pieces{L"a", L"b", L"c"}));
}

TEST_F(UnderCodePage936, SplitBySizeAtWidthZeroKeepsDoubleByteCharactersWhole)
{
    EXPECT_EQ(SplitBySize(L"零a件", 0), (Pieces{L"零", L"a", L"件"}));
}

TEST_F(UnderCodePage1252, SplitBySizeTakesEveryHighByteForTheFirstOfAPair)
{
    EXPECT_EQ(SplitBySize(L"éab", 1), (Pieces{L"éa", L"b"}));
    EXPECT_EQ(SplitBySize(L"abé", 1), (Pieces{L"ab", L"é"}));
}

TEST_F(UnderUtf8, SplitBySizeTakesEveryHighByteForTheFirstOfAPair)
{
    // Characters of two and of four bytes are one unit and two.
    EXPECT_EQ(SplitBySize(L"\x00E9\x00D6", 1), (Pieces{L"\x00E9", L"\x00D6"}));
    EXPECT_EQ(SplitBySize(L"\xD83D\xDE00x", 2), (Pieces{L"\xD83D\xDE00", L"x"}));
    // Those of three, which Chinese ones have, are cut: E9 9B, B6 E4, BB B6.
    EXPECT_EQ(SplitBySize(L"零件", 1), (Pieces{L"\xFFFD", L"\xFFFD\xFFFD", L"\xFFFD\xFFFD"}));
    EXPECT_EQ(SplitBySize(L"零件", 3), (Pieces{L"零件"}));
}

TEST(StringSplitBySize, TakesAWidthBeyondTheText)
{
    EXPECT_EQ(SplitBySize(L"abc", INT_MAX), (Pieces{L"abc"}));
}

TEST(StringSplitBySize, AgreesWithTheRuleOnRandomTexts)
{
    std::mt19937 random(6);
    for (int round = 0; round < 20000; ++round) {
        const auto source = RandomText<std::wstring>(random, 40, L"ab\n\r中文é€\xD83D");
        const int width = static_cast<int>(random() % 8) - 1;
        ASSERT_EQ(SplitBySize(source, width), SlowlySplitBySize(source, width)) << testing::PrintToString(source);
    }
}

TEST(StringSplitBySize, HandlesALongText)
{
    // UTF-8 has three bytes for a Chinese character, which are cut; of two bytes both stay together.
    const wchar_t* const words = ::GetACP() == CP_UTF8 ? L"\x00E9\x00D6 gear " : L"模型 gear ";
    std::wstring text;
    while (text.size() < 1 << 20)
        text += words;
    std::wstring joined;
    for (const std::wstring& piece : SplitBySize(text, 8))
        joined += piece;
    EXPECT_TRUE(joined == AnsiToUnicode(UnicodeToAnsi(text)));
}

TEST(CSortAssist, CanBeMadeCopiedAndAssigned)
{
    CSortAssist first;
    const CSortAssist second = first;
    EXPECT_EQ(&(first = second), &first);
}
