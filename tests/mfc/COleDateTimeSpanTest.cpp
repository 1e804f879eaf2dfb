#include <Kelpkit/Mfc.h> // first: MFC stands no windows.h before it

#include "support/Random.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

constexpr double kSecond = 1.0 / 86400;
constexpr double kLongest = 3615897;

COleDateTimeSpan WithStatus(double days, COleDateTimeSpan::DateTimeSpanStatus status)
{
    COleDateTimeSpan span(days);
    span.SetStatus(status);
    return span;
}

COleDateTimeSpan Invalid(double days = 1)
{
    return WithStatus(days, COleDateTimeSpan::invalid);
}

COleDateTimeSpan Null(double days = 1)
{
    return WithStatus(days, COleDateTimeSpan::null);
}

} // namespace

TEST(COleDateTimeSpan, IsMadeOfDaysToSeconds)
{
    EXPECT_EQ(COleDateTimeSpan().m_span, 0);
    EXPECT_EQ(COleDateTimeSpan().GetStatus(), COleDateTimeSpan::valid);
    EXPECT_DOUBLE_EQ(COleDateTimeSpan(2, 3, 4, 5).m_span, 2 + (3 * 3600 + 4 * 60 + 5) * kSecond);
    EXPECT_DOUBLE_EQ(COleDateTimeSpan(0, -1, 0, 0).m_span, -1.0 / 24);
    EXPECT_EQ(COleDateTimeSpan(1.5).GetTotalHours(), 36);
}

TEST(COleDateTimeSpan, TotalsAreWholeNumbers)
{
    const COleDateTimeSpan span(2, 3, 4, 5);
    EXPECT_EQ(span.GetTotalDays(), 2);
    EXPECT_EQ(span.GetTotalHours(), 51);
    EXPECT_EQ(span.GetTotalMinutes(), 3064);
    EXPECT_EQ(span.GetTotalSeconds(), 183845);
    const COleDateTimeSpan back(-2, -3, -4, -5);
    EXPECT_EQ(back.GetTotalDays(), -2);
    EXPECT_EQ(back.GetTotalHours(), -51);
    EXPECT_EQ(back.GetTotalMinutes(), -3064);
    EXPECT_EQ(back.GetTotalSeconds(), -183845);
}

TEST(COleDateTimeSpan, TotalSecondsRoundHalvesAwayFromZero)
{
    EXPECT_EQ(COleDateTimeSpan(0.499 * kSecond).GetTotalSeconds(), 0);
    EXPECT_EQ(COleDateTimeSpan(0.501 * kSecond).GetTotalSeconds(), 1);
    EXPECT_EQ(COleDateTimeSpan(-0.499 * kSecond).GetTotalSeconds(), 0);
    EXPECT_EQ(COleDateTimeSpan(-0.501 * kSecond).GetTotalSeconds(), -1);
    EXPECT_EQ(COleDateTimeSpan(-1.499 * kSecond).GetTotalSeconds(), -1);
    EXPECT_EQ(COleDateTimeSpan(-1.501 * kSecond).GetTotalSeconds(), -2);
}

TEST(COleDateTimeSpan, IsInvalidBeyondItsLimits)
{
    const struct {
        double days;
        bool isValid;
    } cases[] = {{kLongest, true},
                 {-kLongest, true},
                 {std::nextafter(kLongest, 1e9), false},
                 {std::nextafter(-kLongest, -1e9), false},
                 {1e300, false},
                 {std::numeric_limits<double>::infinity(), false},
                 {-std::numeric_limits<double>::infinity(), false},
                 {std::numeric_limits<double>::quiet_NaN(), false}};
    for (const auto& c : cases) {
        const auto status = c.isValid ? COleDateTimeSpan::valid : COleDateTimeSpan::invalid;
        EXPECT_EQ(COleDateTimeSpan(c.days).GetStatus(), status) << c.days;
        COleDateTimeSpan assigned = Null();
        assigned = c.days;
        EXPECT_EQ(assigned.GetStatus(), status) << c.days;
    }
    EXPECT_EQ(COleDateTimeSpan(3615897, 0, 0, 0).GetStatus(), COleDateTimeSpan::valid);
    EXPECT_EQ(COleDateTimeSpan(3615897, 0, 0, 1).GetStatus(), COleDateTimeSpan::invalid);
    EXPECT_EQ(COleDateTimeSpan(-3615897, 0, 0, -1).GetStatus(), COleDateTimeSpan::invalid);
    const COleDateTime first(100, 1, 1, 0, 0, 0);
    EXPECT_EQ((COleDateTime(9999, 12, 29, 0, 0, 0) - first).GetStatus(), COleDateTimeSpan::valid);
    EXPECT_EQ((COleDateTime(9999, 12, 30, 0, 0, 0) - first).GetStatus(), COleDateTimeSpan::invalid);
}

