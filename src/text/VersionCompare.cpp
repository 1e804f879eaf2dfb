#include "Kelpkit/Text.h"

#include <algorithm>
#include <climits>
#include <string_view>

namespace KELPKIT
{
namespace
{

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Takes the run of digits, or of anything else, that text starts with off it.
std::string_view TakeRun(std::string_view& text)
{
    const bool digits = IsDigit(text.front());
    const auto end = std::find_if(text.begin(), text.end(), [digits](char c) { return IsDigit(c) != digits; });
    const std::string_view run = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(run.size());
    return run;
}

// Too large a number is INT_MAX, which atoi does not give on every runtime.
int Number(std::string_view digits)
{
    int number = 0;
    for (const char c : digits) {
        const int digit = c - '0';
        if (number > (INT_MAX - digit) / 10)
            return INT_MAX;
        number = number * 10 + digit;
    }
    return number;
}

// -1, 0 or 1.
int CompareRuns(std::string_view a, std::string_view b)
{
    if (IsDigit(a.front()) && IsDigit(b.front())) {
        const int numberA = Number(a);
        const int numberB = Number(b);
        return (numberA > numberB) - (numberA < numberB);
    }
    const int order = a.compare(b);
    return (order > 0) - (order < 0);
}

} // namespace

// By contract both are taken by value.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
int ALargeB(std::wstring a, std::wstring b)
{
    const std::string narrowA = ConvertTStringToString(a);
    const std::string narrowB = ConvertTStringToString(b);
    std::string_view restA = narrowA;
    std::string_view restB = narrowB;
    while (!restA.empty() && !restB.empty()) {
        const int order = CompareRuns(TakeRun(restA), TakeRun(restB));
        if (order != 0)
            return order;
    }
    return static_cast<int>(restB.empty()) - static_cast<int>(restA.empty());
}

bool IsDoubleZero(double x)
{
    // By contract not a number counts as zero: both comparisons are false for it.
    return !(x < -0.000001 || x > 0.000001);
}

} // namespace KELPKIT
