#include <Kelpkit/XMLParser.h>

#include "xmlparser/TreeFile.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <string>
#include <vector>

namespace
{

using namespace std::string_literals;
using test::TreeFile;

std::string Declared(const std::string& encoding, const std::string& rest)
{
    return R"(<?xml version="1.0" encoding=")" + encoding + "\"?>" + rest;
}

// UTF-16, in either byte order, with a byte order mark or without.
std::string Utf16(const std::wstring& text, bool isBigEndian, bool hasMark = true)
{
    std::string bytes;
    for (const wchar_t unit : (hasMark ? L"\xFEFF" : L"") + text) {
        const char low = static_cast<char>(unit & 0xFF);
        const char high = static_cast<char>(unit >> 8);
        bytes += isBigEndian ? high : low;
        bytes += isBigEndian ? low : high;
    }
    return bytes;
}

struct Sample {
    std::string name;
    std::string bytes; // of the text below, in this encoding
    std::wstring text;
};

// From the tables of the standards.
const std::vector<Sample> kSamples = {
    {"UTF-8", "\xE4\xB8\xAD\xF0\x9F\x98\x80", L"中😀"},
    {"utf-8", "\xE4\xB8\xAD", L"中"},
    {"utf8", "\xE4\xB8\xAD", L"中"},
    {"US-ASCII", "abc", L"abc"},
    {"GB2312", "\xD6\xD0\xCE\xC4\xA1\xA4", L"中文·"},
    {"gb2312", "\xD6\xD0", L"中"},
    {"GBK", "\xD6\xD0\xE9\x46\x81\x40", L"中镕丂"},
    {"GB18030", "\xD6\xD0\x81\x40", L"中丂"},
    {"Big5", "\xA4\xA4\xA4\xE5", L"中文"},
    {"BIG5", "\xA4\xA4", L"中"},
    {"Shift_JIS", "\x92\x86\xB1", L"中ｱ"},
    {"EUC-KR", "\xB0\xA1", L"가"},
    {"ISO-8859-1", "\xFC", L"ü"},
    {"ISO-8859-2", "\xB1", L"ą"},
    {"iso-8859-15", "\xA4", L"€"},
    {"windows-1252", "\x80", L"€"},
    {"windows-1251", "\xC6", L"Ж"},
    {"cp936", "\xD6\xD0", L"中"},
    {"KOI8-R", "\xF6", L"Ж"},
};

} // namespace

TEST(XMLTreeEncoding, IsTheDeclaredOne)
{
    for (const Sample& sample : kSamples) {
        const std::string bytes = Declared(sample.name, "<r><a>" + sample.bytes + "</a></r>");
        const TreeFile file(bytes);
        ASSERT_TRUE(file.Loads()) << sample.name;
        EXPECT_EQ(file.Text(L"a"), sample.text) << sample.name;
        EXPECT_TRUE(file.Add(L"b", sample.text)) << sample.name;
        EXPECT_EQ(file.Bytes(), Declared(sample.name, "<r><a>" + sample.bytes + "</a><b>" + sample.bytes + "</b></r>"));
    }
}

TEST(XMLTreeEncoding, OfNamesAttributesAndCommentsIsKept)
{
    const std::string bytes =
        Declared("GB2312", "<!-- \xD6\xD0 --><\xCE\xC4 \xD6\xD0=\"\xCE\xC4\"><\xD6\xD0/></\xCE\xC4>");
    const TreeFile file(bytes);
    EXPECT_TRUE(file.Tree()->GoToPath(L"文/中"));
    EXPECT_TRUE(file.Tree()->SaveFile(file.Path()));
    EXPECT_EQ(file.Bytes(), bytes);
    EXPECT_TRUE(file.Add(L"文", L""));
    EXPECT_FALSE(file.Tree()->AddChild(L"가", L"")) << "the encoding cannot hold the name";
    EXPECT_EQ(file.Bytes(),
              Declared("GB2312", "<!-- \xD6\xD0 --><\xCE\xC4 \xD6\xD0=\"\xCE\xC4\"><\xD6\xD0/><\xCE\xC4/></\xCE\xC4>"));
}

TEST(XMLTreeEncoding, LackingACharacterTakesAReference)
{
    const struct {
        const char* encoding;
        std::wstring text;
        std::string bytes;
    } cases[] = {
        {"US-ASCII", L"aü中", "a&#xFC;&#x4E2D;"},
        {"ISO-8859-1", L"ü中", "\xFC&#x4E2D;"},
        {"windows-1252", L"€ă", "\x80&#x103;"}, // not the "a" that would fit best
        {"GB2312", L"中é😀", "\xD6\xD0\xA8\xA6&#x1F600;"},
        {"GB2312", L"镕丂€", "&#x9555;&#x4E02;&#x20AC;"}, // those are GBK's
        {"GBK", L"镕€가", "\xE9\x46&#x20AC;&#xAC00;"},
        {"Big5", L"中国", "\xA4\xA4&#x56FD;"},
        {"UTF-8", L"中😀", "\xE4\xB8\xAD\xF0\x9F\x98\x80"},
    };
    for (const auto& each : cases) {
        const TreeFile file(Declared(each.encoding, "<r/>"));
        EXPECT_TRUE(file.Add(L"a", each.text));
        EXPECT_EQ(file.Bytes(), Declared(each.encoding, "<r><a>" + each.bytes + "</a></r>")) << each.encoding;
        EXPECT_EQ(file.Text(L"a"), each.text) << each.encoding;
    }
}