TEST(COleDateTimeSpan, CanBeSetAnew)
{
    COleDateTimeSpan span = Null();
    span.SetDateTimeSpan(2, 3, 4, 5);
    EXPECT_EQ(span.GetStatus(), COleDateTimeSpan::valid);
    EXPECT_EQ(span.GetTotalSeconds(), 183845);
    span.SetDateTimeSpan(0, 0, 0, -90000);
    EXPECT_EQ(span.GetTotalSeconds(), -90000) << "any numbers";
    span.SetDateTimeSpan(4000000, 0, 0, 0);
    EXPECT_EQ(span.GetStatus(), COleDateTimeSpan::invalid);
    span.SetDateTimeSpan(1, 0, 0, 0);
    EXPECT_EQ(span.GetStatus(), COleDateTimeSpan::valid);
}

TEST(COleDateTimeSpan, HasDaysHoursMinutesAndSeconds)
{
    const COleDateTimeSpan span(2, 3, 4, 5);
    EXPECT_EQ(span.GetDays(), 2);
    EXPECT_EQ(span.GetHours(), 3);
    EXPECT_EQ(span.GetMinutes(), 4);
    EXPECT_EQ(span.GetSeconds(), 5);
    EXPECT_EQ((-span).GetDays(), -2);
    EXPECT_EQ((-span).GetHours(), -3);
    EXPECT_EQ((-span).GetMinutes(), -4);
    EXPECT_EQ((-span).GetSeconds(), -5);
    const COleDateTimeSpan nearly(1 - 0.4 * kSecond);
    EXPECT_EQ(nearly.GetDays(), 1);
    EXPECT_EQ(nearly.GetHours(), 0);
    EXPECT_EQ(nearly.GetMinutes(), 0);
    EXPECT_EQ(nearly.GetSeconds(), 0);
}

TEST(COleDateTimeSpan, PartsAddUpToTheSecondsItIsMadeOf)
{
    test::Random random(20);
    for (int i = 0; i < 20000; ++i) {
        // Up to some 3.6 million days, or up to some hours.
        long long seconds = random.Below(i % 2 == 0 ? 3600000 : 1) * 86400LL + random.Below(86400);
        if (random.Below(2) == 1)
            seconds = -seconds;
        const COleDateTimeSpan span(static_cast<double>(seconds) / 86400);
        ASSERT_EQ(span.GetDays(), seconds / 86400) << seconds;
        ASSERT_EQ(span.GetHours(), seconds / 3600 % 24) << seconds;
        ASSERT_EQ(span.GetMinutes(), seconds / 60 % 60) << seconds;
        ASSERT_EQ(span.GetSeconds(), seconds % 60) << seconds;
        ASSERT_EQ(span.GetTotalSeconds(), static_cast<double>(seconds));
        ASSERT_EQ(span, COleDateTimeSpan(static_cast<long>(seconds / 86400), static_cast<int>(seconds / 3600 % 24),
                                         static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60)));
    }
}

TEST(COleDateTimeSpan, AddsAndSubtracts)
{
    COleDateTimeSpan span(10.0);
    EXPECT_EQ((span + COleDateTimeSpan(2.5)).m_span, 12.5);
    EXPECT_EQ((span - COleDateTimeSpan(2.5)).m_span, 7.5);
    EXPECT_EQ((-span).m_span, -10);
    span -= COleDateTimeSpan(100.0);
    EXPECT_EQ(span.GetTotalDays(), -90);
    span += COleDateTimeSpan(1, 0, 0, 0);
    EXPECT_EQ(span.GetTotalDays(), -89);
    const double days = span;
    EXPECT_EQ(days, -89);
}

