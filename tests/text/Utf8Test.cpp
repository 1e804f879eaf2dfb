#include "text/Utf8.h"
#include "support/GuardedBuffer.h"
#include "support/Random.h"
#include "text/WayName.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>

using namespace KELPKIT;
using test::GuardedBuffer;

namespace
{

// The Unicode Standard's table of well-formed sequences, row by row: nothing where the text is none, or has a zero.
std::optional<std::wstring> ModelDecode(const std::string& text)
{
    std::wstring units;
    for (std::size_t at = 0; at < text.size();) {
        const auto byte = [&](std::size_t place) {
            return at + place < text.size() ? static_cast<unsigned char>(text[at + place]) : 0U;
        };
        const auto isTrail = [&](std::size_t place, unsigned first = 0x80, unsigned last = 0xBF) {
            return byte(place) >= first && byte(place) <= last;
        };
        const unsigned lead = byte(0);
        if (lead >= 0x01 && lead <= 0x7F) {
            units += static_cast<wchar_t>(lead);
            at += 1;
        } else if (lead >= 0xC2 && lead <= 0xDF && isTrail(1)) {
            units += static_cast<wchar_t>((lead - 0xC0) * 0x40 + byte(1) - 0x80);
            at += 2;
        } else if (lead >= 0xE0 && lead <= 0xEF && isTrail(1, lead == 0xE0 ? 0xA0 : 0x80, lead == 0xED ? 0x9F : 0xBF) &&
                   isTrail(2)) {
            units += static_cast<wchar_t>((lead - 0xE0) * 0x1000 + (byte(1) - 0x80) * 0x40 + byte(2) - 0x80);
            at += 3;
        } else if (lead >= 0xF0 && lead <= 0xF4 && isTrail(1, lead == 0xF0 ? 0x90 : 0x80, lead == 0xF4 ? 0x8F : 0xBF) &&
                   isTrail(2) && isTrail(3)) {
            const unsigned code =
                (lead - 0xF0) * 0x40000 + (byte(1) - 0x80) * 0x1000 + (byte(2) - 0x80) * 0x40 + byte(3) - 0x80;
            units += static_cast<wchar_t>(0xD800 + (code - 0x10000) / 0x400);
            units += static_cast<wchar_t>(0xDC00 + (code - 0x10000) % 0x400);
            at += 4;
        } else {
            return std::nullopt;
        }
    }
    return units;
}

std::optional<std::string> ModelEncode(const std::wstring& text)
{
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); ++at) {
        unsigned code = text[at];
        if (code >= 0xD800 && code <= 0xDFFF) {
            const unsigned second = at + 1 < text.size() ? text[at + 1] : 0;
            if (code > 0xDBFF || second < 0xDC00 || second > 0xDFFF)
                return std::nullopt;
            code = 0x10000 + (code - 0xD800) * 0x400 + second - 0xDC00;
            ++at;
        }
        if (code == 0)
            return std::nullopt;
        const unsigned trails = (code >= 0x80 ? 1U : 0U) + (code >= 0x800 ? 1U : 0U) + (code >= 0x10000 ? 1U : 0U);
        const unsigned leads[] = {0, 0xC0, 0xE0, 0xF0};
        bytes += static_cast<char>(leads[trails] + (code >> 6 * trails));
        for (unsigned left = trails; left > 0; --left)
            bytes += static_cast<char>(0x80 + (code >> 6 * (left - 1)) % 0x40);
    }
    return bytes;
}

class Utf8 : public testing::TestWithParam<utf8::Way>
{
protected:
    void SetUp() override
    {
        if (GetParam().needed > processor::Best())
            GTEST_SKIP() << "this processor lacks it";
    }

    void ExpectAsTheModel(const std::string& text, std::ptrdiff_t room = kMuchRoom) const
    {
        const std::optional<std::wstring> units = Converted<std::wstring>(text, room, utf8::Decode);
        ASSERT_EQ(units, ModelDecode(text)) << testing::PrintToString(text);
        if (units) {
            ASSERT_EQ(utf8::DecodedLength(text.data(), text.size()), units->size()) << testing::PrintToString(text);
        }
    }

