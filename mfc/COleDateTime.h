#pragma once

/// @file
/// Stand-ins for MFC's COleDateTime and COleDateTimeSpan, for toolchains without MFC: the same names with the same
/// results. What a date is comes from the platform's OLE automation functions.
///
/// They are subsets, and what is declared here is all of them. Among what they lack are VARIANT, FILETIME, DBTIMESTAMP
/// and UDATE, COleDateTime's conversion to double (m_dt is public), the span's Format, and formats from resources.

#include "CString.h"

#include <ctime>

// SYSTEMTIME of windows.h, which need not be there.
struct _SYSTEMTIME; // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): it is called so

/// A span of time in days. Negative ones go back.
class COleDateTimeSpan
{
public:
    enum DateTimeSpanStatus { valid = 0, invalid = 1, null = 2 };

    /// A span of 0, or of that many days, hours, minutes and seconds: any numbers, which add up. Invalid if it is
    /// longer than 3,615,897 days either way, or not a number.
    COleDateTimeSpan() = default;
    COleDateTimeSpan(double days) // NOLINT(google-explicit-constructor): as the real one
        : m_span(days)
    {
        CheckRange();
    }
    COleDateTimeSpan(long days, int hours, int minutes, int seconds)
        : COleDateTimeSpan(static_cast<double>(days) + hours / 24.0 + minutes / 1440.0 + seconds / 86400.0)
    {
    }
    /// Becomes what the constructor makes of these, status included.
    void SetDateTimeSpan(long days, int hours, int minutes, int seconds) { *this = {days, hours, minutes, seconds}; }

    DateTimeSpanStatus GetStatus() const { return m_status; }
    /// Changes the status alone.
    void SetStatus(DateTimeSpanStatus status) { m_status = status; }

    /// The whole span, moved away from zero by half a second and then cut off: whole numbers.
    double GetTotalDays() const { return Total(1); }
    double GetTotalHours() const { return Total(24); }
    double GetTotalMinutes() const { return Total(1440); }
    double GetTotalSeconds() const { return Total(86400); }

    /// What the whole span has beyond the next larger unit: hours from -23 to 23, minutes and seconds from -59 to 59.
    /// All have the sign of the span. Of invalid spans, which may be of any size, 0 for what no long holds.
    long GetDays() const;
    long GetHours() const;
    long GetMinutes() const;
    long GetSeconds() const;

    /// In days with their fraction, whatever the status.
    operator double() const { return m_span; } // NOLINT(google-explicit-constructor): as the real one

    /// Two valid spans are equal within half a second, and so are two null ones. Invalid ones equal nothing.
    bool operator==(const COleDateTimeSpan& other) const;
    bool operator!=(const COleDateTimeSpan& other) const { return !(*this == other); }
    /// Only valid spans are shorter or longer than each other.
    bool operator<(const COleDateTimeSpan& other) const;
    bool operator>(const COleDateTimeSpan& other) const { return other < *this; }
    bool operator<=(const COleDateTimeSpan& other) const { return *this < other || *this == other; }
    bool operator>=(const COleDateTimeSpan& other) const { return other <= *this; }

    /// Null where an operand is null; else invalid where one is invalid or the result is too long.
    COleDateTimeSpan operator+(const COleDateTimeSpan& other) const;
    COleDateTimeSpan operator-(const COleDateTimeSpan& other) const { return *this + -other; }
    COleDateTimeSpan operator-() const;
    COleDateTimeSpan& operator+=(const COleDateTimeSpan& other) { return *this = *this + other; }
    COleDateTimeSpan& operator-=(const COleDateTimeSpan& other) { return *this = *this - other; }

    double m_span = 0;
    DateTimeSpanStatus m_status = valid;

private:
    void CheckRange();
    double Total(double unitsInADay) const;
};

/// A date with its time of day: days since 30 December 1899, with the time of day as a fraction. Before that the time
/// of day counts upwards as well: -1.25 is 29 December 1899, 06:00.
class COleDateTime
{
public:
    enum DateTimeStatus { error = -1, valid = 0, invalid = 1, null = 2 };

