// The C library's functions for wide texts, for wchar_t of 16 bits; the system's own have 32. Hidden, so that the
// system's libraries keep theirs.

#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cwchar>
#include <cwctype>
#include <string>

static_assert(sizeof(wchar_t) == 2);

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the system has names of its own
#pragma GCC visibility push(hidden)
extern "C" {

std::size_t wcslen(const wchar_t* text) noexcept
{
    std::size_t length = 0;
    while (text[length] != L'\0')
        ++length;
    return length;
}

int wmemcmp(const wchar_t* a, const wchar_t* b, std::size_t count) noexcept
{
    for (; count > 0 && *a == *b; --count) {
        ++a;
        ++b;
    }
    return count == 0 ? 0 : *a < *b ? -1 : 1;
}

int wcscmp(const wchar_t* a, const wchar_t* b) noexcept
{
    return wmemcmp(a, b, std::min(wcslen(a), wcslen(b)) + 1);
}

wchar_t* wcsrchr(const wchar_t* text, wchar_t unit) noexcept
{
    const wchar_t* found = nullptr;
    for (; *text != L'\0'; ++text)
        found = *text == unit ? text : found;
    return const_cast<wchar_t*>(found);
}

wchar_t* wmemcpy(wchar_t* to, const wchar_t* from, std::size_t count) noexcept
{
    std::copy_n(from, count, to);
    return to;
}

wchar_t* wmemmove(wchar_t* to, const wchar_t* from, std::size_t count) noexcept
{
    if (to < from)
        std::copy_n(from, count, to);
    else
        std::copy_backward(from, from + count, to + count);
    return to;
}

wchar_t* wmemset(wchar_t* to, wchar_t unit, std::size_t count) noexcept
{
    std::fill_n(to, count, unit);
    return to;
}

// Of Windows' long, which has 32 bits.
long wcstol(const wchar_t* text, wchar_t** /*end*/, int base) noexcept
{
    std::string narrow;
    while (std::iswspace(*text) != 0)
        ++text;
    for (; *text != L'\0' && *text < 0x80; ++text)
        narrow += static_cast<char>(*text);
    return std::clamp(std::strtol(narrow.c_str(), nullptr, base), -2147483647L - 1, 2147483647L);
}

// For formats and results of ASCII without texts in them.
int swprintf(wchar_t* out, std::size_t room, const wchar_t* format, ...) noexcept
{
    const std::string narrowFormat(format, format + wcslen(format));
    std::string narrow(room, '\0');
    std::va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(narrow.data(), room, narrowFormat.c_str(), arguments);
    va_end(arguments);
    std::copy(narrow.begin(), narrow.end(), out);
    return length < static_cast<int>(room) ? length : -1;
}

wchar_t* wmemchr(const wchar_t* text, wchar_t unit, std::size_t count) noexcept
{
    const wchar_t* const end = text + count;
    const wchar_t* const found = std::find(text, end, unit);
    return found == end ? nullptr : const_cast<wchar_t*>(found);
}
}
#pragma GCC visibility pop
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
