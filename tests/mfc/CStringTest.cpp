#include <Kelpkit/Mfc.h> // first: MFC stands no windows.h before it

#include <gtest/gtest.h>

#include <windows.h>

#include <climits>
#include <clocale>
#include <cwchar>
#include <string>

TEST(CString, IsEmptyUnlessGivenAText)
{
    EXPECT_TRUE(CString().IsEmpty());
    EXPECT_TRUE(CString(static_cast<const wchar_t*>(nullptr)).IsEmpty());
    EXPECT_EQ(CString().GetLength(), 0);
    EXPECT_STREQ(CString().GetString(), L"");
}

TEST(CString, HoldsWhatItIsMadeOf)
{
    EXPECT_STREQ(CString(L"模型"), L"模型");
    EXPECT_STREQ(CString(L"abcdef", 3), L"abc");
    EXPECT_STREQ(CString(L'x', 3), L"xxx");
    EXPECT_EQ(CString(L"模型").GetLength(), 2);
}

TEST(CString, JoinsTexts)
{
    CString text = L"a";
    text += L"b";
    text += CString(L"c");
    text += L'd';
    EXPECT_STREQ(text, L"abcd");
    EXPECT_STREQ(text + L"e", L"abcde");
    EXPECT_STREQ(L"e" + text, L"eabcd");
    EXPECT_STREQ(text + text, L"abcdabcd");
    EXPECT_STREQ(text + L'!', L"abcd!");
}

TEST(CString, Compares)
{
    EXPECT_TRUE(CString(L"a") == L"a");
    EXPECT_TRUE(L"a" == CString(L"a"));
    EXPECT_TRUE(CString(L"a") != CString(L"A"));
    EXPECT_TRUE(CString(L"a") != L"b");
    EXPECT_TRUE(L"a" != CString(L"b"));
    EXPECT_LT(CString(L"a").Compare(L"b"), 0);
    EXPECT_GT(CString(L"b").Compare(L"a"), 0);
    EXPECT_EQ(CString(L"b").Compare(L"b"), 0);
}

TEST(CString, IsOrderedByItsTextInEveryPairing)
{
    const wchar_t* const texts[] = {L"", L"a", L"aa", L"b", L"\xFFFD"};
    for (int i = 0; i < 5; ++i) {
        for (int j = 0; j < 5; ++j) {
            const CString left = texts[i];
            const CString right = texts[j];
            EXPECT_EQ(left < right, i < j);
            EXPECT_EQ(left < texts[j], i < j);
            EXPECT_EQ(texts[i] < right, i < j);
            EXPECT_EQ(left > right, i > j);
            EXPECT_EQ(left > texts[j], i > j);
            EXPECT_EQ(texts[i] > right, i > j);
            EXPECT_EQ(left <= right, i <= j);
            EXPECT_EQ(left <= texts[j], i <= j);
            EXPECT_EQ(texts[i] <= right, i <= j);
            EXPECT_EQ(left >= right, i >= j);
            EXPECT_EQ(left >= texts[j], i >= j);
            EXPECT_EQ(texts[i] >= right, i >= j);
        }
    }
}

TEST(CString, ComparesUpToTheFirstZero)
{
    const CString text(L"a\0b", 3);
    EXPECT_TRUE(text == CString(L"a\0c", 3));
    EXPECT_TRUE(text == CString(L"a"));
    EXPECT_TRUE(text == L"a");
    EXPECT_TRUE(L"a" == text);
    EXPECT_FALSE(text != CString(L"a\0c", 3));
    EXPECT_FALSE(text < CString(L"a\0c", 3) || text > CString(L"a\0c", 3));
    EXPECT_EQ(text.Compare(L"a"), 0);
    EXPECT_EQ(text.CompareNoCase(L"A"), 0);
    EXPECT_TRUE(text != CString(L"b\0b", 3));
}

TEST(CString, ComparesAToZWithoutCaseOnDemand)
{
    EXPECT_EQ(CString(L"Model.QMX").CompareNoCase(L"mODEL.qmx"), 0);
    EXPECT_LT(CString(L"a").CompareNoCase(L"B"), 0);
    EXPECT_GT(CString(L"B").CompareNoCase(L"a"), 0);
    EXPECT_LT(CString(L"a").CompareNoCase(L"aa"), 0);
    EXPECT_GT(CString(L"Z").CompareNoCase(L"_"), 0) << "as z";
    EXPECT_NE(CString(L"@[`{").CompareNoCase(L"`{@["), 0) << "next to the letters";
    EXPECT_NE(CString(L"\xC4").CompareNoCase(L"\xE4"), 0);
}

