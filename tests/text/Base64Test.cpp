#include "support/GuardedBuffer.h"
#include "support/Threads.h"
#include "text/Base64Model.h"

#include <Kelpkit/Text.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <malloc.h>
#include <wincrypt.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace KELPKIT;
using test::GuardedBuffer;
using test::InLines;
using test::ModelDecode;
using test::ModelEncode;
using Random = test::Base64Random;

namespace
{

// What Decode makes of the first `length` characters of a text, its zero byte not included; what it must not touch is
// looked at, too.
std::string Decoded(const std::string& text, std::size_t length, std::size_t room)
{
    constexpr char kUntouched = '\x5A';
    std::vector<char> out(room + 32, kUntouched);
    const int count = CBase64::Decode(text.data(), out.data(), static_cast<int>(length));
    const auto end = out.begin() + count;
    EXPECT_EQ(*end, '\0');
    EXPECT_EQ(std::count(end + 1, out.end(), kUntouched), out.end() - end - 1);
    return {out.begin(), end};
}

std::string Decoded(const std::string& text)
{
    return Decoded(text, text.size(), text.size() + 8);
}

// What Windows writes for data.
std::string SystemText(const std::string& data)
{
    constexpr DWORD kFormat = CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF;
    const auto* const bytes = reinterpret_cast<const BYTE*>(data.data());
    const auto size = static_cast<DWORD>(data.size());
    DWORD length = 0;
    EXPECT_TRUE(::CryptBinaryToStringA(bytes, size, kFormat, nullptr, &length));
    std::string text(length, '\0');
    EXPECT_TRUE(::CryptBinaryToStringA(bytes, size, kFormat, text.data(), &length));
    text.resize(length);
    return text;
}

// RFC 4648, section 10, and more.
const std::pair<std::string, std::string> kVectors[] = {
    {"", ""},
    {"f", "Zg=="},
    {"fo", "Zm8="},
    {"foo", "Zm9v"},
    {"foob", "Zm9vYg=="},
    {"fooba", "Zm9vYmE="},
    {"foobar", "Zm9vYmFy"},
    {"Man", "TWFu"},
    {"Ma", "TWE="},
    {"M", "TQ=="},
    {std::string("\x00\x01\x02", 3), "AAEC"},
    {"\xFB\xFF\xBF", "+/+/"},
};

} // namespace

TEST(Base64Encode, GivesThePublishedTexts)
{
    for (const auto& [data, text] : kVectors) {
        EXPECT_EQ(CBase64::Encode(data), text);
        EXPECT_EQ(CBase64::Encode(data.data(), static_cast<int>(data.size())), text);
    }
}

TEST(Base64Encode, OneHundredBytesGive136CharactersOnOneLine)
{
    const std::string text = CBase64::Encode(std::string(100, 'x'));
    EXPECT_EQ(text.size(), 136U);
    EXPECT_EQ(text.find_first_of("\r\n"), std::string::npos);
}

TEST(Base64Encode, ALengthOfZeroOrLessGivesNothing)
{
    EXPECT_EQ(CBase64::Encode("abc", 0), "");
    EXPECT_EQ(CBase64::Encode("abc", -1), "");
    EXPECT_EQ(CBase64::Encode(nullptr, 0), "");
}

TEST(Base64Encode, TakesEmbeddedZeros)
{
    EXPECT_EQ(CBase64::Encode(std::string("a\0b\0", 4)), "YQBiAA==");
}

TEST(Base64Encode, EveryValueOfEveryPlaceIsEncodedAsTheModelDoes)
{
    for (unsigned value = 0; value < 256; ++value) {
        for (std::size_t place = 0; place < 20; ++place) {
            std::string data(20, '\x33');
            data[place] = static_cast<char>(value);
            ASSERT_EQ(CBase64::Encode(data), ModelEncode(data));
        }
    }
}

TEST(Base64Encode, RandomDataIsEncodedAsTheModelDoes)
{
    Random random(1);
    for (int round = 0; round < 200000; ++round) {
        const std::string data = random.Bytes(random.Below(120));
        ASSERT_EQ(CBase64::Encode(data), ModelEncode(data)) << testing::PrintToString(data);
    }
}

