#include <Kelpkit/XMLParser.h>

#include "support/FailingCall.h"
#include "support/OwnProcess.h"
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

struct Aliases {
    std::string bytes; // of the text, with references for what the encoding lacks
    std::wstring text;
    std::vector<std::string> names;
};

// All labels of the Encoding Standard for these encodings, and all of Windows' names, except for "big5-hkscs".
const std::vector<Aliases> kAliases = {
    {"\xE4\xB8\xAD\xF0\x9F\x98\x80",
     L"中😀",
     {"unicode-1-1-utf-8", "unicode-2-0-utf-8", "unicode11utf8", "unicode20utf8", "utf-8", "utf8",
      "x-unicode-1-1-utf-8", "x-unicode-2-0-utf-8", "x-unicode20utf8"}},
    {"a&#xFC;&#x20AC;",
     L"aü€",
     {"ansi_x3.4-1968", "ansi_x3.4-1986", "ascii", "cp367", "csascii", "ibm367", "iso-ir-6", "iso646-us",
      "iso_646.irv:1991", "us", "us-ascii"}},
    {"\xF0&#x20AC;",
     L"ð€",
     {"cp819", "csisolatin1", "ibm819", "iso-8859-1", "iso-ir-100", "iso8859-1", "iso88591", "iso_8859-1",
      "iso_8859-1:1987", "l1", "latin1"}},
    {"\xFC\x80&#x4E2D;", L"ü€中", {"cp1252", "windows-1252", "x-ansi", "x-cp1252"}},
    {"\xD6\xD0&#x9555;",
     L"中镕",
     {"chinese", "cn-gb", "csgb2312", "csgb231280", "csiso58gb231280", "euc-cn", "gb2312", "gb2312-80", "gb231280",
      "gb_2312", "gb_2312-80", "iso-ir-58", "x-euc-cn"}},
    {"\xD6\xD0\xE9\x46&#x20AC;", L"中镕€", {"cp936", "gbk", "windows-936", "x-cp936", "x-gbk"}},
    {"\xD6\xD0\x81\x40", L"中丂", {"gb18030"}},
    {"\xA4\xA4&#x56FD;", L"中国", {"big5", "cn-big5", "cp950", "csbig5", "x-x-big5"}},
    {"\x92\x86\xB1",
     L"中ｱ",
     {"csshiftjis", "cswindows31j", "ms932", "ms_kanji", "shift-jis", "shift_jis", "sjis", "windows-31j", "x-ms-cp932",
      "x-sjis"}},
    {"\xB0\xA1",
     L"가",
     {"cseuckr", "csksc56011987", "euc-kr", "iso-ir-149", "korean", "ks-c-5601", "ks-c5601", "ks_c_5601",
      "ks_c_5601-1987", "ks_c_5601-1989", "ks_c_5601_1987", "ksc5601", "ksc_5601", "windows-949"}},
    {"\xF6", L"Ж", {"cskoi8r", "koi", "koi8", "koi8-r", "koi8_r", "koi8r"}},
    {"\xA4", L"є", {"koi8-ru", "koi8-u"}},
    {"\xB3",
     L"ł",
     {"csisolatin2", "iso-8859-2", "iso-ir-101", "iso8859-2", "iso88592", "iso_8859-2", "iso_8859-2:1987", "l2",
      "latin2"}},
    {"\xA1",
     L"Ħ",
     {"csisolatin3", "iso-8859-3", "iso-ir-109", "iso8859-3", "iso88593", "iso_8859-3", "iso_8859-3:1988", "l3",
      "latin3"}},
    {"\xA2",
     L"ĸ",
     {"csisolatin4", "iso-8859-4", "iso-ir-110", "iso8859-4", "iso88594", "iso_8859-4", "iso_8859-4:1988", "l4",
      "latin4"}},
    {"\xB6",
     L"Ж",
     {"csisolatincyrillic", "cyrillic", "iso-8859-5", "iso-ir-144", "iso8859-5", "iso88595", "iso_8859-5",
      "iso_8859-5:1988"}},
    {"\xC7",
     L"ا",
     {"arabic", "asmo-708", "csiso88596e", "csiso88596i", "csisolatinarabic", "ecma-114", "iso-8859-6", "iso-8859-6-e",
      "iso-8859-6-i", "iso-ir-127", "iso8859-6", "iso88596", "iso_8859-6", "iso_8859-6:1987"}},
    {"\xE1",
     L"α",
     {"csisolatingreek", "ecma-118", "elot_928", "greek", "greek8", "iso-8859-7", "iso-ir-126", "iso8859-7", "iso88597",
      "iso_8859-7", "iso_8859-7:1987", "sun_eu_greek"}},
    {"\xE0",
     L"א",
     {"csiso88598e", "csiso88598i", "csisolatinhebrew", "hebrew", "iso-8859-8", "iso-8859-8-e", "iso-8859-8-i",
      "iso-ir-138", "iso8859-8", "iso88598", "iso_8859-8", "iso_8859-8:1988", "logical", "visual"}},
    {"\xF0",
     L"ğ",
     {"csisolatin5", "iso-8859-9", "iso-ir-148", "iso8859-9", "iso88599", "iso_8859-9", "iso_8859-9:1989", "l5",
      "latin5"}},
    {"\xE0", L"ą", {"iso-8859-13", "iso8859-13", "iso885913"}},
    {"\xA4", L"€", {"csisolatin9", "iso-8859-15", "iso8859-15", "iso885915", "iso_8859-15", "l9", "latin9"}},
    {"\x81", L"ü", {"437", "cp437", "cspc8codepage437", "ibm437"}},
    {"\x86", L"Ж", {"866", "cp866", "csibm866", "ibm866"}},
    {"\xA1", L"ก", {"dos-874", "iso-8859-11", "iso8859-11", "iso885911", "tis-620", "windows-874"}},
    {"\xB9", L"ą", {"cp1250", "windows-1250", "x-cp1250"}},
    {"\xC6", L"Ж", {"cp1251", "windows-1251", "x-cp1251"}},
    {"\xE1", L"α", {"cp1253", "windows-1253", "x-cp1253"}},
    {"\xF0", L"ğ", {"cp1254", "windows-1254", "x-cp1254"}},
    {"\xE0", L"א", {"cp1255", "windows-1255", "x-cp1255"}},
    {"\xC7", L"ا", {"cp1256", "windows-1256", "x-cp1256"}},
    {"\xE0", L"ą", {"cp1257", "windows-1257", "x-cp1257"}},
    {"\xD0", L"Đ", {"cp1258", "windows-1258", "x-cp1258"}},
};

