#include "Bench.h"
#include "TextBench.h"
#include "Texts.h"

#include "Kelpkit/Text.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <boost/algorithm/string/split.hpp>
#include <boost/algorithm/string/trim.hpp>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace bench
{
namespace
{

constexpr std::size_t kMi = 1 << 20;
constexpr const char* kBoostReplace = "boost::replace_all";

// A text in which "ab" stands so many times, at even distances.
std::wstring WithHits(std::size_t length, std::size_t hits)
{
    std::wstring text = Text({"", L"cdefghijk "}, length);
    for (std::size_t i = 0; i < hits; ++i)
        text.replace(i * (length / hits), 2, L"ab");
    return text;
}

std::wstring Replaced(std::wstring text, const wchar_t* replacement)
{
    KELPKIT::StringReplace(text, L"ab", replacement);
    return text;
}

std::wstring ReplacedByBoost(std::wstring text, const wchar_t* replacement)
{
    boost::replace_all(text, L"ab", replacement);
    return text;
}

// The loop that everybody writes.
std::wstring ReplacedByLoop(std::wstring text, const std::wstring& replacement)
{
    const std::wstring pattern = L"ab";
    for (std::size_t at = text.find(pattern); at != std::wstring::npos; at = text.find(pattern, at)) {
        text.replace(at, pattern.size(), replacement);
        at += replacement.size();
    }
    return text;
}

// The text that is given and a longer one that comes back, each in memory of its own: what no way to replace can spare.
void AgainstCopies(const std::string& size, const std::wstring& text)
{
    const std::wstring& result = Keep(Replaced(text, L"wxyz"));
    Comparison("replace", size).Peer("copies of both texts", [&text, &result] { return std::pair(text, result); });
}

void Replace(const std::string& size, const std::wstring& data, const wchar_t* replacement, double goal)
{
    const std::wstring& text = Keep(data);
    Comparison("replace", size)
        .Kelpkit([&text, replacement] { return Replaced(text, replacement); })
        .Peer(
            kBoostReplace, [&text, replacement] { return ReplacedByBoost(text, replacement); }, goal);
}

void RegisterReplace()
{
    const std::wstring many = WithHits(kMi, 210'000);
    Replace("1 Mi units, 210,000 hits, growing", many, L"wxyz", 0.40);
    Replace("1 Mi units, 210,000 hits, shrinking", many, L"x", 0.20);
    Replace("1 Mi units, 210,000 hits, equal", many, L"xy", 0.20);
    Replace("1 Mi units, 10 hits, growing", WithHits(kMi, 10), L"wxyz", 0.50);
    AgainstCopies("1 Mi units, 210,000 hits, growing", Keep(many));
    AgainstCopies("1 Mi units, 10 hits, growing", Keep(WithHits(kMi, 10)));

    const std::wstring& text = Keep(WithHits(40, 2));
    Comparison("replace", "40 units, 2 hits, growing")
        .Kelpkit([&text] { return Replaced(text, L"wxyz"); })
        .Peer(
            "find and replace in a loop", [&text] { return ReplacedByLoop(text, L"wxyz"); }, 0.95)
        .Peer(kBoostReplace, [&text] { return ReplacedByBoost(text, L"wxyz"); });
    AgainstCopies("40 units, 2 hits, growing", text);
}

using Pieces = std::vector<std::wstring>;

Pieces Split(const std::wstring& text)
{
    Pieces pieces;
    KELPKIT::StringMulitSplit(text, L",;", pieces);
    return pieces;
}

void RegisterSplit(const std::string& size, std::size_t count, const wchar_t* piece, double goal)
{
    std::wstring data;
    for (std::size_t i = 0; i < count; ++i)
        data.append(piece).append(1, i % 2 == 0 ? L',' : L';');
    const std::wstring& text = Keep(data);
    Comparison("split", size)
        .Kelpkit([&text] { return Split(text); })
        .Peer(
            "boost::split",
            [&text] {
                Pieces pieces;
                boost::split(pieces, text, boost::is_any_of(L",;"), boost::token_compress_on);
                return pieces;
            },
            goal);
}

Pieces SplitBySize(const std::wstring& text)
{
    Pieces pieces;
    KELPKIT::StringSplitBySize(text, 80, pieces);
    return pieces;
}

void RegisterSplitBySize()
{
    const std::wstring& text = Keep(Text(kMixed, kMi));
    Comparison("split into sizes", "1 Mi units mixed, 80 bytes each")
        .Kelpkit([&text] { return SplitBySize(text); })
        .Peer(
            "one conversion there and back", [&text] { return KELPKIT::AnsiToUnicode(KELPKIT::UnicodeToAnsi(text)); },
            2.0);
}

void RegisterTrim()
{
    const std::wstring& text = Keep(L"    " + Text(kAscii, 40) + L"    ");
    Comparison("trim", "48 units")
        .Kelpkit([&text] {
            std::wstring copy = text;
            KELPKIT::StringTrim(copy, L' ');
            return copy;
        })
        .Peer(
            "boost::trim_if",
            [&text] {
                std::wstring copy = text;
                boost::trim_if(copy, [](wchar_t c) { return c == L' '; });
                return copy;
            },
            0.9)
        .Peer("a copy", [&text] { return std::wstring(text); });
}

} // namespace

void RegisterStrings()
{
    RegisterReplace();
    RegisterSplit("186,000 short pieces", 186'000, L"abcde", 0.40);
    RegisterSplit("50,000 long pieces", 50'000, L"plate 12.5 x 300 mm", 0.85);
    RegisterSplitBySize();
    RegisterTrim();

    Growth("replace, a hit in 5 units, units", [](std::size_t size) {
        const std::wstring& text = Keep(WithHits(size, size / 5));
        return [&text] { return Replaced(text, L"wxyz"); };
    });
    Growth("split, pieces of 5 units, units", [](std::size_t size) {
        const std::wstring& text = Keep(Text({"", L"abcde,"}, size));
        return [&text] { return Split(text); };
    });
    Growth("split into sizes of 80 bytes, mixed, units", [](std::size_t size) {
        const std::wstring& text = Keep(Text(kMixed, size));
        return [&text] { return SplitBySize(text); };
    });
}

} // namespace bench
