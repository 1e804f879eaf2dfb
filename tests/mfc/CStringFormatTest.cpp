#include <Kelpkit/Mfc.h> // first: MFC stands no windows.h before it

#include "support/CodePage.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <string>

namespace
{

template <typename... Arguments>
CString Formatted(const wchar_t* format, Arguments... arguments)
{
    CString text = L"before";
    text.Format(format, arguments...);
    return text;
}

void FormatByList(CString& text, const wchar_t* format, ...) // NOLINT(cert-dcl50-cpp): this is what is tested
{
    std::va_list arguments = nullptr;
    va_start(arguments, format);
    text.FormatV(format, arguments);
    va_end(arguments);
}

using CStringUnderCodePage936 = test::UnderCodePage936;
using CStringUnderCodePage1252 = test::UnderCodePage1252;

} // namespace

TEST(CStringFormat, WritesWideTexts)
{
    EXPECT_STREQ(Formatted(L"%s", L"模型"), L"模型");
    EXPECT_STREQ(Formatted(L"%ls|%c|%lc", L"模", L'型', L'板'), L"模|型|板");
    EXPECT_STREQ(Formatted(L"[%5s][%-5s][%.2s]", L"abc", L"abc", L"abc"), L"[  abc][abc  ][ab]");
    EXPECT_STREQ(Formatted(L""), L"");
    EXPECT_STREQ(Formatted(L"100%%"), L"100%");
}

TEST(CStringFormat, WritesNarrowTextsOnDemand)
{
    EXPECT_STREQ(Formatted(L"%S|%hs|%C|%hc", "abc", "def", 'g', 'h'), L"abc|def|g|h");
}

TEST(CStringFormat, WritesNumbers)
{
    EXPECT_STREQ(Formatted(L"%d %i %u", -1, 2, 3U), L"-1 2 3");
    EXPECT_STREQ(Formatted(L"%05d|%+d|%-4d|%*d", 42, 42, 42, 4, 42), L"00042|+42|42  |  42");
    EXPECT_STREQ(Formatted(L"%x %X %#x %o", 255U, 255U, 255U, 8U), L"ff FF 0xff 10");
    EXPECT_STREQ(Formatted(L"%lld %I64d %I64u", 1LL << 40, -(1LL << 41), 1ULL << 63),
                 L"1099511627776 -2199023255552 9223372036854775808");
    EXPECT_STREQ(Formatted(L"%ld %hd %lu", -7L, static_cast<short>(-8), 9UL), L"-7 -8 9");
    EXPECT_STREQ(Formatted(L"%.2f %8.3f %g %.0f", 3.14159, -2.5, 0.5, 1e6), L"3.14   -2.500 0.5 1000000");
    EXPECT_STREQ(Formatted(L"%.1f %d", 1.5F, true), L"1.5 1");
}

TEST(CStringFormat, WritesExponentsAsTheRuntimeDoes)
{
    const std::wstring text = Formatted(L"%e", 12345.678).GetString();
    EXPECT_TRUE(text == L"1.234568e+04" || text == L"1.234568e+004") << testing::PrintToString(text);
}

TEST(CStringFormat, TakesItsOwnKind)
{
    const CString name = L"模型";
    EXPECT_STREQ(Formatted(L"%s.%s", name, CString(L"qmx")), L"模型.qmx");
    EXPECT_STREQ(Formatted(CString(L"<%s>"), name), L"<模型>");
}

TEST(CStringFormat, Appends)
{
    CString text = L"a";
    text.AppendFormat(L"%d", 1);
    text.AppendFormat(L"%s", L"");
    text.AppendFormat(L"-%s", L"b");
    EXPECT_STREQ(text, L"a1-b");
    CString withZero(L"a\0b", 3);
    withZero.AppendFormat(L"%d", 7);
    EXPECT_EQ(withZero.GetLength(), 4);
    EXPECT_EQ(withZero[3], L'7');
}

TEST(CStringFormat, TakesAListOfArguments)
{
    CString text = L"before";
    FormatByList(text, L"%s %d", L"a", 1);
    EXPECT_STREQ(text, L"a 1");
    FormatByList(text, L"");
    EXPECT_STREQ(text, L"");
}

TEST(CStringFormat, WritesTextsOfAnyLength)
{
    for (const int length : {1, 127, 128, 255, 256, 511, 512, 1023, 1024, 4095, 4096, 100000, 1000000}) {
        const CString part(L'x', length);
        const CString text = Formatted(L"%s!", part);
        ASSERT_EQ(text.GetLength(), length + 1);
        EXPECT_EQ(text.Left(length).Compare(part), 0) << length;
        EXPECT_EQ(text[length], L'!');
    }
    EXPECT_EQ(Formatted(L"%*d", 70000, 1).GetLength(), 70000);
}

TEST(CStringFormat, KeepsWrittenZeros)
{
    const CString text = Formatted(L"a%cb", 0);
    EXPECT_EQ(text.GetLength(), 3);
    EXPECT_EQ(text[2], L'b');
}

TEST(CStringFromNarrow, TakesAsciiInEveryCodePage)
{
    const CString text = "abc";
    EXPECT_STREQ(text, L"abc");
    EXPECT_STREQ(CString("abcdef", 3), L"abc");
    EXPECT_STREQ(CString(""), L"");
    EXPECT_STREQ(CString("", 0), L"");
    EXPECT_STREQ(CString(static_cast<const char*>(nullptr)), L"");
    EXPECT_EQ(CString("a\0b", 3).GetLength(), 3);
    CString changed = L"x";
    changed = "y";
    changed += "z";
    EXPECT_STREQ(changed, L"yz");
    EXPECT_TRUE(changed == "yz" && "yz" == changed && changed != "y");
    const std::string longText(100000, 'a');
    EXPECT_EQ(CString(longText.c_str()).GetLength(), 100000);
}

TEST_F(CStringUnderCodePage936, TakesNarrowTextInIt)
{
    EXPECT_STREQ(CString("\xC4\xA3\xD0\xCD.qmx"), L"模型.qmx");
    EXPECT_STREQ(CString("\xC4\xA3\xD0\xCD", 2), L"模");
}

TEST_F(CStringUnderCodePage1252, TakesNarrowTextInIt)
{
    EXPECT_STREQ(CString("\xC4\x80"), L"\xC4\x20AC");
    EXPECT_STREQ(CString("\xC4\xE4", 1), L"\xC4");
}