TEST(COleDateTimeSpan, IsEqualWithinHalfASecond)
{
    const COleDateTimeSpan span(2, 3, 4, 5);
    EXPECT_TRUE(span == COleDateTimeSpan(span.m_span + 0.499 * kSecond));
    EXPECT_TRUE(span == COleDateTimeSpan(span.m_span - 0.499 * kSecond));
    EXPECT_TRUE(span != COleDateTimeSpan(span.m_span + 0.501 * kSecond));
    EXPECT_TRUE(span != COleDateTimeSpan(span.m_span - 0.501 * kSecond));
    EXPECT_FALSE(COleDateTimeSpan() == COleDateTimeSpan(0.5 * kSecond)) << "half a second exactly";
}

TEST(COleDateTimeSpan, IsOrderedByItsLength)
{
    const COleDateTimeSpan inOrder[] = {-2.0, -1.5, 0.0, 1.0, 1.5};
    for (int i = 0; i < 5; ++i) {
        for (int j = 0; j < 5; ++j) {
            EXPECT_EQ(inOrder[i] < inOrder[j], i < j) << i << ' ' << j;
            EXPECT_EQ(inOrder[i] > inOrder[j], i > j) << i << ' ' << j;
            EXPECT_EQ(inOrder[i] <= inOrder[j], i <= j) << i << ' ' << j;
            EXPECT_EQ(inOrder[i] >= inOrder[j], i >= j) << i << ' ' << j;
        }
    }
}

TEST(COleDateTimeSpan, SumsAreInvalidBeyondTheLimits)
{
    const COleDateTimeSpan longest(kLongest);
    EXPECT_EQ((longest + COleDateTimeSpan(0, 0, 0, 1)).GetStatus(), COleDateTimeSpan::invalid);
    EXPECT_EQ((-longest - COleDateTimeSpan(0, 0, 0, 1)).GetStatus(), COleDateTimeSpan::invalid);
    EXPECT_EQ((longest - longest).GetStatus(), COleDateTimeSpan::valid);
    EXPECT_EQ((-longest).GetStatus(), COleDateTimeSpan::valid);
}

TEST(COleDateTimeSpan, IsEqualOnlyInTheSameStatus)
{
    EXPECT_TRUE(Null(1) == Null(2)) << "null spans are equal whatever their values";
    EXPECT_FALSE(Invalid() == Invalid()) << "invalid ones never";
    EXPECT_TRUE(Invalid() != Invalid());
    EXPECT_TRUE(COleDateTimeSpan(1.0) != Null(1));
    EXPECT_TRUE(COleDateTimeSpan(1.0) != Invalid(1));
}

TEST(COleDateTimeSpan, SumsHaveTheWorseStatus)
{
    const COleDateTimeSpan span(1.0);
    EXPECT_EQ((span + span).GetStatus(), COleDateTimeSpan::valid);
    EXPECT_EQ((span + Null()).GetStatus(), COleDateTimeSpan::null);
    EXPECT_EQ((Null() - span).GetStatus(), COleDateTimeSpan::null);
    EXPECT_EQ((span + Invalid()).GetStatus(), COleDateTimeSpan::invalid);
    EXPECT_EQ((Invalid() - span).GetStatus(), COleDateTimeSpan::invalid);
    EXPECT_EQ((Invalid() + Null()).GetStatus(), COleDateTimeSpan::null);
    EXPECT_EQ((Null() - Invalid()).GetStatus(), COleDateTimeSpan::null);
}

#if !defined(_AFX) // MFC asserts that spans are valid.
TEST(COleDateTimeSpan, OnlyValidSpansAreShorterOrLongerThanEachOther)
{
    const COleDateTimeSpan span(1.0);
    EXPECT_FALSE(Invalid(0) < span || Invalid(0) <= span || Invalid(9) > span || Invalid(9) >= span);
    EXPECT_FALSE(Null(0) < span || Null(0) <= span || Null(9) > span || Null(9) >= span);
    EXPECT_EQ((-Null()).GetStatus(), COleDateTimeSpan::null);
}

TEST(COleDateTimeSpan, HasNoPartsThatDoNotFit)
{
    for (const double days : {1e300, -1e300, std::numeric_limits<double>::infinity()})
        EXPECT_EQ(COleDateTimeSpan(days).GetDays(), 0) << days;
    const COleDateTimeSpan none(std::numeric_limits<double>::quiet_NaN());
    EXPECT_TRUE(none.GetDays() == 0 && none.GetHours() == 0 && none.GetMinutes() == 0 && none.GetSeconds() == 0);
}
#endif
