#include <Kelpkit/Mfc.h>

#include <gtest/gtest.h>

#include <cwchar>

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

TEST(CString, NullTextOfAnyLengthIsEmpty)
{
    EXPECT_TRUE(CString(nullptr, 5).IsEmpty());
    EXPECT_TRUE(CString(L"abc", -1).IsEmpty());
}

TEST(CString, GivesAndSetsSingleCharacters)
{
    CString text = L"abc";
    text.SetAt(1, L'x');
    EXPECT_EQ(text.GetAt(1), L'x');
    EXPECT_EQ(text[2], L'c');
    text.SetAt(7, L'x');
    EXPECT_STREQ(text, L"axc");
    EXPECT_EQ(text[-1], L'\0');
    EXPECT_EQ(text[3], L'\0');
}

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
}

TEST(CString, CanBeEmptied)
{
    CString text = L"abc";
    text.Empty();
    EXPECT_TRUE(text.IsEmpty());
}
