#include "system/DescriptorText.h"

#include "support/GuardedBuffer.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>

using namespace KELPKIT;

namespace
{

constexpr std::size_t kSize = 10000;

// A descriptor whose end nobody may pass, with a text at an offset and zeros, or something else, around.
class Descriptor
{
public:
    explicit Descriptor(char filler = '\0') : m_buffer(kSize) { std::memset(Bytes(), filler, kSize); }

    void Put(std::size_t offset, const std::string& text) const
    {
        std::memcpy(Bytes() + offset, text.c_str(), text.size() + 1);
    }
    std::string At(std::uint32_t offset) const { return DescriptorText(Bytes(), kSize, offset); }

private:
    char* Bytes() const { return m_buffer.Last(kSize); }

    test::GuardedBuffer m_buffer;
};

} // namespace

TEST(DescriptorText, IsTheTextAtTheOffset)
{
    const Descriptor descriptor;
    descriptor.Put(100, "WD-WCC4N1234567");
    EXPECT_EQ(descriptor.At(100), "WD-WCC4N1234567");
    EXPECT_EQ(descriptor.At(103), "WCC4N1234567");
    EXPECT_EQ(descriptor.At(115), "") << "the zero behind it";
}

TEST(DescriptorText, IsEmptyForOffsetZero)
{
    const Descriptor descriptor('x');
    descriptor.Put(10, "");
    EXPECT_EQ(descriptor.At(0), "");
    EXPECT_EQ(descriptor.At(1), "xxxxxxxxx");
}

TEST(DescriptorText, IsEmptyForANegativeOffset)
{
    const Descriptor descriptor;
    for (const std::int32_t offset : {-1, -2, -10000, -2147483647 - 1})
        EXPECT_EQ(descriptor.At(static_cast<std::uint32_t>(offset)), "") << offset;
}

TEST(DescriptorText, IsEmptyForAnOffsetBehindTheDescriptor)
{
    const Descriptor descriptor;
    for (const std::uint32_t offset : {10000U, 10001U, 14096U, 1000000U, 0x7FFFFFFFU})
        EXPECT_EQ(descriptor.At(offset), "") << offset;
}

TEST(DescriptorText, IsEmptyForATextWithoutAnEnd)
{
    const Descriptor descriptor('x');
    EXPECT_EQ(descriptor.At(1), "");
    EXPECT_EQ(descriptor.At(9998), "");
    EXPECT_EQ(descriptor.At(9999), "");
}

TEST(DescriptorText, MayEndInTheLastByte)
{
    const Descriptor descriptor;
    descriptor.Put(9995, "wxyz");
    EXPECT_EQ(descriptor.At(9995), "wxyz");
    EXPECT_EQ(descriptor.At(9998), "z");
    EXPECT_EQ(descriptor.At(9999), "");
}

TEST(DescriptorText, ReadsNothingOutsideWhateverStandsThere)
{
    test::Random random(7);
    for (int round = 0; round < 200; ++round) {
        const std::size_t size = 1 + random.Below(64);
        const test::GuardedBuffer buffer(64);
        char* const bytes = buffer.Last(size);
        for (std::size_t i = 0; i < size; ++i)
            bytes[i] = "\0 059aAfFgz\x7F\xFF"[random.Below(14)];
        for (std::uint32_t offset = 0; offset < 70; ++offset)
            EXPECT_LE(DescriptorText(bytes, size, offset).size(), size);
    }
}

TEST(DescriptorText, MayFillADescriptorOfAnyLength)
{
    for (std::size_t length = 0; length <= 300; ++length) {
        for (const char c : {'g', '4', '\x7F'}) {
            const std::string text(length, c);
            const test::GuardedBuffer buffer(length + 2);
            char* const bytes = buffer.Last(length + 2);
            bytes[0] = 'x';
            std::memcpy(bytes + 1, text.c_str(), length + 1);
            EXPECT_EQ(DescriptorText(bytes, length + 2, 1), DecodeDescriptorText(text)) << length;
        }
    }
}

