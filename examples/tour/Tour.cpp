#include "Tour.h"

#include <Kelpkit/Text.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <iterator>

using namespace KELPKIT;

namespace
{

constexpr std::size_t kNameColumns = 34;
constexpr std::size_t kResultColumns = 58;

void Print(const std::wstring& text)
{
    std::fputs(UnicodeToUTF8(text + L"\n").c_str(), stdout);
    std::fflush(stdout);
}

// Columns on the screen: East Asian characters take two, and so do the halves of a surrogate pair together.
std::size_t Columns(const std::wstring& text)
{
    std::size_t columns = 0;
    for (const wchar_t c : text)
        columns += c < 0x1100 || (c >= 0xD800 && c < 0xE000) ? 1 : 2;
    return columns;
}

std::wstring Padded(const std::wstring& text, std::size_t columns)
{
    return text + std::wstring(columns - std::min(columns, Columns(text)), L' ');
}

std::wstring Milliseconds(std::chrono::steady_clock::duration duration)
{
    wchar_t text[32];
    std::swprintf(text, std::size(text), L"%9.3f ms", std::chrono::duration<double, std::milli>(duration).count());
    return text;
}

} // namespace

std::wstring Tour::Identity(const std::wstring& text) const
{
    constexpr std::size_t kShown = 4;
    if (m_showsIdentity || text.size() <= kShown)
        return text;
    return text.substr(0, kShown) + L"... (" + std::to_wstring(text.size()) + L" characters, see --show)";
}

void Tour::Section(const std::wstring& title)
{
    ::Print(L"\n" + title);
    m_sections.push_back({title, 0, 0, {}});
}

void Tour::Step(const std::wstring& name, const std::function<Result()>& action)
{
    const auto start = std::chrono::steady_clock::now();
    const Result result = action();
    const auto duration = std::chrono::steady_clock::now() - start;
    ::Print(L"  " + Padded(name, kNameColumns) + L" " + Padded(result.text, kResultColumns) + L" " +
            Milliseconds(duration) + (result.right ? L"  ok" : L"  WRONG"));
    Tally& section = m_sections.back();
    ++section.steps;
    section.wrong += result.right ? 0 : 1;
    section.duration += duration;
}

void Tour::Note(const std::wstring& text)
{
    ::Print(L"    " + text);
}

void Tour::Print(const Tally& tally)
{
    std::wstring steps = std::to_wstring(tally.steps) + L" steps";
    if (tally.wrong != 0)
        steps += L", " + std::to_wstring(tally.wrong) + L" of them WRONG";
    ::Print(L"  " + Padded(tally.title, kNameColumns) + L" " + Padded(steps, kResultColumns) + L" " +
            Milliseconds(tally.duration));
}

int Tour::Summary() const
{
    ::Print(L"\nSummary");
    Tally all = {L"All", 0, 0, {}};
    for (const Tally& section : m_sections) {
        Print(section);
        all.steps += section.steps;
        all.wrong += section.wrong;
        all.duration += section.duration;
    }
    Print(all);
    ::Print(all.wrong == 0 ? L"\nAll is as it should be." : L"\nNot all is as it should be.");
    return all.wrong;
}

std::wstring LogFile(const Tour& tour)
{
    return tour.Folder() + L"日志 logs\\run.log";
}

std::wstring Text(bool value)
{
    return value ? L"true" : L"false";
}

std::string Contents(const std::wstring& path)
{
    std::ifstream file(path.c_str(), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::wstring Hex(const std::string& bytes)
{
    std::wstring text;
    for (const char c : bytes) {
        wchar_t byte[4];
        std::swprintf(byte, std::size(byte), L"%02X ", static_cast<unsigned>(static_cast<unsigned char>(c)));
        text += byte;
    }
    return StringRtrim(text, L' ');
}