TEST(Base64Encode, RandomDataIsEncodedAsTheSystemDoes)
{
    Random random(8);
    for (int round = 0; round < 20000; ++round) {
        const std::string data = random.Bytes(1 + random.Below(120));
        ASSERT_EQ(CBase64::Encode(data), SystemText(data)) << testing::PrintToString(data);
    }
}

TEST(Base64Encode, IsTheSameWhateverComesAfterTheLength)
{
    Random random(9);
    for (int round = 0; round < 100000; ++round) {
        const std::size_t length = random.Below(200);
        const std::string data = random.Bytes(length + 64);
        ASSERT_EQ(CBase64::Encode(data.data(), static_cast<int>(length)), ModelEncode(data.substr(0, length)))
            << length << testing::PrintToString(data);
    }
}

TEST(Base64Encode, ReadsNothingBehindTheData)
{
    const GuardedBuffer buffer(300);
    for (std::size_t length = 0; length <= 300; ++length) {
        char* const data = buffer.Last(length);
        std::fill_n(data, length, 'k');
        ASSERT_EQ(CBase64::Encode(data, static_cast<int>(length)), ModelEncode(std::string(length, 'k')));
    }
}

TEST(Base64Decode, GivesThePublishedData)
{
    for (const auto& [data, text] : kVectors)
        EXPECT_EQ(Decoded(text), data);
}

TEST(Base64Decode, WritesAZeroByteBehindTheData)
{
    char out[5] = {'x', 'x', 'x', 'x', 'x'};
    EXPECT_EQ(CBase64::Decode("TWFu", out, 4), 3);
    EXPECT_EQ(std::string(out, 5), std::string("Man\0x", 5));
}

TEST(Base64Decode, ALengthOfZeroOrLessWritesTheZeroByteOnly)
{
    for (const int length : {0, -1}) {
        char out[2] = {'x', 'x'};
        EXPECT_EQ(CBase64::Decode("TWFu", out, length), 0);
        EXPECT_EQ(std::string(out, 2), std::string("\0x", 2));
    }
}

TEST(Base64Decode, SkipsFourCharactersBetweenQuanta)
{
    EXPECT_EQ(Decoded("TWFu\r\nTWFu"), "ManMan");
    EXPECT_EQ(Decoded("\n\1\2\rTWFu\1\2TWFu\r\n\r\n"), "ManMan");
    EXPECT_EQ(Decoded("\r\n"), "");
}

TEST(Base64Decode, SkipsNothingElse)
{
    // A blank, a tabulator and the control byte 3 begin a quantum, with the value 0.
    EXPECT_EQ(Decoded(" WFu"), ModelDecode("AWFu"));
    EXPECT_EQ(Decoded("\tWFu"), ModelDecode("AWFu"));
    EXPECT_EQ(Decoded("\3WFu"), ModelDecode("AWFu"));
}

TEST(Base64Decode, LineBreakInsideAQuantumCountsAsA)
{
    EXPECT_EQ(Decoded("T\rFu"), Decoded("TAFu"));
    EXPECT_EQ(Decoded("TW\nu"), Decoded("TWAu"));
    EXPECT_EQ(Decoded("TWF\1"), Decoded("TWFA"));
    EXPECT_EQ(Decoded("TW\r\nFuTWFu"), Decoded("TWAAFuTWFu"));
}

TEST(Base64Decode, CharactersOutsideTheAlphabetCountAsA)
{
    EXPECT_EQ(Decoded("-_.!"), std::string(3, '\0'));
    EXPECT_EQ(Decoded("\x80\xFF\xE4\xAB"), std::string(3, '\0'));
    EXPECT_EQ(Decoded(std::string(4, '\0')), std::string(3, '\0'));
    for (unsigned value = 0; value < 256; ++value) {
        for (std::size_t place = 0; place < 20; ++place) {
            std::string text(20, 'k');
            text[place] = static_cast<char>(value);
            ASSERT_EQ(Decoded(text), ModelDecode(text)) << value << " at " << place;
        }
    }
}

