#include "Bench.h"
#include "TextBench.h"
#include "Texts.h"

#include "Kelpkit/Text.h"

#include <boost/nowide/convert.hpp>

#include <windows.h>

#include <cstddef>
#include <iterator>
#include <memory>
#include <string>

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
constexpr const char* kCopy = "a copy of the result"; // what is left when converting costs nothing

void FromUtf8(const Script& script, const std::string& size, const std::string& data, double goal)
{
    const std::string& text = Keep(data);
    Comparison("UTF-8 to UTF-16", size + ' ' + script.name)
        .Kelpkit([&text] { return KELPKIT::UTF8ToUnicode(text); })
        .Peer(
            kSystem, [&text] { return Widen(CP_UTF8, text); }, goal)
        .Peer(kNowide, [&text] { return boost::nowide::widen(text); })
        .Peer(kCopy, [&result = Keep(boost::nowide::widen(text))] { return std::wstring(result); });
}

void ToUtf8(const Script& script, const std::string& size, const std::wstring& data, double goal)
{
    const std::wstring& text = Keep(data);
    Comparison("UTF-16 to UTF-8", size + ' ' + script.name)
        .Kelpkit([&text] { return KELPKIT::UnicodeToUTF8(text); })
        .Peer(
            kSystem, [&text] { return Narrow(CP_UTF8, text); }, goal)
        .Peer(kNowide, [&text] { return boost::nowide::narrow(text); })
        .Peer(kCopy, [&result = Keep(boost::nowide::narrow(text))] { return std::string(result); });
}

// One system call into a buffer of sufficient size, and a copy: no conversion that is the system's can do with less.
constexpr const char* kOneCall = "one system call and a copy";

void FromAnsi(const Script& script, const std::string& size, const std::string& data, double goal)
{
    const std::string& text = Keep(data);
    const auto buffer = std::make_shared<std::wstring>(text.size(), L'\0');
    Comparison("ANSI to UTF-16", size + ' ' + script.name)
        .Kelpkit([&text] { return KELPKIT::AnsiToUnicode(text); })
        .Peer(
            kOneCall,
            [&text, buffer] {
                const int count = ::MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                                                        buffer->data(), static_cast<int>(buffer->size()));
                return buffer->substr(0, static_cast<std::size_t>(count));
            },
            goal)
        .Peer(kSystem, [&text] { return Widen(CP_ACP, text); });
}

void ToAnsi(const Script& script, const std::string& size, const std::wstring& data, double goal)
{
    const std::wstring& text = Keep(data);
    const auto buffer = std::make_shared<std::string>(3 * text.size(), '\0');
    Comparison("UTF-16 to ANSI", size + ' ' + script.name)
        .Kelpkit([&text] { return KELPKIT::UnicodeToAnsi(text); })
        .Peer(
            kOneCall,
            [&text, buffer] {
                const int count =
                    ::WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), buffer->data(),
                                          static_cast<int>(buffer->size()), nullptr, nullptr);
                return buffer->substr(0, static_cast<std::size_t>(count));
            },
            goal)
        .Peer(kSystem, [&text] { return Narrow(CP_ACP, text); });
}

// The most that a conversion may take of the two system calls' time, for texts of 16 and 128 units, 1 Ki, and 1 Mi.
struct Goals {
    const Script& script;
    double fromUtf8[4];
    double toUtf8[4];
};

constexpr Goals kGoals[] = {
    {kAscii, {0.80, 1, 0.12, 0.55}, {0.85, 1, 0.13, 0.38}},
    {kChinese, {0.45, 1, 0.15, 0.25}, {0.75, 1, 0.25, 0.40}},
    {kMixed, {1, 1, 0.20, 0.30}, {1, 1, 0.30, 0.35}},
    {kFrench, {1, 1, 0.20, 1}, {1, 1, 0.17, 1}},
    {kRussian, {1, 1, 0.07, 1}, {1, 1, 0.15, 1}},
    {kChat, {1, 1, 0.12, 1}, {1, 1, 0.25, 1}},
    {kDense, {1, 1, 0.20, 1}, {1, 1, 0.45, 1}},
};

constexpr std::size_t kKi = 1024;

struct Size {
    const char* name;
    std::size_t units;
};

constexpr Size kSizes[] = {{"16 units", 16}, {"128 units", 128}, {"1 Ki units", kKi}, {"1 Mi units", kKi* kKi}};

} // namespace

void RegisterEncoding()
{
    for (const Goals& goals : kGoals) {
        for (std::size_t i = 0; i < std::size(kSizes); ++i) {
            const std::wstring text = Text(goals.script, kSizes[i].units);
            FromUtf8(goals.script, kSizes[i].name, Narrow(CP_UTF8, text), goals.fromUtf8[i]);
            ToUtf8(goals.script, kSizes[i].name, text, goals.toUtf8[i]);
        }
    }
    for (const Script& script : {kAscii, kChinese, kMixed}) {
        const bool isAscii = script.name == kAscii.name;
        for (const Size& size : kSizes) {
            const std::wstring text = Text(script, size.units);
            FromAnsi(script, size.name, Narrow(CP_ACP, text), isAscii ? 0 : 1.05);
            ToAnsi(script, size.name, text, isAscii ? 0 : 1.05);
        }
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
