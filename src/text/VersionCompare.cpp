#include "Kelpkit/Text.h"

#include "text/Blocks.h"

#include <algorithm>
#include <climits>
#include <string_view>

namespace KELPKIT
{
namespace
{

template <class Char>
bool IsDigit(Char c)
{
    return c >= '0' && c <= '9';
}

// Takes the run of digits, or of anything else, that text starts with off it.
template <class Char>
std::basic_string_view<Char> TakeRun(std::basic_string_view<Char>& text)
{
    const bool digits = IsDigit(text.front());
    std::size_t size = 1;
    while (size < text.size() && IsDigit(text[size]) == digits)
        ++size;
    const auto run = text.substr(0, size);
    text.remove_prefix(size);
    return run;
}

// Too large a number is INT_MAX, which atoi does not give on every runtime.
template <class Char>
int Number(std::basic_string_view<Char> digits)
{
    int number = 0;
    for (const Char c : digits) {
        const int digit = c - '0';
        if (number > (INT_MAX - digit) / 10)
            return INT_MAX;
        number = number * 10 + digit;
    }
    return number;
}

// -1, 0 or 1.
template <class Char>
int CompareRuns(std::basic_string_view<Char> a, std::basic_string_view<Char> b)
{
    if (IsDigit(a.front()) && IsDigit(b.front())) {
        const int numberA = Number(a);
        const int numberB = Number(b);
        return (numberA > numberB) - (numberA < numberB);
    }
    const int order = a.compare(b);
    return (order > 0) - (order < 0);
}

// Takes the runs that both start with off them, but for the last, which may go on differently.
template <class Char>
void SkipEqualRuns(std::basic_string_view<Char>& a, std::basic_string_view<Char>& b)
{
    const std::size_t most = std::min(a.size(), b.size());
    std::size_t equal = 0;
    std::size_t lastRun = 0;
    for (; equal < most && a[equal] == b[equal]; ++equal) {
        if (IsDigit(a[equal]) != IsDigit(a[lastRun]))
            lastRun = equal;
    }
    a.remove_prefix(lastRun);
    b.remove_prefix(lastRun);
}

template <class Char>
int CompareVersions(std::basic_string_view<Char> a, std::basic_string_view<Char> b)
{
    SkipEqualRuns(a, b);
    while (!a.empty() && !b.empty()) {
        const int order = CompareRuns(TakeRun(a), TakeRun(b));
        if (order != 0)
            return order;
    }
    return static_cast<int>(b.empty()) - static_cast<int>(a.empty());
}

} // namespace

// By contract both are taken by value.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
int ALargeB(std::wstring a, std::wstring b)
{
    // The bytes of the ANSI code page are what is compared. ASCII needs no conversion for that.
    if (blocks::IsAscii(a.data(), a.size()) && blocks::IsAscii(b.data(), b.size()))
        return CompareVersions<wchar_t>(a.c_str(), b.c_str());
    return CompareVersions<char>(ConvertTStringToString(a), ConvertTStringToString(b));
}

bool IsDoubleZero(double x)
{
    // By contract not a number counts as zero: both comparisons are false for it.
    return !(x < -0.000001 || x > 0.000001);
}

} // namespace KELPKIT
