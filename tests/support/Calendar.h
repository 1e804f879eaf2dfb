#pragma once

#include <cstdint>

namespace test
{

// The Gregorian calendar, in whole numbers, as a model to compare with.
struct CivilDate {
    int year;
    int month;
    int day;
};

constexpr bool IsLeapYear(int year)
{
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

constexpr int DaysInMonth(int year, int month)
{
    constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return kDays[month - 1] + (month == 2 && IsLeapYear(year) ? 1 : 0);
}

constexpr CivilDate NextDay(CivilDate date)
{
    if (++date.day > DaysInMonth(date.year, date.month)) {
        date.day = 1;
        if (++date.month > 12) {
            date.month = 1;
            ++date.year;
        }
    }
    return date;
}

// Days from 30 December 1899, by counting.
constexpr std::int64_t DaysSince1899(int year, int month, int day)
{
    std::int64_t days = 0;
    for (int y = 1900; y < year; ++y)
        days += IsLeapYear(y) ? 366 : 365;
    for (int y = year; y < 1900; ++y)
        days -= IsLeapYear(y) ? 366 : 365;
    for (int m = 1; m < month; ++m)
        days += DaysInMonth(year, m);
    return days + day + 1;
}

static_assert(DaysSince1899(1899, 12, 30) == 0);
static_assert(DaysSince1899(1970, 1, 1) == 25569);
static_assert(DaysSince1899(2999, 7, 12) == 401596);

} // namespace test