TEST(CString, ChangesTheCaseOfAToZ)
{
    EXPECT_STREQ(CString(L"aMz AMZ 09@[`{").MakeUpper(), L"AMZ AMZ 09@[`{");
    EXPECT_STREQ(CString(L"aMz AMZ 09@[`{").MakeLower(), L"amz amz 09@[`{");
    EXPECT_STREQ(CString(L"\xE4\xFF\x3B1\xFF41模").MakeUpper(), L"\xE4\xFF\x3B1\xFF41模");
    EXPECT_STREQ(CString(L"\xC4\xDE\x391\xFF21模").MakeLower(), L"\xC4\xDE\x391\xFF21模");
    EXPECT_STREQ(CString().MakeUpper(), L"");
    CString text(L"a\0a", 3);
    text.MakeUpper();
    EXPECT_EQ(text[0], L'A');
    EXPECT_EQ(text[2], L'a') << "after a zero";
}

TEST(CString, TakesOtherTextsAndCharacters)
{
    CString text = L"abc";
    text = L"d";
    EXPECT_STREQ(text, L"d");
    text = L'e';
    EXPECT_STREQ(text, L"e");
    text = CString(L"fg");
    EXPECT_STREQ(text, L"fg");
    text.Append(L"h");
    text.AppendChar(L'i');
    text += 'j';
    EXPECT_STREQ(text, L"fghij");
    EXPECT_STREQ(L'e' + text, L"efghij");
    text = text + text.Left(1);
    EXPECT_STREQ(text, L"fghijf");
}

TEST(CString, GivesAndSetsSingleCharacters)
{
    CString text = L"abc";
    text.SetAt(1, L'x');
    EXPECT_EQ(text.GetAt(1), L'x');
    EXPECT_EQ(text[2], L'c');
    EXPECT_EQ(text[3], L'\0');
    EXPECT_STREQ(text, L"axc");
}

#if !defined(_AFX) // MFC throws.
TEST(CString, TakesMisuseForNothing)
{
    EXPECT_TRUE(CString(static_cast<const wchar_t*>(nullptr), 5).IsEmpty());
    EXPECT_TRUE(CString(static_cast<const char*>(nullptr), 5).IsEmpty());
    EXPECT_TRUE(CString(L"abc", -1).IsEmpty());
    EXPECT_TRUE(CString("abc", -1).IsEmpty());
    CString text = L"abc";
    text.SetAt(7, L'x');
    text.SetAt(3, L'x');
    text.SetAt(-1, L'x');
    EXPECT_STREQ(text, L"abc");
    EXPECT_EQ(text[-1], L'\0');
    EXPECT_EQ(text[4], L'\0');
    EXPECT_GT(text.Compare(nullptr), 0);
    EXPECT_GT(text.CompareNoCase(nullptr), 0);
    EXPECT_EQ(text.FindOneOf(nullptr), -1);
    EXPECT_STREQ(text.Mid(1, INT_MAX), L"bc") << "of this sum, too";
    EXPECT_EQ(CString(text).Delete(1, INT_MAX), 1);
    text.Truncate(-1);
    EXPECT_STREQ(text, L"");
    text.Format(nullptr);
    EXPECT_TRUE(text.IsEmpty());
}
#endif

TEST(CString, GivesParts)
{
    const CString text = L"abcdef";
    EXPECT_STREQ(text.Left(2), L"ab");
    EXPECT_STREQ(text.Left(9), L"abcdef");
    EXPECT_STREQ(text.Left(-1), L"");
    EXPECT_STREQ(text.Right(2), L"ef");
    EXPECT_STREQ(text.Right(9), L"abcdef");
    EXPECT_STREQ(text.Right(-1), L"");
    EXPECT_STREQ(text.Mid(2), L"cdef");
    EXPECT_STREQ(text.Mid(2, 3), L"cde");
    EXPECT_STREQ(text.Mid(4, 9), L"ef");
    EXPECT_STREQ(text.Mid(6), L"");
    EXPECT_STREQ(text.Mid(9), L"");
    EXPECT_STREQ(text.Mid(-1, 2), L"ab");
    EXPECT_STREQ(text.Mid(-1), L"abcdef");
    EXPECT_STREQ(text.Mid(2, -1), L"");
    EXPECT_STREQ(text.Mid(9, 2), L"");
    EXPECT_EQ(CString(L"a\0b", 3).Mid(1).GetLength(), 2);
}