TEST(Base64Decode, PaddingInTheFirstOrSecondPlaceCountsAsA)
{
    EXPECT_EQ(Decoded("=WFu"), Decoded("AWFu"));
    EXPECT_EQ(Decoded("T=Fu"), Decoded("TAFu"));
}

TEST(Base64Decode, PaddingIsReadAgainWhereTheTextGoesOn)
{
    // "TQ" is read, then "==TQ" as the next quantum, and by then eight characters are counted.
    EXPECT_EQ(Decoded("TQ==TQ=="), std::string("M\0\4\xD0", 4));
    // "TWE" is read, then "=TWF".
    EXPECT_EQ(Decoded("TWE=TWFu"), ModelDecode("TWE=TWFu"));
    EXPECT_EQ(Decoded("TWE=TWFu").substr(0, 3), std::string("Ma\1", 3));
}

TEST(Base64Decode, WhatALastQuantumLacksCountsAsA)
{
    EXPECT_EQ(Decoded("T"), std::string("L\0\0", 3));
    EXPECT_EQ(Decoded("TQ"), std::string("M\0\0", 3));
    EXPECT_EQ(Decoded("TWE"), std::string("Ma\0", 3));
    EXPECT_EQ(Decoded("TWFuT"), std::string("ManL\0\0", 6));
    EXPECT_EQ(Decoded("TWFuTQ="), "ManM");
}

TEST(Base64Decode, AMillionRandomTextsAreDecodedAsTheModelDoes)
{
    Random random(2);
    for (int round = 0; round < 1000000; ++round) {
        const std::string text = random.Text();
        ASSERT_EQ(Decoded(text), ModelDecode(text)) << testing::PrintToString(text);
    }
}

TEST(Base64Decode, TouchesNothingBehindTheTextAndTheResult)
{
    const GuardedBuffer in(1024);
    const GuardedBuffer out(1024);
    Random random(3);
    for (int round = 0; round < 100000; ++round) {
        const std::string text = random.Text();
        const std::string data = ModelDecode(text);
        std::copy(text.begin(), text.end(), in.Last(text.size()));
        char* const result = out.Last(data.size() + 1);
        const int count = CBase64::Decode(in.Last(text.size()), result, static_cast<int>(text.size()));
        ASSERT_EQ(std::string(result, static_cast<std::size_t>(count)), data) << testing::PrintToString(text);
        ASSERT_EQ(result[count], '\0');
    }
}

TEST(Base64Decode, IsTheSameWhateverComesAfterTheLength)
{
    for (const std::string text : {"T", "TW", "TWF", "TWFu", "TWFuT", "TQ=", "TWFuTWFuTWFuTWFuTWFuTWFuTWFuTWFuT"}) {
        const std::string expected = Decoded(text);
        for (const char behind : {'/', '=', '\n', '\x80'}) {
            const std::string longer = text + std::string(64, behind);
            char out[128];
            const int count = CBase64::Decode(longer.data(), out, static_cast<int>(text.size()));
            EXPECT_EQ(std::string(out, static_cast<std::size_t>(count)), expected) << text << behind;
        }
    }
}

TEST(Base64Decode, IsTheSameWhateverRandomTextComesAfterTheLength)
{
    Random random(11);
    for (int round = 0; round < 100000; ++round) {
        std::string text = random.Text();
        const std::size_t cut = random.Below(2) == 0 ? 0 : random.Below(8);
        text.resize(text.size() - std::min(cut, text.size()));
        const std::string longer = text + random.Text() + std::string(64, "A/=\n"[random.Below(4)]);
        ASSERT_EQ(Decoded(longer, text.size(), text.size() + 8), ModelDecode(text)) << testing::PrintToString(longer);
    }
}

TEST(Base64Decode, RandomDataComesBackFromTheSystemsText)
{
    Random random(12);
    for (int round = 0; round < 20000; ++round) {
        const std::string data = random.Bytes(1 + random.Below(300));
        ASSERT_EQ(Decoded(SystemText(data)), data);
    }
}

