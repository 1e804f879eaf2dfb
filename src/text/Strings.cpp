#include "Kelpkit/Text.h"

#include "text/Blocks.h"

#include <cstddef>
#include <iterator>
#include <string_view>

namespace KELPKIT
{
namespace
{

template <class Char>
using View = std::basic_string_view<Char>;

// Moves what stays towards the front while it goes: no result is longer than what it replaces.
template <class Char>
void ReplaceInPlace(std::basic_string<Char>& text, View<Char> pattern, View<Char> replacement)
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
    blocks::ForEachHit<Char>(text, pattern, [&](std::size_t hit) {
        keep(hit);
        Traits::copy(data + written, replacement.data(), replacement.size());
        written += replacement.size();
        read = hit + pattern.size();
    });
    keep(text.size());
    text.resize(written);
}

// Appends to a text by way of a buffer: a call for each few units would cost more than they do.
template <class Char>
class Appender
{
public:
    static constexpr std::size_t kRoom = 1024;
    static constexpr std::size_t kFew = 16 / sizeof(Char); // what a register holds

    explicit Appender(std::basic_string<Char>& text) : m_text(text) {}

    // Up to `end`, what lies behind the piece may be read.
    void Append(View<Char> piece, const Char* end)
    {
        if (piece.size() > kRoom - m_used)
            Flush();
        if (piece.size() > kRoom) {
            m_text.append(piece);
            return;
        }
        Char* const to = m_buffer + m_used;
        m_used += piece.size();
        if (piece.size() <= kFew && static_cast<std::size_t>(end - piece.data()) >= kFew)
            blocks::Store(to, blocks::Load(piece.data()));
        else
            piece.copy(to, piece.size());
    }

    // Moves all that was appended into `text`, whose room is kept where it is enough.
    void MoveInto(std::basic_string<Char>& text)
    {
        if (m_text.empty()) {
            text.assign(m_buffer, m_used);
            return;
        }
        Flush();
        text = std::move(m_text);
    }

private:
    void Flush()
    {
        m_text.append(m_buffer, m_used);
        m_used = 0;
    }

    std::basic_string<Char>& m_text;
    std::size_t m_used = 0;
    Char m_buffer[kRoom + kFew];
};

template <class Char>
void ReplaceIntoCopy(std::basic_string<Char>& text, View<Char> pattern, View<Char> replacement)
{
    const View<Char> source = text;
    const Char* const end = source.data() + source.size();
    std::basic_string<Char> result;
    // A shorter text fits the appender, and takes its room when all is known.
    if (source.size() > Appender<Char>::kRoom) {
        std::size_t hits = 0;
        blocks::ForEachHit(source, pattern, [&hits](std::size_t) { ++hits; });
        if (hits == 0)
            return;
        result.reserve(source.size() + hits * (replacement.size() - pattern.size()));
    }
    Char few[Appender<Char>::kFew] = {};
    const Char* replacementEnd = replacement.data() + replacement.size();
    if (replacement.size() < std::size(few)) {
        replacement.copy(few, std::size(few));
        replacement = {few, replacement.size()};
        replacementEnd = std::end(few);
    }
    Appender<Char> appender(result);
    std::size_t read = 0;
    blocks::ForEachHit(source, pattern, [&](std::size_t hit) {
        appender.Append(source.substr(read, hit - read), end);
        appender.Append(replacement, replacementEnd);
        read = hit + pattern.size();
    });
    if (read == 0)
        return;
    appender.Append(source.substr(read), end);
    appender.MoveInto(text);
}

template <class Char>
void Replace(std::basic_string<Char>& text, const std::basic_string<Char>& pattern,
             const std::basic_string<Char>& replacement)
{
    // An empty pattern would be found at every place, for ever.
    if (pattern.empty())
        return;
    if (&pattern == &text)
        text = std::basic_string<Char>(replacement);
    else if (&replacement == &text || replacement.size() > pattern.size())
        ReplaceIntoCopy<Char>(text, pattern, replacement);
    else
        ReplaceInPlace<Char>(text, pattern, replacement);
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

// Calls use(start, end) for each piece between delimiters that is not empty.
template <class Use>
void ForEachPiece(const wchar_t* at, const CharacterSet& delimiters, const Use& use)
{
    while (true) {
        while (*at != L'\0' && delimiters.Contains(*at))
            ++at;
        if (*at == L'\0')
            return;
        const wchar_t* const start = at;
        while (*at != L'\0' && !delimiters.Contains(*at))
            ++at;
        use(start, at);
    }
}

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
    StringRtrim(text, c);
    return StringLtrim(text, c);
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
    std::size_t count = 0;
    ForEachPiece(source.c_str(), set, [&count](const wchar_t*, const wchar_t*) { ++count; });
    std::vector<std::wstring> found;
    found.reserve(count);
    ForEachPiece(source.c_str(), set,
                 [&found](const wchar_t* start, const wchar_t* end) { found.emplace_back(start, end); });
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
