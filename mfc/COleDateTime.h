#pragma once

// Stand-ins for MFC's COleDateTime and COleDateTimeSpan, for toolchains without MFC: the same names with the same
// results, as far as Kelpkit and its applications use them. What a date is comes from the platform's OLE automation
// functions.

#include "CString.h"

#include <ctime>

// SYSTEMTIME of windows.h, which need not be there.
struct _SYSTEMTIME; // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): it is called so

// A span of time in days. Negative ones go back.
class COleDateTimeSpan
{
public:
    enum DateTimeSpanStatus { valid = 0, invalid = 1, null = 2 };

    COleDateTimeSpan() = default;
    COleDateTimeSpan(double days) : m_span(days) {} // NOLINT(google-explicit-constructor): as the real one
    COleDateTimeSpan(long days, int hours, int minutes, int seconds)
        : m_span(static_cast<double>(days) + hours / 24.0 + minutes / 1440.0 + seconds / 86400.0)
    {
    }

    DateTimeSpanStatus GetStatus() const { return m_status; }
    void SetStatus(DateTimeSpanStatus status) { m_status = status; }

    // The whole span, moved away from zero by half a second and then cut off: whole numbers.
    double GetTotalDays() const { return Total(1); }
    double GetTotalHours() const { return Total(24); }
    double GetTotalMinutes() const { return Total(1440); }
    double GetTotalSeconds() const { return Total(86400); }

    double m_span = 0;
    DateTimeSpanStatus m_status = valid;

private:
    double Total(double unitsInADay) const;
};

// A date with its time of day: days since 30 December 1899, with the time of day as a fraction. Before that the time
// of day counts upwards as well: -1.25 is 29 December 1899, 06:00.
class COleDateTime
{
public:
    enum DateTimeStatus { error = -1, valid = 0, invalid = 1, null = 2 };

    COleDateTime() = default;
    COleDateTime(double date) : m_dt(date) {} // NOLINT(google-explicit-constructor): as the real one

    // Invalid where the platform does not give the same date and time back: for 30 February, or the year 50. Of each number
    // the lower 16 bits count.
    COleDateTime(const _SYSTEMTIME& time); // NOLINT(google-explicit-constructor): likewise
    COleDateTime(int year, int month, int day, int hour, int minute, int second);

    // Seconds since 1970, UTC; the date is in local time. Invalid where the runtime cannot break them down.
    COleDateTime(long long time); // NOLINT(google-explicit-constructor): likewise

    // Now, in local time. windows.h turns GetCurrentTime() into GetTickCount() by a macro, hence the second name and
    // the parentheses.
    static auto(GetCurrentTime)() -> COleDateTime { return static_cast<long long>(std::time(nullptr)); }
    static COleDateTime GetTickCount() { return (GetCurrentTime)(); }

    DateTimeStatus GetStatus() const { return m_status; }
    void SetStatus(DateTimeStatus status) { m_status = status; }

    // -1 where the status is not valid, or the value is no date between the years 100 and 9999.
    int GetYear() const;
    int GetMonth() const;
    int GetDay() const;
    int GetHour() const;
    int GetMinute() const;
    int GetSecond() const;
    int GetDayOfWeek() const; // 1 is Sunday
    int GetDayOfYear() const; // 1 is 1 January

    // Two valid dates are equal within half a second, and so are two null dates. Invalid ones equal nothing.
    bool operator==(const COleDateTime& other) const;
    bool operator!=(const COleDateTime& other) const { return !(*this == other); }

    // Only valid dates come before or after each other.
    bool operator<(const COleDateTime& other) const;
    bool operator>(const COleDateTime& other) const { return other < *this; }
    bool operator<=(const COleDateTime& other) const { return *this < other || *this == other; }
    bool operator>=(const COleDateTime& other) const { return other <= *this; }

    // Time goes on across 30 December 1899. Null where an operand is null; else invalid where one is invalid or the sum
    // is outside of the years 100 to 9999.
    COleDateTime operator+(COleDateTimeSpan span) const;
    COleDateTime operator-(COleDateTimeSpan span) const;
    COleDateTimeSpan operator-(const COleDateTime& other) const;
    COleDateTime& operator+=(COleDateTimeSpan span) { return *this = *this + span; }
    COleDateTime& operator-=(COleDateTimeSpan span) { return *this = *this - span; }

    // The date as wcsftime writes it; empty where that is longer than 255 characters. A null date gives an empty text.
    // One that is invalid or no date gives string 55296 of the program's resources; without it, "Invalid DateTime".
    CString Format(const wchar_t* format) const;

    // Reads a date as people in the user's locale write it. If it cannot be read, the result is false and the date is
    // invalid: 0 where the text was not understood, -1 else.
    bool ParseDateTime(const wchar_t* text, unsigned long flags = 0, unsigned long locale = 0x400);

    double m_dt = 0;
    DateTimeStatus m_status = valid;
};