TEST(CString, CanBeCutToALength)
{
    CString text = L"abc";
    text.Truncate(4);
    EXPECT_STREQ(text, L"abc");
    text.Truncate(2);
    EXPECT_STREQ(text, L"ab");
    text.Truncate(0);
    EXPECT_TRUE(text.IsEmpty());
}

TEST(CString, FindsCharactersAndTexts)
{
    const CString text = L"abcabc";
    EXPECT_EQ(text.Find(L'b'), 1);
    EXPECT_EQ(text.Find(L'b', 2), 4);
    EXPECT_EQ(text.Find(L'x'), -1);
    EXPECT_EQ(text.Find(L'a', 9), -1);
    EXPECT_EQ(text.Find(L"ca"), 2);
    EXPECT_EQ(text.Find(L"cb"), -1);
    EXPECT_EQ(text.Find(L"abc", 1), 3);
    EXPECT_EQ(text.ReverseFind(L'a'), 3);
    EXPECT_EQ(text.ReverseFind(L'x'), -1);
    EXPECT_EQ(text.FindOneOf(L"xcb"), 1);
    EXPECT_EQ(text.FindOneOf(L"x"), -1);
    EXPECT_EQ(text.FindOneOf(L""), -1);
}

TEST(CString, FindsFromAStartWithinTheTextOnly)
{
    const CString text = L"abcabc";
    const struct {
        int start, character, part, empty;
    } cases[] = {{0, 0, 0, 0},   {1, 3, 3, 1},   {3, 3, 3, 3},   {4, -1, -1, 4},
                 {5, -1, -1, 5}, {6, -1, -1, 6}, {7, -1, -1, -1}};
    for (const auto& c : cases) {
        EXPECT_EQ(text.Find(L'a', c.start), c.character) << c.start;
        EXPECT_EQ(text.Find(L"abc", c.start), c.part) << c.start;
        EXPECT_EQ(text.Find(L"", c.start), c.empty) << c.start;
    }
    EXPECT_EQ(CString().Find(L'a'), -1);
    EXPECT_EQ(CString().Find(L"a"), -1);
    EXPECT_EQ(CString().Find(L""), 0);
#if !defined(_AFX) // MFC asserts, then returns the same.
    for (const int start : {-1, INT_MIN}) {
        EXPECT_EQ(text.Find(L'a', start), -1);
        EXPECT_EQ(text.Find(L"abc", start), -1);
        EXPECT_EQ(text.Find(L"", start), -1);
    }
    EXPECT_EQ(text.Find(nullptr), -1);
#endif
}

TEST(CString, FindsTheTerminatorAndNothingAfterAZero)
{
    EXPECT_EQ(CString(L"abc").Find(L'\0'), 3);
    EXPECT_EQ(CString(L"abc").Find(L'\0', 3), -1);
    EXPECT_EQ(CString(L"abc").ReverseFind(L'\0'), 3);
    const CString text(L"ab\0ba", 5);
    EXPECT_EQ(text.Find(L'\0'), 2);
    EXPECT_EQ(text.Find(L"ba"), -1);
    EXPECT_EQ(text.Find(L"ba", 3), 3) << "from behind the zero";
    EXPECT_EQ(text.Find(L'a', 1), -1);
    EXPECT_EQ(text.ReverseFind(L'a'), 0);
    EXPECT_EQ(text.ReverseFind(L'b'), 1);
    EXPECT_EQ(text.FindOneOf(L"a"), 0);
}

TEST(CString, Inserts)
{
    CString text = L"ad";
    EXPECT_EQ(text.Insert(1, L"bc"), 4);
    EXPECT_STREQ(text, L"abcd");
    EXPECT_EQ(text.Insert(0, L'_'), 5);
    EXPECT_EQ(text.Insert(-3, L'<'), 6) << "at the beginning";
    EXPECT_EQ(text.Insert(99, L'>'), 7) << "at the end";
    EXPECT_EQ(text.Insert(-1, L"("), 8);
    EXPECT_EQ(text.Insert(99, L")"), 9);
    EXPECT_EQ(text.Insert(2, L""), 9);
    EXPECT_EQ(text.Insert(2, static_cast<const wchar_t*>(nullptr)), 9);
    EXPECT_STREQ(text, L"(<_abcd>)");
}