    void ExpectAsTheModel(const std::wstring& text, std::ptrdiff_t room = kMuchRoom) const
    {
        const std::optional<std::string> bytes = Converted<std::string>(text, room, utf8::Encode);
        ASSERT_EQ(bytes, ModelEncode(text)) << testing::PrintToString(text);
        if (bytes) {
            ASSERT_EQ(utf8::EncodedLength(text.data(), text.size()), bytes->size()) << testing::PrintToString(text);
        }
    }

    void ExpectBothAsTheModel(const std::wstring& text) const
    {
        ASSERT_NO_FATAL_FAILURE(ExpectAsTheModel(text));
        const std::optional<std::string> bytes = ModelEncode(text);
        if (bytes) {
            ASSERT_NO_FATAL_FAILURE(ExpectAsTheModel(*bytes));
        }
    }

private:
    static constexpr std::ptrdiff_t kMuchRoom = 2000;

    // From memory that ends with the terminator to memory that ends with the room, again and again as the room is used
    // up. Nothing where the text is refused.
    template <class Result, class Text, class Convert>
    std::optional<Result> Converted(const Text& text, std::ptrdiff_t room, const Convert& convert) const
    {
        using From = typename Text::value_type;
        using To = typename Result::value_type;
        auto* const from = reinterpret_cast<From*>(m_in.Last((text.size() + 1) * sizeof(From)));
        std::copy_n(text.c_str(), text.size() + 1, from);
        auto* const to = reinterpret_cast<To*>(m_out.Last(static_cast<std::size_t>(room) * sizeof(To)));
        to[-1] = kUntouched;
        Result result;
        const From* in = from;
        for (const From* const end = from + text.size(); in != end;) {
            const From* const before = in;
            To* const toEnd = convert(GetParam().blocks, in, end, to, to + room);
            EXPECT_EQ(to[-1], kUntouched);
            if (toEnd == nullptr)
                return std::nullopt;
            EXPECT_LE(toEnd, to + room);
            result.append(to, toEnd);
            EXPECT_LE(in, end);
            if (in == before)
                throw std::logic_error("no headway");
        }
        return result;
    }

    static constexpr char kUntouched = '\x5A';

    GuardedBuffer m_in{4096};
    GuardedBuffer m_out{4096};
};

INSTANTIATE_TEST_SUITE_P(Ways, Utf8, testing::ValuesIn(utf8::kWays), test::WayName<utf8::Way>);

// One to four bytes, the lowest and the highest of each kind, and some between.
const std::wstring kCharacters[] = {
    L"\x01",         L"k",      L"\x7F",   L"\x80",   L"é",      L"\x7FF",        L"\x800",
    L"\xFFF",        L"\x1000", L"中",     L"\xCFFF", L"\xD000", L"\xD7FF",       L"\xE000",
    L"\xFEFF",       L"\xFF41", L"\xFFFD", L"\xFFFE", L"\xFFFF", L"\xD800\xDC00", L"\xD83D\xDE00",
    L"\xDBFF\xDFFF",
};

// A character of each length.
const std::wstring kLengths[] = {L"k", L"é", L"中", L"\xD83D\xDE00"};

// No text of these bytes is well-formed, whatever stands before and behind.
const std::string kInvalid[] = {
    std::string(1, '\0'), "\x80",
    "\xBF\xBF",           "\xC0\x80",
    "\xC1\xBF",           "\xE0\x80\x80",
    "\xE0\x9F\xBF",       "\xED\xA0\x80",
    "\xED\xBF\xBF",       "\xF0\x8F\xBF\xBF",
    "\xF4\x90\x80\x80",   "\xF5\x80\x80",
    "\xF8\x88\x80\x80",   "\xFE",
    "\xFF\xFF",           "\xC3",
    "\xE4\xB8",           "\xF0\x9F\x98",
    "\xE4\xB8x",          "\xE4\xE4\xB8\xAD",
    "\xC3\xA9\xA9",       "\xC3\xC3\xA9",
    "\xE4\xB8\xAD\xAD",   "\xE4x\xB8\xAD",
};

