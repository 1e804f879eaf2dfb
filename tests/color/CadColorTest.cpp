#include "support/FailingHeap.h"

#include <Kelpkit/Color.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <cstddef>
#include <numeric>
#include <string>
#include <utility>

using namespace KELPKIT;

namespace
{

// An exact number.
class Rational
{
public:
    explicit Rational(long long numerator, long long denominator = 1)
    {
        const long long divisor = std::gcd(numerator, denominator);
        m_numerator = numerator / divisor;
        m_denominator = denominator / divisor;
    }

    friend Rational operator*(Rational a, Rational b)
    {
        return Rational(a.m_numerator * b.m_numerator, a.m_denominator * b.m_denominator);
    }
    friend Rational operator-(Rational a, Rational b)
    {
        return Rational(a.m_numerator * b.m_denominator - b.m_numerator * a.m_denominator,
                        a.m_denominator * b.m_denominator);
    }

    // Towards zero.
    int Whole() const { return static_cast<int>(m_numerator / m_denominator); }

private:
    long long m_numerator;
    long long m_denominator;
};

// Hue in degrees, saturation and value from 0 to 1, in the way that textbooks give it.
COLORREF FromHsv(int hue, Rational saturation, Rational value)
{
    const Rational v = Rational(255) * value;
    const int sector = hue / 60;
    const Rational fraction = Rational(hue, 60) - Rational(sector);
    const int p = (v * (Rational(1) - saturation)).Whole();
    const int q = (v * (Rational(1) - saturation * fraction)).Whole();
    const int t = (v * (Rational(1) - saturation * (Rational(1) - fraction))).Whole();
    const int most = v.Whole();
    const int components[6][3] = {{most, t, p}, {q, most, p}, {p, most, t}, {p, q, most}, {t, p, most}, {most, p, q}};
    const auto& [red, green, blue] = components[sector];
    return RGB(red, green, blue);
}

COLORREF ModelColor(int index)
{
    static const COLORREF named[] = {0x0000FF, 0x00FFFF, 0x00FF00, 0xFFFF00, 0xFF0000,
                                     0xFF00FF, 0xFFFFFF, 0x808080, 0xC0C0C0};
    static const COLORREF greys[] = {0x333333, 0x5B5B5B, 0x848484, 0xADADAD, 0xD6D6D6, 0xFFFFFF};
    static const Rational values[] = {Rational(1), Rational(4, 5), Rational(3, 5), Rational(1, 2), Rational(3, 10)};
    if (index < 10)
        return named[index - 1];
    if (index >= 250)
        return greys[index - 250];
    return FromHsv((index / 10 - 1) * 15, Rational(1, 1 + index % 2), values[index % 10 / 2]);
}

struct Row {
    const wchar_t* index;
    int red;
    int green;
    int blue;
};

void ExpectRow(const Row& row)
{
    EXPECT_EQ(CADColorToREF(row.index), RGB(row.red, row.green, row.blue))
        << testing::PrintToString(std::wstring(row.index));
}

// How many blocks of memory the library keeps from a lookup.
std::ptrdiff_t KeptFor(const std::wstring& index)
{
    const test::FailingHeap heap;
    const std::ptrdiff_t before = test::FailingHeap::Held();
    CADColorToREF(index);
    return test::FailingHeap::Held() - before;
}

} // namespace

TEST(CADColorToREF, EveryIndexHasTheColourOfTheRule)
{
    for (int index = 1; index <= 255; ++index)
        EXPECT_EQ(CADColorToREF(std::to_wstring(index)), ModelColor(index)) << index;
}

TEST(CADColorToREF, NamedColours)
{
    const Row rows[] = {
        {L"1", 255, 0, 0},   {L"2", 255, 255, 0},   {L"3", 0, 255, 0},     {L"4", 0, 255, 255},   {L"5", 0, 0, 255},
        {L"6", 255, 0, 255}, {L"7", 255, 255, 255}, {L"8", 128, 128, 128}, {L"9", 192, 192, 192},
    };
    for (const Row& row : rows)
        ExpectRow(row);
}

TEST(CADColorToREF, GreyRamp)
{
    const Row rows[] = {
        {L"250", 51, 51, 51},    {L"251", 91, 91, 91},    {L"252", 132, 132, 132},
        {L"253", 173, 173, 173}, {L"254", 214, 214, 214}, {L"255", 255, 255, 255},
    };
    for (const Row& row : rows)
        ExpectRow(row);
}

TEST(CADColorToREF, TellingRows)
{
    const Row rows[] = {
        {L"10", 255, 0, 0},   {L"11", 255, 127, 127}, {L"12", 204, 0, 0},     {L"13", 204, 102, 102},
        {L"14", 153, 0, 0},   {L"15", 153, 76, 76},   {L"16", 127, 0, 0},     {L"17", 127, 63, 63},
        {L"18", 76, 0, 0},    {L"19", 76, 38, 38},    {L"20", 255, 63, 0},    {L"21", 255, 159, 127},
        {L"30", 255, 127, 0}, {L"40", 255, 191, 0},   {L"41", 255, 223, 127}, {L"43", 204, 178, 102},
        {L"69", 66, 76, 38},  {L"100", 0, 255, 63},   {L"170", 0, 0, 255},    {L"171", 127, 127, 255},
        {L"249", 76, 38, 47},
    };
    for (const Row& row : rows)
        ExpectRow(row);
}

TEST(CADColorToREF, AnyOtherTextIsBlackEachTime)
{
    const std::wstring others[] = {L"0",  L"256", L"01",  L"+1", L"",    L" 1",
                                   L"1 ", L"-1",  L"red", L"１", L"1.0", std::wstring(L"1\0", 2)};
    for (int round = 0; round < 2; ++round) {
        for (const std::wstring& other : others)
            EXPECT_EQ(CADColorToREF(other), 0U) << testing::PrintToString(other);
    }
    EXPECT_EQ(CADColorToREF(L"1"), 0x0000FFU) << "the table still stands";

    static int runs = 0;
    const std::wstring other = L"no index, run " + std::to_wstring(++runs);
    EXPECT_EQ(KeptFor(other), 2) << "a node and its text";
    EXPECT_EQ(KeptFor(other), 0) << "the table has them";
}