TEST(CString, Deletes)
{
    const struct {
        int index, count;
        const wchar_t* left;
    } cases[] = {{2, 1, L"abdef"}, {0, 6, L""},      {2, 9, L"ab"},     {2, 0, L"abcdef"}, {2, -1, L"abcdef"},
                 {-5, 2, L"cdef"}, {5, 1, L"abcde"}, {6, 1, L"abcdef"}, {9, 1, L"abcdef"}};
    for (const auto& c : cases) {
        CString text = L"abcdef";
        EXPECT_EQ(text.Delete(c.index, c.count), static_cast<int>(std::wcslen(c.left))) << c.index << ' ' << c.count;
        EXPECT_STREQ(text, c.left) << c.index << ' ' << c.count;
    }
    CString text = L"abc";
    EXPECT_EQ(text.Delete(1), 2);
    EXPECT_STREQ(text, L"ac");
}

TEST(CString, RemovesAndReplacesCharacters)
{
    CString text = L"abcabc";
    EXPECT_EQ(text.Remove(L'b'), 2);
    EXPECT_EQ(text.Remove(L'x'), 0);
    EXPECT_STREQ(text, L"acac");
    EXPECT_EQ(text.Replace(L'a', L'x'), 2);
    EXPECT_EQ(text.Replace(L'a', L'y'), 0);
    EXPECT_EQ(text.Replace(L'x', L'x'), 0) << "nothing changes";
    EXPECT_STREQ(text, L"xcxc");
    CString withZeros(L"a\0b\0b", 5);
    EXPECT_EQ(withZeros.Replace(L'b', L'c'), 2) << "behind zeros, too";
    EXPECT_EQ(withZeros.Remove(L'\0'), 2);
    EXPECT_STREQ(withZeros, L"acc");
}

TEST(CString, ReplacesTexts)
{
    const struct {
        const wchar_t *text, *from, *to, *result;
        int count;
    } cases[] = {{L"abcabc", L"bc", L"x", L"axax", 2},
                 {L"abcabc", L"b", L"bb", L"abbcabbc", 2},
                 {L"aaaa", L"aa", L"a", L"aa", 2},
                 {L"aaa", L"aa", L"b", L"ba", 1},
                 {L"abc", L"abc", L"", L"", 1},
                 {L"abc", L"b", L"b", L"abc", 1},
                 {L"abc", L"", L"x", L"abc", 0},
                 {L"abc", L"x", L"y", L"abc", 0},
                 {L"", L"x", L"y", L"", 0},
                 {L"abc", nullptr, L"x", L"abc", 0},
                 {L"abc", L"b", nullptr, L"ac", 1},
                 {L"模型", L"型", L"板", L"模板", 1}};
    for (const auto& c : cases) {
        CString text = c.text;
        EXPECT_EQ(text.Replace(c.from, c.to), c.count) << testing::PrintToString(c.result);
        EXPECT_STREQ(text, c.result);
    }
    CString withZeros(L"ab\0ab", 5);
    EXPECT_EQ(withZeros.Replace(L"ab", L"c"), 2) << "behind zeros, too";
    EXPECT_EQ(withZeros.GetLength(), 3);
}

TEST(CString, IsItsOwnArgument)
{
    CString text = L"ab";
    text.Insert(1, CString(text));
    EXPECT_STREQ(text, L"aabb");
    text += text;
    EXPECT_STREQ(text, L"aabbaabb");
#if !defined(_AFX) // MFC reads what it has moved, or released.
    text = L"ab";
    text.Insert(1, text.GetString());
    EXPECT_STREQ(text, L"aabb");
    text.Replace(text, text);
    EXPECT_STREQ(text, L"aabb");
    text.Format(L"%s-%s", text.GetString(), text);
    EXPECT_STREQ(text, L"aabb-aabb");
    text.AppendFormat(L"%s", text.GetString());
    EXPECT_STREQ(text, L"aabb-aabbaabb-aabb");
#endif
}

TEST(CString, GivesItsTokens)
{
    const CString text = L"; one,two;; three;";
    int start = 0;
    EXPECT_STREQ(text.Tokenize(L",; ", start), L"one");
    EXPECT_EQ(start, 6);
    EXPECT_STREQ(text.Tokenize(L",; ", start), L"two");
    EXPECT_STREQ(text.Tokenize(L",; ", start), L"three");
    EXPECT_EQ(start, 18);
    EXPECT_STREQ(text.Tokenize(L",; ", start), L"");
    EXPECT_EQ(start, -1);
    start = 2;
    EXPECT_STREQ(text.Tokenize(L"", start), L"one,two;; three;");
    EXPECT_EQ(start, 2);
    start = 0;
    EXPECT_STREQ(CString(L";;").Tokenize(L";", start), L"");
    EXPECT_EQ(start, -1);
    start = 0;
    EXPECT_STREQ(CString().Tokenize(L"", start), L"");
    EXPECT_EQ(start, -1);
}

