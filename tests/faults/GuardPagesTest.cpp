// Texts, and results, that end where memory does: whoever reads or writes one byte too far crashes. Every length, and
// every alignment that memory may have.

#include <Kelpkit/Kelpkit.h> // first: MFC stands no windows.h before it

#include "support/GuardedHeap.h"
#include "support/Operations.h"
#include "support/Random.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

using namespace KELPKIT;
using test::GuardedHeap;
using test::Operation;

namespace
{

constexpr std::size_t kMostLength = 300;
constexpr std::size_t kAlignments = 64;

template <class Char>
using String = std::basic_string<Char>;

// A function of a text, whose result is made to bytes.
template <class Char>
struct Function {
    const char* name;
    std::string (*call)(const String<Char>& text);
};

std::string Bytes(const std::string& text)
{
    return text;
}

std::string Bytes(const std::wstring& text)
{
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

std::string Bytes(const std::vector<std::wstring>& texts)
{
    std::string bytes;
    for (const std::wstring& text : texts)
        bytes += Bytes(text + L'\0');
    return bytes;
}

template <class Char>
std::string Replaced(String<Char> text, const String<Char>& pattern, const String<Char>& replacement)
{
    StringReplace(text, pattern, replacement);
    return Bytes(text);
}

template <class Char>
std::string Halves(const String<Char>& text, const String<Char>& separator)
{
    String<Char> left;
    String<Char> right;
    return StringSplitLeftRight(text, separator, left, right) ? Bytes(left + separator + right) : std::string();
}

const Function<char> kOfNarrow[] = {
    {"AnsiToUnicode", [](auto& text) { return Bytes(AnsiToUnicode(text)); }},
    {"UTF8ToUnicode", [](auto& text) { return Bytes(UTF8ToUnicode(text)); }},
    {"BuildMd5Code",
     [](auto& text) {
         std::string digest;
         BuildMd5Code(text, digest);
         return digest;
     }},
    {"Encode", [](auto& text) { return CBase64::Encode(text); }},
    {"Encode of a buffer", [](auto& text) { return CBase64::Encode(text.data(), static_cast<int>(text.size())); }},
    {"Decode",
     [](auto& text) {
         const std::size_t room = (text.size() + 3) / 4 * 3 + 1;
         const auto out = std::make_unique<char[]>(room);
         const int count = CBase64::Decode(text.data(), out.get(), static_cast<int>(text.size()));
         return std::to_string(count) + std::string(out.get(), static_cast<std::size_t>(count) + 1);
     }},
    {"DecodeEx",
     [](auto& text) {
         std::string out;
         const int count = CBase64::DecodeEx(text, out);
         return std::to_string(count) + out;
     }},
    {"DecodeEx to new memory",
     [](auto& text) {
         char* buffer = nullptr;
         int count = 0;
         CBase64::DecodeEx(text, buffer, count);
         const std::unique_ptr<char[]> owner(buffer);
         return std::string(buffer, static_cast<std::size_t>(count) + 1);
     }},
    {"StringReplace by more", [](auto& text) { return Replaced<char>(text, "a", "bcd"); }},
    {"StringReplace by less", [](auto& text) { return Replaced<char>(text, "a,", "b"); }},
    {"StringSplitLeftRight", [](auto& text) { return Halves<char>(text, "z"); }},
};

const Function<wchar_t> kOfWide[] = {
    {"UnicodeToAnsi", [](auto& text) { return UnicodeToAnsi(text); }},
    {"UnicodeToUTF8", [](auto& text) { return UnicodeToUTF8(text); }},
    {"ConvertGBKToUnicode", [](auto& text) { return Bytes(ConvertGBKToUnicode(text)); }},
    {"BuildMd5Code",
     [](auto& text) {
         std::wstring digest;
         BuildMd5Code(text, digest);
         return Bytes(digest);
     }},
    {"StringTrim",
     [](auto& text) {
         std::wstring trimmed = text;
         return Bytes(StringTrim(trimmed, L'a'));
     }},
    {"StringReplace by more", [](auto& text) { return Replaced<wchar_t>(text, L"a", L"bcd"); }},
    {"StringReplace by less", [](auto& text) { return Replaced<wchar_t>(text, L"a,", L"b"); }},
    {"StringSplitLeftRight", [](auto& text) { return Halves<wchar_t>(text, L"z"); }},
    {"StringMulitSplit",
     [](auto& text) {
         std::vector<std::wstring> pieces;
         StringMulitSplit(text, L",中", pieces);
         return Bytes(pieces);
     }},
    {"StringSplitBySize",
     [](auto& text) {
         std::vector<std::wstring> pieces;
         StringSplitBySize(text, 7, pieces);
         return Bytes(pieces);
     }},
    {"ALargeB", [](auto& text) { return std::to_string(ALargeB(text, text + L'1')); }},
    {"RGBColorToREF", [](auto& text) { return std::to_string(RGBColorToREF(text)); }},
    {"HexColorToREF", [](auto& text) { return std::to_string(HexColorToREF(text)); }},
    {"GetFileDir", [](auto& text) { return Bytes(GetFileDir(text)); }},
    {"GetFileExtion", [](auto& text) { return Bytes(GetFileExtion(text)); }},
    {"StringToTime_t", [](auto& text) { return std::to_string(StringToTime_t(text)); }},
};

// Texts of each kind that the functions treat differently: made of pieces, in an order that looks random.
template <class Char>
String<Char> Text(const std::vector<String<Char>>& pieces, std::size_t length)
{
    test::Random random(static_cast<unsigned>(length));
    String<Char> text;
    while (text.size() < length)
        text += pieces[random.Below(static_cast<unsigned>(pieces.size()))];
    text.resize(length);
    return text;
}

const std::vector<std::vector<std::string>> kNarrowKinds = {
    {"a", "b", ",", "a,"},
    {"Qm", "9", "/", "+", "\r\n", "="},
    {"TWFu", "R2Vhcnp6", "AAECAwQFBgcICQoLDA0ODw=="},
    {"a", "\xE5\x9B\xBE", "\xC3\xA9", "\xF0\x9F\x98\x80"}, // cut short at the end
    {"a", "\xE5\x9B", "\xC3", "\xFF", "\xD6\xD0"},
};

const std::vector<std::vector<std::wstring>> kWideKinds = {
    {L"a", L"b", L",", L"a,"},
    {L"1", L"255", L",", L" ", L"#", L"F"},
    {L"a", L"中", L"é", L"\xD83D\xDE00", L"\\", L"."}, // likewise
    {L"a", L"\xD83D", L"\xDE00", L"中,"},
};

template <class Char>
void ExpectSameResults(const Function<Char>& function, const String<Char>& content, std::size_t slack)
{
    const std::string expected = function.call(content);
    std::unique_ptr<std::string> result;
    {
        const GuardedHeap heap(slack);
        // The text, and the object in which a short one lies.
        const auto text = std::make_unique<String<Char>>(content);
        result = std::make_unique<std::string>(function.call(*text));
    }
    ASSERT_EQ(*result, expected) << function.name << ", " << content.size() << " units, " << slack
                                 << " before the guard";
}

template <class Char, std::size_t count>
void ExpectSameResults(const Function<Char> (&functions)[count], const std::vector<std::vector<String<Char>>>& kinds)
{
    for (std::size_t length = 0; length <= kMostLength; ++length) {
        for (std::size_t kind = 0; kind < kinds.size(); ++kind) {
            const String<Char> content = Text(kinds[kind], length);
            for (const Function<Char>& function : functions) {
                ExpectSameResults(function, content, 0);
                // Each kind has the other alignments at some of the lengths.
                for (std::size_t slack = 1; slack < kAlignments; ++slack) {
                    if ((length + slack) % kinds.size() == kind)
                        ExpectSameResults(function, content, slack);
                }
            }
        }
    }
    EXPECT_GT(GuardedHeap::Guarded(), 100000U);
    EXPECT_EQ(GuardedHeap::Damaged(), 0U);
}

} // namespace

TEST(GuardPages, LetNarrowTextsBeReadAndWrittenToTheirEnd)
{
    ExpectSameResults(kOfNarrow, kNarrowKinds);
}

TEST(GuardPages, LetWideTextsBeReadAndWrittenToTheirEnd)
{
    ExpectSameResults(kOfWide, kWideKinds);
}

TEST(GuardPages, LetEveryOperationWork)
{
    const test::FakePrograms programs;
    const test::TempFolder folder;
    const test::LogToFile log(folder.Path());
    for (const Operation& operation : test::Operations()) {
        operation.Prepare(folder.Path());
        const std::string expected = operation.call(folder.Path());
        const std::string left = operation.Left(folder.Path());
        operation.Prepare(folder.Path());
        std::string result;
        {
            const GuardedHeap heap;
            result = operation.call(folder.Path());
        }
        EXPECT_EQ(result, expected) << operation;
        EXPECT_EQ(operation.Left(folder.Path()), left) << operation;
    }
    EXPECT_EQ(GuardedHeap::Damaged(), 0U);
}
