#include "Conversion.h"

#include "support/FailingCall.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <optional>
#include <string>

using namespace std::string_literals;
using test::FailingCall;
using xmlparser::Encoding;

namespace
{

constexpr const wchar_t* kThisProgram = L"XmlParserUnitTests.exe";

constexpr Encoding kUtf8 = {};
constexpr Encoding kMarkedUtf8 = {65001, true};
constexpr Encoding kAscii = {65001, false, Encoding::Part::kAscii};
constexpr Encoding kLittle = {Encoding::kUtf16LittleEndian};
constexpr Encoding kMarkedLittle = {Encoding::kUtf16LittleEndian, true};
constexpr Encoding kBig = {Encoding::kUtf16BigEndian};
constexpr Encoding kMarkedBig = {Encoding::kUtf16BigEndian, true};
constexpr Encoding kGbk = {936};
constexpr Encoding kGb2312 = {936, false, Encoding::Part::kGb2312};
constexpr Encoding kGb18030 = {54936};
constexpr Encoding kLatin1 = {28591};
constexpr Encoding kUnknown = {12345};

// A file in UTF-8; nothing where that fails.
std::optional<std::string> Decoded(const Encoding& encoding, std::string file)
{
    return xmlparser::ToUtf8(encoding, file) ? std::optional(file) : std::nullopt;
}

// A text as the bytes of a file; nothing where that fails.
std::optional<std::string> Encoded(const Encoding& encoding, std::string text)
{
    return xmlparser::FromUtf8(encoding, text) ? std::optional(text) : std::nullopt;
}

} // namespace

TEST(ToUtf8, TakesAnyText)
{
    EXPECT_EQ(xmlparser::ToUtf8(L""), "");
    EXPECT_EQ(xmlparser::ToUtf8(L"aé中\xD83D\xDE00\xFFFF"), "a\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80\xEF\xBF\xBF");
    EXPECT_EQ(xmlparser::ToUtf8(L"a\0b\0"s), "a\0b\0"s);
    EXPECT_EQ(xmlparser::ToUtf8(L"\xD83Dx\xDE00"), "\xEF\xBF\xBDx\xEF\xBF\xBD") << "halves of a pair";
}

TEST(ToUtf8, GivesNothingForMoreThanWindowsCanCount)
{
    // Nothing of it is read.
    EXPECT_EQ(xmlparser::ToUtf8(std::wstring_view(L"", MAXINT / 3 + 1)), "");
}

TEST(ToUtf8, TakesUtf8AsItIs)
{
    const std::string text = "a\0\xE4\xB8\xAD\xFF\xC4"s;
    EXPECT_EQ(Decoded(kUtf8, text), text);
    EXPECT_EQ(Decoded(kAscii, text), text);
    EXPECT_EQ(Decoded(kMarkedUtf8, "\xEF\xBB\xBF" + text), text);
    EXPECT_EQ(Decoded(kMarkedUtf8, "\xEF\xBB\xBF\xEF\xBB\xBF"), "\xEF\xBB\xBF") << "one mark";
    EXPECT_EQ(Decoded(kUtf8, "\xEF\xBB\xBFx"), "\xEF\xBB\xBFx") << "no mark";
    EXPECT_EQ(Decoded(kUtf8, ""), "");
}

TEST(ToUtf8, TakesEitherByteOrder)
{
    const std::string text = "a\0\xE4\xB8\xAD\xF0\x9F\x98\x80"s;
    EXPECT_EQ(Decoded(kLittle, "a\0\0\0\x2D\x4E\x3D\xD8\x00\xDE"s), text);
    EXPECT_EQ(Decoded(kMarkedLittle, "\xFF\xFE"
                                     "a\0\0\0\x2D\x4E\x3D\xD8\x00\xDE"s),
              text);
    EXPECT_EQ(Decoded(kBig, "\0a\0\0\x4E\x2D\xD8\x3D\xDE\x00"s), text);
    EXPECT_EQ(Decoded(kMarkedBig, "\xFE\xFF\0a\0\0\x4E\x2D\xD8\x3D\xDE\x00"s), text);
    for (const Encoding& encoding : {kLittle, kBig})
        EXPECT_EQ(Decoded(encoding, ""), "");
    EXPECT_EQ(Decoded(kMarkedLittle, "\xFF\xFE"), "");
}