std::wstring Repeated(const std::wstring& pattern, std::size_t count)
{
    std::wstring text;
    for (std::size_t i = 0; i < count; ++i)
        text += pattern;
    return text;
}

class Random : public test::Random
{
public:
    using test::Random::Random;

    // Runs of one to eight characters of one kind. Those that the blocks refuse are rare, or there are none.
    std::wstring Mixture(std::size_t length, bool hasPairs = true)
    {
        std::wstring text;
        while (text.size() < length) {
            const std::wstring& character = kCharacters[Below(static_cast<unsigned>(std::size(kCharacters)))];
            if (character.size() == 1 || (hasPairs && Below(8) == 0))
                text += Repeated(character, 1 + Below(8));
        }
        return text;
    }
};

} // namespace

TEST_P(Utf8, KindsOfCharactersTakeTurnsAtEveryPlaceOfABlock)
{
    for (const std::wstring& first : kLengths) {
        for (const std::wstring& second : kLengths) {
            for (const std::wstring& third : kLengths) {
                for (std::size_t before = 0; before < 40; ++before) {
                    for (std::size_t count = 1; count < 5; ++count)
                        ASSERT_NO_FATAL_FAILURE(ExpectBothAsTheModel(Repeated(first, before) + Repeated(second, count) +
                                                                     Repeated(third, 40)));
                }
            }
        }
    }
}

TEST_P(Utf8, EveryCharacterStandsBesideEveryOther)
{
    for (const std::wstring& first : kCharacters) {
        for (const std::wstring& second : kCharacters) {
            for (std::size_t before = 0; before < 4; ++before)
                ASSERT_NO_FATAL_FAILURE(
                    ExpectBothAsTheModel(std::wstring(before, L'k') + Repeated(first + second, 30)));
        }
    }
}

TEST_P(Utf8, EveryUnitIsEncodedAndDecodedAmongOthers)
{
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        std::wstring text = Repeated(L"中文 k", 12);
        text[unit % text.size()] = static_cast<wchar_t>(unit);
        ASSERT_NO_FATAL_FAILURE(ExpectBothAsTheModel(text));
    }
}

TEST_P(Utf8, EveryPairOfBytesIsDecodedAmongOthers)
{
    for (unsigned pair = 0; pair < 0x10000; ++pair) {
        for (const std::string rest : {"", "\xBF", "\x80\x80"}) {
            const std::string text = std::string(pair % 37, 'k') + static_cast<char>(pair >> 8) +
                                     static_cast<char>(pair & 0xFF) + rest + std::string(40, 'k');
            ASSERT_NO_FATAL_FAILURE(ExpectAsTheModel(text));
        }
    }
}

TEST_P(Utf8, WhatIsNotWellFormedIsRefusedAtEveryPlace)
{
    for (const std::string& invalid : kInvalid) {
        for (const std::wstring& around : kLengths) {
            for (std::size_t before = 0; before < 70; ++before) {
                for (const std::size_t behind : {0U, 1U, 40U}) {
                    const std::string text =
                        *ModelEncode(Repeated(around, before)) + invalid + *ModelEncode(Repeated(around, behind));
                    ASSERT_EQ(ModelDecode(text), std::nullopt);
                    ASSERT_NO_FATAL_FAILURE(ExpectAsTheModel(text));
                }
            }
        }
    }
}