const std::vector<std::string> kNamesOfUtf16 = {"csunicode",   "iso-10646-ucs-2", "ucs-2",    "unicode", "unicodefeff",
                                                "unicodefffe", "utf-16",          "utf-16be", "utf-16le"};

std::string Capitals(std::string name)
{
    for (char& c : name)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
    return name;
}

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

TEST(XMLTreeEncoding, IsKnownByEachOfItsNames)
{
    const TreeFile file;
    for (const Aliases& each : kAliases) {
        for (const std::string& name : each.names) {
            for (const std::string& spelling : {name, Capitals(name)}) {
                file.Write(Declared(spelling, "<r><a>" + each.bytes + "</a></r>"));
                if (!file.Loads()) {
                    ADD_FAILURE() << spelling;
                    continue;
                }
                EXPECT_EQ(file.Text(L"a"), each.text) << spelling;
                EXPECT_TRUE(file.Add(L"b", each.text)) << spelling;
                EXPECT_EQ(file.Bytes(),
                          Declared(spelling, "<r><a>" + each.bytes + "</a><b>" + each.bytes + "</b></r>"));
            }
        }
    }
}

TEST(XMLTreeEncoding, Utf16IsKnownByItsBytesWhateverItsNameIs)
{
    for (const std::string& name : kNamesOfUtf16) {
        const std::wstring declaration =
            L"<?xml version=\"1.0\" encoding=\"" + std::wstring(name.begin(), name.end()) + L"\"?>";
        for (const bool isBigEndian : {false, true}) {
            for (const bool hasMark : {false, true}) {
                const TreeFile file(Utf16(declaration + L"<r>中</r>", isBigEndian, hasMark));
                ASSERT_TRUE(file.Loads()) << name;
                EXPECT_EQ(file.Text(L""), L"中") << name;
                EXPECT_TRUE(file.Add(L"b", L"é")) << name;
                EXPECT_EQ(file.Bytes(), Utf16(declaration + L"<r>中<b>é</b></r>", isBigEndian, hasMark)) << name;
            }
        }
        EXPECT_FALSE(TreeFile(Declared(name, "<r/>")).Loads()) << name;
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
        {"GB2312", L"\x3000啊齄", "\xA1\xA1\xB0\xA1\xF7\xFE"},
        {"GB2312", L"狛狜鵂", "&#x72DB;&#x72DC;&#x9D42;"}, // GBK's A0FE, AA40 and F8A0
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

TEST(XMLTreeEncoding, Gb18030IsReadAsGbkWhereWindowsLacksIt)
{
    // A process asks once.
    test::InOwnProcess([] {
        const test::FailingCall<decltype(::IsValidCodePage)> failing(L"XMLParser.dll", "IsValidCodePage", FALSE);
        EXPECT_EQ(TreeFile(Declared("GB18030", "<r>\xD6\xD0</r>")).Text(L""), L"中");
        EXPECT_FALSE(TreeFile(Declared("GB18030", "<r>\xA2\xE3</r>")).Loads()) << "the euro sign, of GB 18030 only";
    });
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
         {"klingon",     "utf-9",   "windows-99999", "windows-",  "windows-12a", "windows-4294967296",
          "iso-8859-99", "UTF-16",  "UTF-16LE",      "utf-32",    "GB 2312",     "cp65001x",
          "cp65000",     "cp1200",  "cp0",           "cp1",       "cp3",         "cp42",
          "utf-7",       "iso8859", "iso8859-",      "iso88591x", "ibm",         "ibm037",
          "x-cp",        "x-cp3",   "us ",           "latin",     "latin0",      "hz-gb-2312",
          "big5-hkscs"})
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