TEST(ToUtf8, RefusesUtf16WithHalves)
{
    EXPECT_FALSE(Decoded(kLittle, "a"s)) << "of a unit";
    EXPECT_FALSE(Decoded(kBig, "\0a\0"s)) << "of a unit";
    EXPECT_FALSE(Decoded(kLittle, "\x3D\xD8"s)) << "of a pair";
    EXPECT_FALSE(Decoded(kLittle, "\x00\xDE"s)) << "of a pair";
    EXPECT_FALSE(Decoded(kBig, "\xDE\x00\xD8\x3D"s)) << "of a pair";
}

TEST(ToUtf8, ReadsCodePagesStrictly)
{
    EXPECT_EQ(Decoded(kGbk, "a\0\xD6\xD0\x81\x40"s), "a\0\xE4\xB8\xAD\xE4\xB8\x82"s);
    EXPECT_EQ(Decoded(kGb2312, "\x81\x40"), "\xE4\xB8\x82") << "it is read as GBK";
    EXPECT_EQ(Decoded(kLatin1, "\xFC"), "\xC3\xBC");
    EXPECT_EQ(Decoded(kGbk, ""), "");
    EXPECT_FALSE(Decoded(kGbk, "x\xFF"));
    EXPECT_FALSE(Decoded(kGbk, "x\xD6")) << "half a character";
    EXPECT_FALSE(Decoded(kUnknown, "x"));
}

TEST(ToUtf8, FailsWhereTheSystemDoes)
{
    for (const char* const name : {"MultiByteToWideChar", "WideCharToMultiByte"}) {
        const FailingCall<int()> failing(kThisProgram, name, 0);
        EXPECT_FALSE(Decoded(kGbk, "\xD6\xD0")) << name;
    }
    const FailingCall<int()> failing(kThisProgram, "WideCharToMultiByte", 0);
    EXPECT_FALSE(Decoded(kLittle, "a\0"s));
    EXPECT_EQ(xmlparser::ToUtf8(L"a"), "");
}

TEST(FromUtf8, MarksWhatWasMarked)
{
    EXPECT_EQ(Encoded(kUtf8, "a\0\xFF"s), "a\0\xFF"s) << "errors stay";
    EXPECT_EQ(Encoded(kMarkedUtf8, "a\0"s), "\xEF\xBB\xBF"
                                            "a\0"s);
    EXPECT_EQ(Encoded(kMarkedUtf8, ""), "\xEF\xBB\xBF");
    EXPECT_EQ(Encoded(kMarkedLittle, ""), "\xFF\xFE");
    EXPECT_EQ(Encoded(kMarkedBig, ""), "\xFE\xFF");
    EXPECT_EQ(Encoded(kUtf8, ""), "");
}

TEST(FromUtf8, WritesEitherByteOrder)
{
    const std::string text = "a\0\xE4\xB8\xAD\xF0\x9F\x98\x80"s;
    EXPECT_EQ(Encoded(kLittle, text), "a\0\0\0\x2D\x4E\x3D\xD8\x00\xDE"s);
    EXPECT_EQ(Encoded(kMarkedLittle, text), "\xFF\xFE"
                                            "a\0\0\0\x2D\x4E\x3D\xD8\x00\xDE"s);
    EXPECT_EQ(Encoded(kBig, text), "\0a\0\0\x4E\x2D\xD8\x3D\xDE\x00"s);
    EXPECT_EQ(Encoded(kMarkedBig, text), "\xFE\xFF\0a\0\0\x4E\x2D\xD8\x3D\xDE\x00"s);
}