TEST(Base64Decode, NeedsNoMoreRoomThanItsHeaderSays)
{
    Random random(4);
    for (int round = 0; round < 100000; ++round) {
        const std::string text = random.Text();
        ASSERT_LE(Decoded(text).size(), (text.size() + 3) / 4 * 3) << testing::PrintToString(text);
    }
}

TEST(Base64Decode, LongTextsAreDecodedWhole)
{
    Random random(5);
    const std::string data = random.Bytes((1 << 20) + 1);
    const std::string text = CBase64::Encode(data);
    EXPECT_TRUE(text == ModelEncode(data));
    EXPECT_TRUE(Decoded(text) == data);
    for (const std::size_t width : {4U, 64U, 76U, 1000U})
        EXPECT_TRUE(Decoded(InLines(text, width)) == data) << width;
}

TEST(Base64Decode, ManyThreadsDecodeAtOnce)
{
    std::vector<int> wrong(8);
    test::InThreads(wrong.size(), [&wrong](std::size_t thread) {
        Random random(static_cast<unsigned>(10 + thread));
        for (int round = 0; round < 2000; ++round) {
            const std::string data = random.Bytes(random.Below(300));
            std::string back;
            const int count = CBase64::DecodeEx(CBase64::Encode(data), back);
            wrong[thread] += count != static_cast<int>(data.size()) || back != data.substr(0, data.find('\0'));
        }
    });
    EXPECT_EQ(wrong, std::vector<int>(8));
}

TEST(Base64DecodeExToText, CutsAtAZeroByteButCountsAll)
{
    std::string out = "what was there before";
    EXPECT_EQ(CBase64::DecodeEx("AAEC", out), 3);
    EXPECT_EQ(out, "");
    EXPECT_EQ(CBase64::DecodeEx("TWFuAAEC", out), 6);
    EXPECT_EQ(out, "Man");
}

TEST(Base64DecodeExToText, TakesTextsOfEveryLength)
{
    Random random(6);
    for (int round = 0; round < 100000; ++round) {
        const std::string text = random.Text();
        const std::string data = ModelDecode(text);
        std::string out = "what was there before";
        ASSERT_EQ(CBase64::DecodeEx(text, out), static_cast<int>(data.size()));
        ASSERT_EQ(out, data.c_str());
    }
}

TEST(Base64DecodeExToText, MayStoreInItsArgument)
{
    std::string text = "TWFu";
    EXPECT_EQ(CBase64::DecodeEx(text, text), 3);
    EXPECT_EQ(text, "Man");
}

TEST(Base64DecodeExToBuffer, GivesMemoryThatTheCallerFrees)
{
    char* buffer = nullptr;
    int length = -1;
    CBase64::DecodeEx("AAEC", buffer, length);
    const std::unique_ptr<char[]> owner(buffer);
    ASSERT_EQ(length, 3);
    EXPECT_EQ(std::string(buffer, 4), std::string("\x00\x01\x02\x00", 4));
}

TEST(Base64DecodeExToBuffer, HasRoomForEveryText)
{
    Random random(7);
    for (int round = 0; round < 100000; ++round) {
        const std::string text = round < 1000 ? random.AlmostText(random.Below(4)) : random.Text();
        const std::string data = ModelDecode(text);
        char* buffer = nullptr;
        int length = -1;
        CBase64::DecodeEx(text, buffer, length);
        const std::unique_ptr<char[]> owner(buffer);
        ASSERT_EQ(length, static_cast<int>(data.size()));
        ASSERT_GT(_msize(buffer), data.size());
        ASSERT_EQ(std::string(buffer, data.size() + 1), data + '\0') << testing::PrintToString(text);
    }
}

TEST(Base64DecodeExToBuffer, EmptyTextGivesAZeroByte)
{
    char* buffer = nullptr;
    int length = -1;
    CBase64::DecodeEx("", buffer, length);
    const std::unique_ptr<char[]> owner(buffer);
    EXPECT_EQ(length, 0);
    EXPECT_EQ(buffer[0], '\0');
}

TEST(Base64, CanBeDeclaredAndAssigned)
{
    CBase64 one;
    const CBase64 other;
    EXPECT_EQ(&(one = other), &one);
}
