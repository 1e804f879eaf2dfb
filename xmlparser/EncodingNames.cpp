#include "EncodingNames.h"

namespace xmlparser
{
namespace
{

constexpr Encoding kAscii = {Encoding::kUtf8, false, Encoding::Part::kAscii};
constexpr Encoding kGb2312 = {Encoding::kGbk, false, Encoding::Part::kGb2312};

constexpr unsigned kBeforeIso8859 = 28590;

constexpr Encoding Iso8859(unsigned part)
{
    return {kBeforeIso8859 + part};
}

struct NamedEncoding {
    std::string_view name;
    Encoding encoding;
};

// The labels of the WHATWG's Encoding Standard and Windows' own. The standard reads ASCII and ISO 8859-1 as
// windows-1252; here each means itself, as in Windows. UTF-16 has no names here: its files are known by their first
// bytes, and a declaration in bytes that names it cannot be right. Nor has Big5-HKSCS: Windows' Big5 lacks what it
// adds.
constexpr NamedEncoding kNamedEncodings[] = {
    {"437", {437}},
    {"866", {866}},
    {"ansi_x3.4-1968", kAscii},
    {"ansi_x3.4-1986", kAscii},
    {"arabic", Iso8859(6)},
    {"ascii", kAscii},
    {"asmo-708", Iso8859(6)},
    {"big5", {950}},
    {"chinese", kGb2312},
    {"cn-big5", {950}},
    {"cn-gb", kGb2312},
    {"cp367", kAscii},
    {"cp819", Iso8859(1)},
    {"csascii", kAscii},
    {"csbig5", {950}},
    {"cseuckr", {949}},
    {"csgb2312", kGb2312},
    {"csgb231280", kGb2312},
    {"csibm866", {866}},
    {"csiso58gb231280", kGb2312},
    {"csiso88596e", Iso8859(6)},
    {"csiso88596i", Iso8859(6)},
    {"csiso88598e", Iso8859(8)},
    {"csiso88598i", Iso8859(8)},
    {"csisolatin1", Iso8859(1)},
    {"csisolatin2", Iso8859(2)},
    {"csisolatin3", Iso8859(3)},
    {"csisolatin4", Iso8859(4)},
    {"csisolatin5", Iso8859(9)},
    {"csisolatin9", Iso8859(15)},
    {"csisolatinarabic", Iso8859(6)},
    {"csisolatincyrillic", Iso8859(5)},
    {"csisolatingreek", Iso8859(7)},
    {"csisolatinhebrew", Iso8859(8)},
    {"cskoi8r", {20866}},
    {"csksc56011987", {949}},
    {"cspc8codepage437", {437}},
    {"csshiftjis", {932}},
    {"cswindows31j", {932}},
    {"cyrillic", Iso8859(5)},
    {"dos-874", {874}},
    {"ecma-114", Iso8859(6)},
    {"ecma-118", Iso8859(7)},
    {"elot_928", Iso8859(7)},
    {"euc-cn", kGb2312},
    {"euc-kr", {949}},
    {"gb18030", {Encoding::kGb18030}},
    {"gb2312", kGb2312},
    {"gb2312-80", kGb2312},
    {"gb231280", kGb2312},
    {"gb_2312", kGb2312},
    {"gb_2312-80", kGb2312},
    {"gbk", {Encoding::kGbk}},
    {"greek", Iso8859(7)},
    {"greek8", Iso8859(7)},
    {"hebrew", Iso8859(8)},
    {"ibm367", kAscii},
    {"ibm819", Iso8859(1)},
    {"iso-8859-11", {874}},
    {"iso-8859-6-e", Iso8859(6)},
    {"iso-8859-6-i", Iso8859(6)},
    {"iso-8859-8-e", Iso8859(8)},
    {"iso-8859-8-i", Iso8859(8)},
    {"iso-ir-100", Iso8859(1)},
    {"iso-ir-101", Iso8859(2)},
    {"iso-ir-109", Iso8859(3)},
    {"iso-ir-110", Iso8859(4)},
    {"iso-ir-126", Iso8859(7)},
    {"iso-ir-127", Iso8859(6)},
    {"iso-ir-138", Iso8859(8)},
    {"iso-ir-144", Iso8859(5)},
    {"iso-ir-148", Iso8859(9)},
    {"iso-ir-149", {949}},
    {"iso-ir-58", kGb2312},
    {"iso-ir-6", kAscii},
    {"iso646-us", kAscii},
    {"iso8859-11", {874}},
    {"iso885911", {874}},
    {"iso_646.irv:1991", kAscii},
    {"iso_8859-1:1987", Iso8859(1)},
    {"iso_8859-2:1987", Iso8859(2)},
    {"iso_8859-3:1988", Iso8859(3)},
    {"iso_8859-4:1988", Iso8859(4)},
    {"iso_8859-5:1988", Iso8859(5)},
    {"iso_8859-6:1987", Iso8859(6)},
    {"iso_8859-7:1987", Iso8859(7)},
    {"iso_8859-8:1988", Iso8859(8)},
    {"iso_8859-9:1989", Iso8859(9)},
    {"koi", {20866}},
    {"koi8", {20866}},
    {"koi8-r", {20866}},
    {"koi8-ru", {21866}},
    {"koi8-u", {21866}},
    {"koi8_r", {20866}},
    {"koi8r", {20866}},
    {"korean", {949}},
    {"ks-c-5601", {949}},
    {"ks-c5601", {949}},
    {"ks_c_5601", {949}},
    {"ks_c_5601-1987", {949}},
    {"ks_c_5601-1989", {949}},
    {"ks_c_5601_1987", {949}},
    {"ksc5601", {949}},
    {"ksc_5601", {949}},
    {"l1", Iso8859(1)},
    {"l2", Iso8859(2)},
    {"l3", Iso8859(3)},
    {"l4", Iso8859(4)},
    {"l5", Iso8859(9)},
    {"l9", Iso8859(15)},
    {"latin1", Iso8859(1)},
    {"latin2", Iso8859(2)},
    {"latin3", Iso8859(3)},
    {"latin4", Iso8859(4)},
    {"latin5", Iso8859(9)},
    {"latin9", Iso8859(15)},
    {"logical", Iso8859(8)},
    {"ms932", {932}},
    {"ms_kanji", {932}},
    {"shift-jis", {932}},
    {"shift_jis", {932}},
    {"sjis", {932}},
    {"sun_eu_greek", Iso8859(7)},
    {"tis-620", {874}},
    {"unicode-1-1-utf-8", {Encoding::kUtf8}},
    {"unicode-2-0-utf-8", {Encoding::kUtf8}},
    {"unicode11utf8", {Encoding::kUtf8}},
    {"unicode20utf8", {Encoding::kUtf8}},
    {"us", kAscii},
    {"us-ascii", kAscii},
    {"utf-8", {Encoding::kUtf8}},
    {"utf8", {Encoding::kUtf8}},
    {"visual", Iso8859(8)},
    {"windows-31j", {932}},
    {"x-ansi", {1252}},
    {"x-euc-cn", kGb2312},
    {"x-gbk", {Encoding::kGbk}},
    {"x-ms-cp932", {932}},
    {"x-sjis", {932}},
    {"x-unicode-1-1-utf-8", {Encoding::kUtf8}},
    {"x-unicode-2-0-utf-8", {Encoding::kUtf8}},
    {"x-unicode20utf8", {Encoding::kUtf8}},
    {"x-x-big5", {950}},
};

// Names that end in a number: that of a code page, less the base.
struct NumberedEncoding {
    std::string_view prefix;
    unsigned base;
};

constexpr NumberedEncoding kNumberedEncodings[] = {
    {"cp", 0},
    {"ibm", 0},
    {"iso-8859-", kBeforeIso8859},
    {"iso8859", kBeforeIso8859},
    {"iso8859-", kBeforeIso8859},
    {"iso_8859-", kBeforeIso8859},
    {"windows-", 0},
    {"x-cp", 0},
};

// The numbers below stand for "the system's" code pages, whichever these are.
constexpr unsigned kLeastCodePage = 437;

std::optional<unsigned> Number(std::string_view digits)
{
    if (digits.empty() || digits.size() > 5 || digits.find_first_not_of("0123456789") != digits.npos)
        return std::nullopt;
    unsigned number = 0;
    for (const char digit : digits)
        number = number * 10 + static_cast<unsigned>(digit - '0');
    return number;
}

} // namespace

std::optional<Encoding> EncodingNamed(std::string_view lowerCaseName)
{
    for (const NamedEncoding& named : kNamedEncodings) {
        if (named.name == lowerCaseName)
            return named.encoding;
    }
    for (const NumberedEncoding& numbered : kNumberedEncodings) {
        if (lowerCaseName.substr(0, numbered.prefix.size()) != numbered.prefix)
            continue;
        const auto number = Number(lowerCaseName.substr(numbered.prefix.size()));
        if (number && numbered.base + *number >= kLeastCodePage)
            return Encoding{numbered.base + *number};
    }
    return std::nullopt;
}

} // namespace xmlparser