TEST(FromUtf8, RefusesWhatTheEncodingCannotHold)
{
    EXPECT_EQ(Encoded(kGbk, "a\0\xE4\xB8\xAD"s), "a\0\xD6\xD0"s);
    EXPECT_EQ(Encoded(kLatin1, "\xC3\xBC"), "\xFC");
    EXPECT_FALSE(Encoded(kGbk, "\xEA\xB0\x80"));
    EXPECT_FALSE(Encoded(kLatin1, "\xE4\xB8\xAD"));
    EXPECT_FALSE(Encoded({1252}, "\xC4\x83")) << "no letter that only looks alike";
    EXPECT_FALSE(Encoded(kGbk, "\xFF")) << "it is no UTF-8";
    EXPECT_FALSE(Encoded(kLittle, "\xFF")) << "it is no UTF-8";
    EXPECT_FALSE(Encoded(kUnknown, "x"));
}

TEST(FromUtf8, FailsWhereTheSystemDoes)
{
    for (const char* const name : {"MultiByteToWideChar", "WideCharToMultiByte"}) {
        const FailingCall<int()> failing(kThisProgram, name, 0);
        EXPECT_FALSE(Encoded(kGbk, "\xE4\xB8\xAD")) << name;
    }
    const FailingCall<int()> failing(kThisProgram, "MultiByteToWideChar", 0);
    EXPECT_FALSE(Encoded(kLittle, "a"));
}

TEST(CanHold, SaysWhatAnEncodingHasBytesFor)
{
    const struct {
        Encoding encoding;
        std::wstring held;
        std::wstring refused;
    } cases[] = {
        {kUtf8, L"a\x7F\x80中\xFFFF", L""}, {kAscii, L"a\x7F", L"\x80é中"},        {kLittle, L"a中\xE000", L""},
        {kBig, L"a中\xE000", L""},          {kLatin1, L"aü\x80\xFF", L"\x100中€"}, {{1252}, L"aü€", L"ă中"},
        {kGbk, L"a中丂é", L"€가"},          {kGb2312, L"a中é·", L"丂镕€가"},       {{950}, L"a中", L"国"},
        {kUnknown, L"a", L"é中"},
    };
    for (const auto& each : cases) {
        for (const wchar_t unit : each.held)
            EXPECT_TRUE(xmlparser::CanHold(each.encoding, {&unit, 1})) << each.encoding.codePage << " " << unit;
        for (const wchar_t unit : each.refused)
            EXPECT_FALSE(xmlparser::CanHold(each.encoding, {&unit, 1})) << each.encoding.codePage << " " << unit;
    }
}

TEST(CanHold, TakesPairs)
{
    for (const Encoding& encoding : {kUtf8, kLittle, kBig})
        EXPECT_TRUE(xmlparser::CanHold(encoding, L"\xD83D\xDE00"));
    for (const Encoding& encoding : {kAscii, kGbk, kGb2312, kLatin1})
        EXPECT_FALSE(xmlparser::CanHold(encoding, L"\xD83D\xDE00")) << encoding.codePage;
}

TEST(CanHold, KnowsGb18030WhereWindowsDoes)
{
    const bool isKnown = ::IsValidCodePage(54936) != FALSE;
    EXPECT_TRUE(xmlparser::CanHold(kGb18030, L"中"));
    for (const wchar_t* const character : {L"가", L"\xE000", L"\xD83D\xDE00"})
        EXPECT_EQ(xmlparser::CanHold(kGb18030, character), isKnown) << testing::PrintToString(character);
}

TEST(CanHold, RefusesWhereTheSystemDoes)
{
    for (const char* const name : {"MultiByteToWideChar", "WideCharToMultiByte"}) {
        const FailingCall<int()> failing(kThisProgram, name, 0);
        EXPECT_FALSE(xmlparser::CanHold(kGbk, L"中")) << name;
    }
}
