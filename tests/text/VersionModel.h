#pragma once

// The order of versions as it is described, to compare with.

#include <Kelpkit/Text.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace test
{

// The runs of digits and of anything else.
inline std::vector<std::pair<bool, std::string>> Runs(const std::string& text)
{
    std::vector<std::pair<bool, std::string>> runs;
    for (const char c : text) {
        const bool digit = std::string("0123456789").find(c) != std::string::npos;
        if (runs.empty() || runs.back().first != digit)
            runs.emplace_back(digit, "");
        runs.back().second += c;
    }
    return runs;
}

inline long double Saturated(const std::string& digits)
{
    return std::min(std::stold(digits), 2147483647.0L);
}

// The order of two lists of runs.
inline int ModelVersionOrder(const std::wstring& a, const std::wstring& b)
{
    const auto runsA = Runs(KELPKIT::UnicodeToAnsi(a));
    const auto runsB = Runs(KELPKIT::UnicodeToAnsi(b));
    for (std::size_t i = 0; i < runsA.size() && i < runsB.size(); ++i) {
        const auto& [digitsA, textA] = runsA[i];
        const auto& [digitsB, textB] = runsB[i];
        if (digitsA && digitsB) {
            if (Saturated(textA) != Saturated(textB))
                return Saturated(textA) < Saturated(textB) ? -1 : 1;
        } else if (textA != textB) {
            const std::basic_string<unsigned char> bytesA(textA.begin(), textA.end());
            const std::basic_string<unsigned char> bytesB(textB.begin(), textB.end());
            return bytesA < bytesB ? -1 : 1;
        }
    }
    return runsA.size() == runsB.size() ? 0 : runsA.size() < runsB.size() ? -1 : 1;
}

} // namespace test
