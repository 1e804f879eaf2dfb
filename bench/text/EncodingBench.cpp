#include "Bench.h"
#include "TextBench.h"
#include "Texts.h"

#include "Kelpkit/Text.h"

#include <boost/nowide/convert.hpp>

#include <windows.h>

namespace bench
{
namespace
{

// What is written in place of a conversion function where there is none: ask for the size, make room, convert.
std::wstring Widen(UINT codePage, const std::string& text)
{
    const int length = static_cast<int>(text.size());
    const int size = ::MultiByteToWideChar(codePage, 0, text.data(), length, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    ::MultiByteToWideChar(codePage, 0, text.data(), length, wide.data(), size);
    return wide;
}

std::string Narrow(UINT codePage, const std::wstring& text)
{
    const int length = static_cast<int>(text.size());
    const int size = ::WideCharToMultiByte(codePage, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(size), '\0');
    ::WideCharToMultiByte(codePage, 0, text.data(), length, narrow.data(), size, nullptr, nullptr);
    return narrow;
}

constexpr const char* kSystem = "two system calls";
constexpr const char* kNowide = "Boost.Nowide";

void FromUtf8(const Script& script, const std::string& size, const std::string& data, double goal)
{
    const std::string& text = Keep(data);
    Comparison("UTF-8 to UTF-16", size + ' ' + script.name)
        .Kelpkit([&text] { return KELPKIT::UTF8ToUnicode(text); })
        .Peer(
            kSystem, [&text] { return Widen(CP_UTF8, text); }, goal)
        .Peer(kNowide, [&text] { return boost::nowide::widen(text); });
}

void ToUtf8(const Script& script, const std::string& size, const std::wstring& data, double goal)
{
    const std::wstring& text = Keep(data);
    Comparison("UTF-16 to UTF-8", size + ' ' + script.name)
        .Kelpkit([&text] { return KELPKIT::UnicodeToUTF8(text); })
        .Peer(
            kSystem, [&text] { return Narrow(CP_UTF8, text); }, goal)
        .Peer(kNowide, [&text] { return boost::nowide::narrow(text); });
}

void FromAnsi(const Script& script, const std::string& size, const std::string& data, double goal)
{
    const std::string& text = Keep(data);
    Comparison("ANSI to UTF-16", size + ' ' + script.name)
        .Kelpkit([&text] { return KELPKIT::AnsiToUnicode(text); })
        .Peer(
            kSystem, [&text] { return Widen(CP_ACP, text); }, goal);
}

void ToAnsi(const Script& script, const std::string& size, const std::wstring& data, double goal)
{
    const std::wstring& text = Keep(data);
    Comparison("UTF-16 to ANSI", size + ' ' + script.name)
        .Kelpkit([&text] { return KELPKIT::UnicodeToAnsi(text); })
        .Peer(
            kSystem, [&text] { return Narrow(CP_ACP, text); }, goal);
}

struct Goals {
    const Script& script;
    double fromUtf8Short, fromUtf8, fromUtf8Long;
    double toUtf8Short, toUtf8, toUtf8Long;
    double fromAnsi, toAnsi;
};

constexpr Goals kGoals[] = {
    {kAscii, 0.80, 0.12, 0.55, 0.85, 0.13, 0.38, 0.10, 0.11},
    {kChinese, 0.45, 0.15, 0.25, 0.75, 0.25, 0.40, 0.45, 0.55},
    {kMixed, 0, 0.20, 0.30, 0, 0.30, 0.35, 0.50, 0.58},
};

} // namespace

void RegisterEncoding()
{
    constexpr std::size_t kKi = 1024;
    for (const Goals& goals : kGoals) {
        const Script& script = goals.script;
        const std::wstring little = Text(script, 16);
        const std::wstring some = Text(script, kKi);
        const std::wstring much = Text(script, kKi * kKi);
        FromUtf8(script, "16 units", Narrow(CP_UTF8, little), goals.fromUtf8Short);
        FromUtf8(script, "1 Ki units", Narrow(CP_UTF8, some), goals.fromUtf8);
        FromUtf8(script, "1 Mi units", Narrow(CP_UTF8, much), goals.fromUtf8Long);
        ToUtf8(script, "16 units", little, goals.toUtf8Short);
        ToUtf8(script, "1 Ki units", some, goals.toUtf8);
        ToUtf8(script, "1 Mi units", much, goals.toUtf8Long);
        FromAnsi(script, "1 Ki units", Narrow(CP_ACP, some), goals.fromAnsi);
        ToAnsi(script, "1 Ki units", some, goals.toAnsi);
    }

    Growth("UTF-8 to UTF-16, mixed, units", [](std::size_t size) {
        const std::string& text = Keep(Narrow(CP_UTF8, Text(kMixed, size)));
        return [&text] { return KELPKIT::UTF8ToUnicode(text); };
    });
    Growth("UTF-16 to UTF-8, mixed, units", [](std::size_t size) {
        const std::wstring& text = Keep(Text(kMixed, size));
        return [&text] { return KELPKIT::UnicodeToUTF8(text); };
    });
    Growth("ANSI to UTF-16, mixed, units", [](std::size_t size) {
        const std::string& text = Keep(Narrow(CP_ACP, Text(kMixed, size)));
        return [&text] { return KELPKIT::AnsiToUnicode(text); };
    });
    Growth("UTF-16 to ANSI, mixed, units", [](std::size_t size) {
        const std::wstring& text = Keep(Text(kMixed, size));
        return [&text] { return KELPKIT::UnicodeToAnsi(text); };
    });
}

} // namespace bench