TEST_P(Utf8, ZerosAndLoneSurrogatesAreRefusedAtEveryPlace)
{
    for (const wchar_t unit : {L'\0', L'\xD800', L'\xDBFF', L'\xDC00', L'\xDFFF'}) {
        for (const std::wstring& around : kLengths) {
            for (std::size_t before = 0; before < 70; ++before) {
                for (const std::size_t behind : {0U, 1U, 40U}) {
                    const std::wstring text = Repeated(around, before) + unit + Repeated(around, behind);
                    ASSERT_NO_FATAL_FAILURE(ExpectAsTheModel(text));
                }
            }
        }
    }
}

TEST_P(Utf8, TextsOfEveryLengthEndAnywhere)
{
    Random random(1);
    for (std::size_t length = 0; length <= 300; ++length) {
        for (int round = 0; round < 30; ++round) {
            const std::wstring text = random.Mixture(300);
            ASSERT_NO_FATAL_FAILURE(ExpectAsTheModel(text.substr(0, length)));
            ASSERT_NO_FATAL_FAILURE(ExpectAsTheModel(ModelEncode(text)->substr(0, length)));
        }
    }
}

TEST_P(Utf8, EveryRoomIsKeptTo)
{
    Random random(2);
    for (std::ptrdiff_t room = utf8::kLeastRoom; room < utf8::kLeastRoom + 100; ++room) {
        for (int round = 0; round < 40; ++round) {
            const std::wstring text = random.Mixture(500);
            ASSERT_NO_FATAL_FAILURE(ExpectAsTheModel(text, room));
            ASSERT_NO_FATAL_FAILURE(ExpectAsTheModel(*ModelEncode(text), room));
        }
        // Texts that fill the room most quickly.
        ASSERT_NO_FATAL_FAILURE(ExpectAsTheModel(std::string(1000, 'k'), room));
        ASSERT_NO_FATAL_FAILURE(ExpectAsTheModel(Repeated(L"中", 500), room));
    }
}

TEST_P(Utf8, DamagedTextsAreDecodedAndEncodedAsTheModelDoes)
{
    Random random(3);
    for (int round = 0; round < 30000; ++round) {
        std::wstring text = random.Mixture(1 + random.Below(150));
        std::string bytes = *ModelEncode(text);
        bytes[random.Below(static_cast<unsigned>(bytes.size()))] = static_cast<char>(random.Below(256));
        ASSERT_NO_FATAL_FAILURE(ExpectAsTheModel(bytes));
        text[random.Below(static_cast<unsigned>(text.size()))] = static_cast<wchar_t>(0xD800 + random.Below(0x800));
        ASSERT_NO_FATAL_FAILURE(ExpectAsTheModel(text));
    }
}

TEST_P(Utf8, RegistersOfMoreThan128BitsConvertAllThatIsWellFormed)
{
    if (GetParam().needed == processor::Registers::kSse2)
        GTEST_SKIP() << "it has the blocks convert ASCII only";
    Random random(4);
    for (int round = 0; round < 1000; ++round) {
        const std::wstring wide = random.Mixture(random.Below(300));
        const std::string narrow = *ModelEncode(wide);

        std::string bytes(narrow.size() + utf8::kLeastRoom, '\0');
        const wchar_t* fromWide = wide.data();
        char* toBytes = bytes.data();
        GetParam().blocks.encode(fromWide, wide.data() + wide.size(), toBytes, bytes.data() + bytes.size());
        bytes.resize(static_cast<std::size_t>(toBytes - bytes.data()));
        ASSERT_EQ(bytes, narrow);
        ASSERT_EQ(fromWide, wide.data() + wide.size());

        std::wstring units(wide.size() + utf8::kLeastRoom, L'\0');
        const char* fromNarrow = narrow.data();
        wchar_t* toUnits = units.data();
        GetParam().blocks.decode(fromNarrow, narrow.data() + narrow.size(), toUnits, units.data() + units.size());
        units.resize(static_cast<std::size_t>(toUnits - units.data()));
        ASSERT_EQ(units, wide);
        ASSERT_EQ(fromNarrow, narrow.data() + narrow.size());
    }
}