TEST(CString, Trims)
{
    EXPECT_STREQ(CString(L" \t a b \r\n").Trim(), L"a b");
    EXPECT_STREQ(CString(L"  ab  ").TrimLeft(), L"ab  ");
    EXPECT_STREQ(CString(L"  ab  ").TrimRight(), L"  ab");
    EXPECT_STREQ(CString(L"--a-b--").Trim(L'-'), L"a-b");
    EXPECT_STREQ(CString(L"--ab--").TrimLeft(L'-'), L"ab--");
    EXPECT_STREQ(CString(L"--ab--").TrimRight(L'-'), L"--ab");
    EXPECT_STREQ(CString(L"-+a+-").Trim(L"+-"), L"a");
    EXPECT_STREQ(CString(L"   ").Trim(), L"");
    EXPECT_STREQ(CString(L"\x3000\xA0模型\xA0\x3000").Trim(), L"模型");
    EXPECT_STREQ(CString(L" a ").Trim(L""), L" a ");
    EXPECT_STREQ(CString(L" a ").Trim(static_cast<const wchar_t*>(nullptr)), L" a ");
}

TEST(CString, TrimsUnicodesWhiteSpaceInEveryLocale)
{
    std::wstring trimmed;
    for (const char* const locale : {"", "C"}) {
        std::setlocale(LC_ALL, locale);
        trimmed.clear();
        for (unsigned c = 1; c <= 0xFFFF; ++c) {
            const auto unit = static_cast<wchar_t>(c);
            if (CString(unit).TrimLeft().IsEmpty())
                trimmed += unit;
            ASSERT_EQ(CString(unit).TrimLeft().IsEmpty(), CString(unit).TrimRight().IsEmpty()) << c;
        }
        EXPECT_EQ(trimmed, L"\t\n\v\f\r \x85\xA0\x1680\x2000\x2001\x2002\x2003\x2004\x2005\x2006\x2007\x2008\x2009"
                           L"\x200A\x2028\x2029\x202F\x205F\x3000")
            << locale;
    }
    for (const wchar_t c : trimmed) {
        WORD type = 0;
        EXPECT_TRUE(::GetStringTypeW(CT_CTYPE1, &c, 1, &type));
        EXPECT_TRUE(type & C1_SPACE) << static_cast<unsigned>(c) << ": what the real one goes by";
    }
}

TEST(CString, TrimsUpToTheFirstZero)
{
    CString text(L"  a  \0  b  ", 11);
    text.TrimLeft();
    EXPECT_EQ(text.GetLength(), 9);
    text.TrimRight();
    EXPECT_EQ(text.GetLength(), 1) << "with what is behind the zero";
    CString kept(L"a\0  ", 4);
    kept.Trim();
    EXPECT_EQ(kept.GetLength(), 4) << "no white space before the zero";
    CString blank(L"  \0b", 4);
    EXPECT_EQ(blank.TrimLeft().GetLength(), 2);
}

TEST(CString, LendsItsBuffer)
{
    CString text = L"abc";
    wchar_t* const buffer = text.GetBuffer(10);
    EXPECT_STREQ(buffer, L"abc");
    std::wcscpy(buffer, L"longer");
    text.ReleaseBuffer();
    EXPECT_STREQ(text, L"longer");
    EXPECT_EQ(text.GetLength(), 6);
    text.GetBuffer();
    text.ReleaseBuffer(2);
    EXPECT_STREQ(text, L"lo");
    std::wmemcpy(text.GetBufferSetLength(4), L"abcd", 4);
    EXPECT_STREQ(text, L"abcd");
    text.GetBuffer(9)[1] = L'\0';
    text.ReleaseBufferSetLength(3);
    EXPECT_EQ(text.GetLength(), 3);
    EXPECT_EQ(text[2], L'c');
}

TEST(CString, CanBeEmptied)
{
    CString text = L"abc";
    text.Empty();
    EXPECT_TRUE(text.IsEmpty());
}
