#include "Markup.h"

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <iterator>

namespace xmlparser
{
namespace
{

struct Range {
    char32_t first;
    char32_t last;
};

// NameStartChar and what NameChar adds to it (productions 4 and 4a).
constexpr Range kNameStart[] = {
    {':', ':'},       {'A', 'Z'},       {'_', '_'},       {'a', 'z'},         {0xC0, 0xD6},     {0xD8, 0xF6},
    {0xF8, 0x2FF},    {0x370, 0x37D},   {0x37F, 0x1FFF},  {0x200C, 0x200D},   {0x2070, 0x218F}, {0x2C00, 0x2FEF},
    {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF},
};
constexpr Range kNameRest[] = {{'-', '.'}, {'0', '9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}};

template <std::size_t count>
bool IsIn(const Range (&ranges)[count], char32_t c)
{
    return std::any_of(std::begin(ranges), std::end(ranges),
                       [c](const Range& range) { return c >= range.first && c <= range.last; });
}

bool IsLeadSurrogate(char32_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsTrailSurrogate(char32_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

// The character at a place; half of a pair stands for itself.
char32_t CharacterAt(std::wstring_view text, std::size_t at)
{
    const char32_t lead = text[at];
    if (!IsLeadSurrogate(lead) || at + 1 == text.size() || !IsTrailSurrogate(text[at + 1]))
        return lead;
    return 0x10000 + ((lead - 0xD800) << 10) + (text[at + 1] - 0xDC00U);
}

std::size_t UnitsOf(char32_t c)
{
    return c < 0x10000 ? 1 : 2;
}

// Production 2.
bool IsXmlCharacter(char32_t c)
{
    return c >= 0x20 ? (c < 0xD800 || (c > 0xDFFF && c != 0xFFFE && c != 0xFFFF)) : c == '\t' || c == '\n';
}

std::wstring Reference(char32_t c)
{
    wchar_t text[16];
    std::swprintf(text, std::size(text), L"&#x%X;", static_cast<unsigned>(c));
    return text;
}

struct Entity {
    std::wstring_view text;
    wchar_t character;
};

constexpr Entity kEntities[] = {
    {L"&lt;", L'<'}, {L"&gt;", L'>'}, {L"&amp;", L'&'}, {L"&quot;", L'"'}, {L"&apos;", L'\''}};

int DigitValue(wchar_t c)
{
    if (c >= L'0' && c <= L'9')
        return c - L'0';
    const auto lower = static_cast<wchar_t>(c | 0x20);
    return lower >= L'a' && lower <= L'f' ? lower - L'a' + 10 : 16;
}

// What a text starts with, and how many units of it that takes; none if it is no reference.
struct Resolved {
    char32_t character;
    std::size_t length;
};

Resolved ResolveCharacterReference(std::wstring_view text)
{
    constexpr Resolved kNone = {0, 0};
    const bool isHexadecimal = text.substr(0, 3) == L"&#x";
    const int base = isHexadecimal ? 16 : 10;
    const std::size_t start = isHexadecimal ? 3 : 2;
    char32_t value = 0;
    std::size_t at = start;
    for (; at < text.size() && DigitValue(text[at]) < base; ++at) {
        value = value * static_cast<unsigned>(base) + static_cast<unsigned>(DigitValue(text[at]));
        if (value > 0x10FFFF)
            return kNone;
    }
    return at > start && at < text.size() && text[at] == L';' ? Resolved{value, at + 1} : kNone;
}

Resolved Resolve(std::wstring_view text)
{
    if (text.substr(0, 2) == L"&#")
        return ResolveCharacterReference(text);
    for (const Entity& entity : kEntities) {
        if (text.substr(0, entity.text.size()) == entity.text)
            return {static_cast<char32_t>(entity.character), entity.text.size()};
    }
    return {0, 0};
}

wchar_t* Put(char32_t c, wchar_t* out)
{
    if (c >= 0x10000) {
        *out++ = static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10));
        c = 0xDC00 + (c & 0x3FF);
    }
    *out++ = static_cast<wchar_t>(c);
    return out;
}

} // namespace

bool IsName(std::wstring_view text)
{
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = CharacterAt(text, at);
        if (!IsIn(kNameStart, c) && (at == 0 || !IsIn(kNameRest, c)))
            return false;
        at += UnitsOf(c);
    }
    return !text.empty();
}

bool IsAllWhiteSpace(const char* text)
{
    return *text != '\0' && text[std::strspn(text, " \t\r\n")] == '\0';
}

bool IsIndentingWhiteSpace(const char* text)
{
    return IsAllWhiteSpace(text) && std::strpbrk(text, "\r\n") != nullptr;
}

std::wstring Escape(std::wstring_view text, const std::function<bool(std::wstring_view)>& canHold)
{
    std::wstring escaped;
    escaped.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = CharacterAt(text, at);
        const std::wstring_view character = text.substr(at, UnitsOf(c));
        at += character.size();
        if (c == '<')
            escaped += L"&lt;";
        else if (c == '>')
            escaped += L"&gt;";
        else if (c == '&')
            escaped += L"&amp;";
        else if (IsXmlCharacter(c) && (c < 0x80 || canHold(character)))
            escaped += character;
        else
            escaped += Reference(c);
    }
    return escaped;
}

std::size_t Unescape(wchar_t* text, std::size_t length, bool isCData)
{
    const std::wstring_view raw(text, length);
    // Most texts hold nothing of the kind, and finding one character is fast.
    if (raw.find(L'\r') == raw.npos && (isCData || raw.find(L'&') == raw.npos))
        return length;
    const std::wstring_view special = isCData ? L"\r" : L"\r&";
    wchar_t* out = text;
    for (std::size_t at = 0; at < length;) {
        const std::size_t next = std::min(raw.find_first_of(special, at), length);
        std::wmemmove(out, text + at, next - at);
        out += next - at;
        at = next;
        if (at == length)
            break;
        if (raw[at] == L'\r') {
            at += raw.substr(at, 2) == L"\r\n" ? 2U : 1U;
            *out++ = L'\n';
        } else if (const Resolved resolved = Resolve(raw.substr(at)); resolved.length > 0) {
            at += resolved.length;
            out = Put(resolved.character, out);
        } else {
            *out++ = raw[at++];
        }
    }
    return static_cast<std::size_t>(out - text);
}

} // namespace xmlparser
