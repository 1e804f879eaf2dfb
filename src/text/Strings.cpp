#include "Kelpkit/Text.h"

#include <cstddef>
#include <string_view>

namespace KELPKIT
{
namespace
{

// Moves what stays towards the front while it goes: no result is longer than what it replaces.
template <class Char>
void ReplaceInPlace(std::basic_string<Char>& text, std::size_t hit, std::basic_string_view<Char> pattern,
                    std::basic_string_view<Char> replacement)
{
    using Traits = std::char_traits<Char>;
    Char* const data = text.data();
    std::size_t read = 0;
    std::size_t written = 0;
    const auto keep = [&](std::size_t end) {
        if (written != read)
            Traits::move(data + written, data + read, end - read);
        written += end - read;
    };
    for (; hit != text.npos; hit = text.find(pattern.data(), read, pattern.size())) {
        keep(hit);
        Traits::copy(data + written, replacement.data(), replacement.size());
        written += replacement.size();
        read = hit + pattern.size();
    }
    keep(text.size());
    text.resize(written);
}

template <class Char>
void ReplaceIntoCopy(std::basic_string<Char>& text, std::size_t hit, std::basic_string_view<Char> pattern,
                     std::basic_string_view<Char> replacement)
{
    std::basic_string<Char> result;
    result.reserve(text.size() + replacement.size() - pattern.size());
    std::size_t read = 0;
    for (; hit != text.npos; hit = text.find(pattern.data(), read, pattern.size())) {
        result.append(text, read, hit - read).append(replacement);
        read = hit + pattern.size();
    }
    text = std::move(result.append(text, read));
}

template <class Char>
void Replace(std::basic_string<Char>& text, const std::basic_string<Char>& pattern,
             const std::basic_string<Char>& replacement)
{
    // An empty pattern would be found at every place, for ever.
    const std::size_t hit = pattern.empty() ? text.npos : text.find(pattern);
    if (hit == text.npos)
        return;
    if (&pattern == &text)
        text = std::basic_string<Char>(replacement);
    else if (&replacement == &text || replacement.size() > pattern.size())
        ReplaceIntoCopy<Char>(text, hit, pattern, replacement);
    else
        ReplaceInPlace<Char>(text, hit, pattern, replacement);
}

template <class Char>
bool SplitLeftRight(const std::basic_string<Char>& source, const std::basic_string<Char>& separator,
                    std::basic_string<Char>& left, std::basic_string<Char>& right)
{
    const std::size_t hit = source.find(separator);
    if (hit == source.npos)
        return false;
    // Both are cut before either is stored: left or right may be source itself.
    std::basic_string<Char> leftPart = source.substr(0, hit);
    std::basic_string<Char> rightPart = source.substr(hit + separator.size());
    left = std::move(leftPart);
    right = std::move(rightPart);
    return true;
}

// A set of characters, quick for the ASCII ones.
class CharacterSet
{
public:
    explicit CharacterSet(const wchar_t* zeroTerminated) : m_all(zeroTerminated)
    {
        for (const wchar_t c : m_all) {
            if (c < kAsciiCount)
                m_ascii[c] = true;
        }
    }

    bool Contains(wchar_t c) const { return c < kAsciiCount ? m_ascii[c] : m_all.find(c) != m_all.npos; }

private:
    static constexpr std::size_t kAsciiCount = 128;

    std::wstring_view m_all;
    bool m_ascii[kAsciiCount] = {};
};

} // namespace

std::wstring& StringLtrim(std::wstring& text, wchar_t c)
{
    return text.erase(0, text.find_first_not_of(c));
}

std::wstring& StringRtrim(std::wstring& text, wchar_t c)
{
    // Where there is nothing but c, the position is npos, and one behind it is 0.
    return text.erase(text.find_last_not_of(c) + 1);
}

std::wstring& StringTrim(std::wstring& text, wchar_t c)
{
    StringLtrim(text, c);
    return StringRtrim(text, c);
}

void StringReplace(std::string& text, const std::string& pattern, const std::string& replacement)
{
    Replace(text, pattern, replacement);
}

void StringReplace(std::wstring& text, const std::wstring& pattern, const std::wstring& replacement)
{
    Replace(text, pattern, replacement);
}

void StringMulitSplit(const std::wstring& source, const std::wstring& delimiters, std::vector<std::wstring>& pieces)
{
    const CharacterSet set(delimiters.c_str());
    std::vector<std::wstring> found;
    const wchar_t* at = source.c_str();
    while (true) {
        while (*at != L'\0' && set.Contains(*at))
            ++at;
        if (*at == L'\0')
            break;
        const wchar_t* const start = at;
        while (*at != L'\0' && !set.Contains(*at))
            ++at;
        found.emplace_back(start, at);
    }
    pieces = std::move(found);
}

bool StringSplitLeftRight(const std::string& source, const std::string& separator, std::string& left,
                          std::string& right)
{
    return SplitLeftRight(source, separator, left, right);
}

bool StringSplitLeftRight(const std::wstring& source, const std::wstring& separator, std::wstring& left,
                          std::wstring& right)
{
    return SplitLeftRight(source, separator, left, right);
}

void StringSplitBySize(const std::wstring& source, int width, std::vector<std::wstring>& pieces)
{
    const std::string bytes = ConvertTStringToString(source);
    std::size_t start = 0;
    int units = 0;
    bool half = false;
    for (std::size_t i = 0; i < bytes.size();) {
        if ((static_cast<unsigned char>(bytes[i]) & 0x80) != 0) {
            i += 2;
            ++units;
        } else {
            ++i;
            units += half ? 1 : 0;
            half = !half;
        }
        if (units >= width) {
            pieces.push_back(ConvertAnsiToGBK(bytes.substr(start, i - start)));
            start = i;
            units = 0;
            half = false;
        }
    }
    // A line end in this order at the very end is no piece of its own.
    if (start < bytes.size() && bytes.compare(start, bytes.npos, "\n\r") != 0)
        pieces.push_back(ConvertAnsiToGBK(bytes.substr(start)));
}

} // namespace KELPKIT