    COleDateTime() = default;
    COleDateTime(double date) : m_dt(date) {} // NOLINT(google-explicit-constructor): as the real one

    /// Invalid where the platform does not give the same date and time back: for 30 February, or the year 50. Of each
    /// number the lower 16 bits count.
    COleDateTime(const _SYSTEMTIME& time); // NOLINT(google-explicit-constructor): likewise
    COleDateTime(int year, int month, int day, int hour, int minute, int second);

    /// Seconds since 1970, UTC; the date is in local time. Invalid where the runtime cannot break them down.
    COleDateTime(long long time); // NOLINT(google-explicit-constructor): likewise

    /// Become what the constructor makes of these: of a date at midnight, of a time of day on 30 December 1899. Return
    /// the status: 0 if it is valid, else 1.
    int SetDateTime(int year, int month, int day, int hour, int minute, int second)
    {
        *this = {year, month, day, hour, minute, second};
        return m_status;
    }
    int SetDate(int year, int month, int day) { return SetDateTime(year, month, day, 0, 0, 0); }
    int SetTime(int hour, int minute, int second) { return SetDateTime(1899, 12, 30, hour, minute, second); }

    /// Now, in local time. windows.h turns GetCurrentTime() into GetTickCount() by a macro, hence the second name and
    /// the parentheses.
    static auto(GetCurrentTime)() -> COleDateTime { return static_cast<long long>(std::time(nullptr)); }
    static COleDateTime GetTickCount() { return (GetCurrentTime)(); }

    DateTimeStatus GetStatus() const { return m_status; }
    void SetStatus(DateTimeStatus status) { m_status = status; }

    /// -1 where the status is not valid, or the value is no date between the years 100 and 9999.
    int GetYear() const;
    int GetMonth() const;
    int GetDay() const;
    int GetHour() const;
    int GetMinute() const;
    int GetSecond() const;
    int GetDayOfWeek() const; // 1 is Sunday
    int GetDayOfYear() const; // 1 is 1 January

    /// The date and its parts, without milliseconds. False, with time unchanged, where GetYear is -1.
    bool GetAsSystemTime(_SYSTEMTIME& time) const;

    /// Two valid dates are equal within half a second, and so are two null dates. Invalid ones equal nothing.
    bool operator==(const COleDateTime& other) const;
    bool operator!=(const COleDateTime& other) const { return !(*this == other); }

    /// Only valid dates come before or after each other.
    bool operator<(const COleDateTime& other) const;
    bool operator>(const COleDateTime& other) const { return other < *this; }
    bool operator<=(const COleDateTime& other) const { return *this < other || *this == other; }
    bool operator>=(const COleDateTime& other) const { return other <= *this; }

    /// Time goes on across 30 December 1899. Null where an operand is null; else invalid where one is invalid or the
    /// sum is outside of the years 100 to 9999.
    COleDateTime operator+(COleDateTimeSpan span) const;
    COleDateTime operator-(COleDateTimeSpan span) const;
    COleDateTimeSpan operator-(const COleDateTime& other) const;
    COleDateTime& operator+=(COleDateTimeSpan span) { return *this = *this + span; }
    COleDateTime& operator-=(COleDateTimeSpan span) { return *this = *this - span; }

    /// The date as wcsftime writes it; empty where that is longer than 255 characters. A null date gives an empty text.
    /// One that is invalid or no date gives string 55296 of the program's resources; without it, "Invalid DateTime".
    CString Format(const wchar_t* format) const;

    /// Reads a date as people in the user's locale write it. If it cannot be read, the result is false and the date is
    /// invalid: 0 where the text was not understood, -1 else.
    bool ParseDateTime(const wchar_t* text, unsigned long flags = 0, unsigned long locale = 0x400);

    double m_dt = 0;
    DateTimeStatus m_status = valid;
};