TEST(XMLTreeEncoding, KeepsEveryCharacterThatItIsGiven)
{
    for (const char* encoding :
         {"GB2312", "GBK", "GB18030", "Big5", "Shift_JIS", "EUC-KR", "windows-874", "ISO-8859-1"}) {
        const TreeFile file(Declared(encoding, "<r/>"));
        std::wstring text;
        for (wchar_t unit = 1; unit < 0xFFFF; ++unit)
            text += unit;
        EXPECT_TRUE(file.Add(L"a", text));
        ASSERT_TRUE(file.Loads()) << encoding;
        EXPECT_TRUE(file.Text(L"a") == text) << encoding;
    }
}

TEST(XMLTreeEncoding, Gb18030IsNotMistakenForGbk)
{
    // The euro sign, whose place is a user's own in GBK.
    const TreeFile file(Declared("GB18030", "<r>\xA2\xE3</r>"));
    EXPECT_EQ(file.Loads(), ::IsValidCodePage(54936) != FALSE);
}

TEST(XMLTreeEncoding, Gb18030HoldsEverythingWhereWindowsHasIt)
{
    const TreeFile file(Declared("GB18030", "<r/>"));
    EXPECT_TRUE(file.Add(L"a", L"中가😀"));
    EXPECT_EQ(file.Text(L"a"), L"中가😀");
    const std::string text =
        ::IsValidCodePage(54936) ? "\xD6\xD0\x83\x32\xB8\x36\x94\x39\xFC\x36" : "\xD6\xD0&#xAC00;&#x1F600;";
    EXPECT_EQ(file.Bytes(), Declared("GB18030", "<r><a>" + text + "</a></r>"));
}

TEST(XMLTreeEncoding, IsKeptWithItsByteOrderMark)
{
    const std::wstring before = L"<?xml version=\"1.0\"?>\r\n<r><a>中😀</a></r>\r\n";
    const std::wstring after = L"<?xml version=\"1.0\"?>\r\n<r><a>中😀</a><b>é</b></r>\r\n";
    for (const bool isBigEndian : {false, true}) {
        for (const bool hasMark : {false, true}) {
            const TreeFile file(Utf16(before, isBigEndian, hasMark));
            ASSERT_TRUE(file.Loads());
            EXPECT_EQ(file.Text(L"a"), L"中😀");
            EXPECT_TRUE(file.Add(L"b", L"é"));
            EXPECT_EQ(file.Bytes(), Utf16(after, isBigEndian, hasMark));
        }
    }
    const TreeFile file("\xEF\xBB\xBF<r/>");
    EXPECT_TRUE(file.Add(L"a", L"中"));
    EXPECT_EQ(file.Bytes(), "\xEF\xBB\xBF<r><a>\xE4\xB8\xAD</a></r>");
}

TEST(XMLTreeEncoding, IsThatOfTheByteOrderMarkWhateverIsDeclared)
{
    const TreeFile utf8("\xEF\xBB\xBF" + Declared("GB2312", "<r>\xE4\xB8\xAD</r>"));
    EXPECT_EQ(utf8.Text(L""), L"中");
    const TreeFile utf16(Utf16(L"<?xml version='1.0' encoding='utf-8'?><r>中</r>", false));
    EXPECT_EQ(utf16.Text(L""), L"中");
}

TEST(XMLTreeEncoding, IsFoundInEverySpellingOfTheDeclaration)
{
    for (const char* declaration :
         {"<?xml version='1.0' encoding='GBK'?>", "<?xml\tversion=\"1.0\"\r\n encoding = \"gbk\" standalone='no' ?>",
          "<?xml encoding=\"Gbk\"?>"}) {
        const TreeFile file(declaration + "<r>\xD6\xD0</r>"s);
        ASSERT_TRUE(file.Loads()) << declaration;
        EXPECT_EQ(file.Text(L""), L"中") << declaration;
    }
}

TEST(XMLTreeEncoding, ThatIsUnknownOrBeliedFailsTheLoad)
{
    for (const char* name :
         {"klingon", "utf-9", "windows-99999", "windows-", "windows-12a", "windows-4294967296", "iso-8859-99", "UTF-16",
          "UTF-16LE", "utf-32", "GB 2312", "cp65001x", "cp65000", "cp1200", "cp0", "cp1", "cp3", "cp42"})
        EXPECT_FALSE(TreeFile(Declared(name, "<r/>")).Loads()) << name;
}

TEST(XMLTreeEncoding, WithInvalidBytesFailsTheLoad)
{
    EXPECT_FALSE(TreeFile(Declared("GBK", "<r>\xFF</r>")).Loads());
    EXPECT_FALSE(TreeFile(Declared("GB2312", "<r>\xD6</r>")).Loads());
    EXPECT_FALSE(TreeFile(Declared("Big5", "<r>\xA4</r>")).Loads());
    EXPECT_FALSE(TreeFile(Utf16(L"<r>\xD800</r>", false)).Loads());
    EXPECT_FALSE(TreeFile(Utf16(L"<r>\xDC00\xD800</r>", true)).Loads());
    EXPECT_FALSE(TreeFile(Utf16(L"<r/>", false) + "\n").Loads()) << "half a unit";
    EXPECT_FALSE(TreeFile(Utf16(L"<r>\0</r>"s, false)).Loads());
}