TEST(DecodeDescriptorText, DecodesHexadecimalDigits)
{
    const std::pair<const char*, const char*> cases[] = {
        {"414243", "ABC"}, {"4a4B4c", "JKL"}, {"7e20", "~ "}, {"2020202057442D5758", "    WD-WX"}, {"6D6f6e", "mon"},
    };
    for (const auto& [text, decoded] : cases)
        EXPECT_EQ(DecodeDescriptorText(text), decoded) << text;
}

TEST(DecodeDescriptorText, DropsAnUnpairedLastDigit)
{
    EXPECT_EQ(DecodeDescriptorText("41424"), "AB");
    EXPECT_EQ(DecodeDescriptorText("4"), "");
    EXPECT_EQ(DecodeDescriptorText("F"), "");
}

TEST(DecodeDescriptorText, TakesWhiteSpaceForZero)
{
    EXPECT_EQ(DecodeDescriptorText("4 "), "@");
    EXPECT_EQ(DecodeDescriptorText("4\t5\n6\v7\f"), "@P`p");
    EXPECT_EQ(DecodeDescriptorText("5\r"), "P");
    EXPECT_EQ(DecodeDescriptorText("  "), std::string(1, '\0'));
    EXPECT_EQ(DecodeDescriptorText(" 4"), " 4") << "04 is not printable";
}

TEST(DecodeDescriptorText, DecodesZeros)
{
    EXPECT_EQ(DecodeDescriptorText("410042"), std::string("A\0B", 3));
    EXPECT_EQ(DecodeDescriptorText("0000"), std::string(2, '\0'));
}

TEST(DecodeDescriptorText, KeepsTextsThatAreNoHexadecimalDigits)
{
    for (const char* const text : {"WD-WCC4N1234567", "4142G", "4142g4", "S3Z9NB0K 12345", "~", "-", "41 Z"})
        EXPECT_EQ(DecodeDescriptorText(text), text);
}

TEST(DecodeDescriptorText, KeepsDigitsThatDecodeToNothingPrintable)
{
    for (const char* const text : {"1F", "7F", "80", "FF", "DEADBEEF", "4142431F", "123", "0A"})
        EXPECT_EQ(DecodeDescriptorText(text), text);
}

TEST(DecodeDescriptorText, IsEmptyForATextThatIsNotPrintable)
{
    for (const char* const text : {"WD\x01", "\x7F", "\xD6\xD0", "\xFFxyz", "x\n", "\x1F"})
        EXPECT_EQ(DecodeDescriptorText(text), "");
}

TEST(DecodeDescriptorText, OfAnEmptyTextIsEmpty)
{
    EXPECT_EQ(DecodeDescriptorText(""), "");
}

TEST(DecodeDescriptorText, AsksNoLocale)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    ASSERT_NE(std::setlocale(LC_ALL, ""), nullptr);
    EXPECT_EQ(DecodeDescriptorText("x\xE9"), "");
    EXPECT_EQ(DecodeDescriptorText("E9E9"), "E9E9");
    EXPECT_EQ(DecodeDescriptorText("4\xA0"), "") << "a space in some code pages";
    std::setlocale(LC_ALL, before.c_str());
}

TEST(DecodeDescriptorText, OfEveryPairOfCharactersIsItsByteOrTheText)
{
    const auto digit = [](int c) {
        const std::string digits = "0123456789abcdef";
        const std::string capitals = "0123456789ABCDEF";
        const std::size_t found = std::min(digits.find(static_cast<char>(c)), capitals.find(static_cast<char>(c)));
        return c == ' ' || (c >= 9 && c <= 13) ? 0 : found == std::string::npos ? -1 : static_cast<int>(found);
    };
    for (int first = 1; first < 256; ++first) {
        for (int second = 1; second < 256; ++second) {
            const std::string text = {static_cast<char>(first), static_cast<char>(second)};
            const int decoded = digit(first) * 16 + digit(second);
            const bool isHex = digit(first) >= 0 && digit(second) >= 0;
            const bool isPrintable = std::min(first, second) >= 32 && std::max(first, second) < 127;
            std::string expected = isPrintable ? text : "";
            if (isHex && (decoded == 0 || (decoded >= 32 && decoded < 127)))
                expected = static_cast<char>(decoded);
            EXPECT_EQ(DecodeDescriptorText(text), expected) << first << " " << second;
        }
    }
}
