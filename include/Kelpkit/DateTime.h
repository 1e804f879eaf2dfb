#pragma once

/// @file
/// Dates and times: conversions between text, seconds since 1970, milliseconds and COleDateTime.
///
/// A COleDateTime is a date with its time of day, in days since 30 December 1899, with a status: valid, invalid or
/// null. It belongs to no time zone. Two valid dates are equal if their values differ by less than half a second; two
/// null dates are equal; an invalid date equals nothing.
///
/// Milliseconds are counted from 1970-01-01 08:00:00, which is the Unix epoch in local time of UTC+8. Two dates stand
/// apart from the scale:
///
///     2999-07-12 00:00:00  the over date, which stands for "no date" or "never": -1 milliseconds
///     1899-12-30 00:00:00  the zero date, that of a new COleDateTime: 0 milliseconds
///
/// Local time is the C runtime's: in the zone that the environment variable TZ names when the program starts ("CST-8"),
/// without one in that of Windows.
///
/// Each function may be called from any thread. None throws anything but std::bad_alloc and std::length_error.

#include "Export.h"
#include "Mfc.h"

#include <cstdint>
#include <string>

namespace KELPKIT
{

/// Text "year/month/day hour:minute:second", in local time, to seconds since 1970-01-01 00:00:00 UTC. The numbers are
/// the fields of a struct tm as they are: the year is counted from 1900, the month from 0. Numbers beyond a field's
/// range are carried over, as mktime does it. What is not read, since the text ends or is written otherwise, is 0.
/// Daylight saving is the runtime's to know. -1 where the runtime cannot represent the time: before 1970, in local time
/// as in UTC, and after the year 3000.
///
///     "120/4/6 7:8:9"      6 May 2020, 07:08:09
///     "120/4/6"            6 May 2020, 00:00:00
///     "120-4-6"            31 December 2019, which is day 0 of 2020: only the year is read
///     "2020/5/6 7:8:9"     -1: the year is 3920
///     ""                   -1: day 0 of 1900
KELPKIT_API std::int64_t StringToTime_t(const std::wstring& text);

/// Seconds since 1970-01-01 00:00:00 UTC to text in local time, with the words "date is " and the fields of a struct tm
/// as they are: the year is counted from 1900, the month from 0. 6 May 2020, 07:08:09, gives
/// "date is 0120-04-06 07:08:09". Empty for a time that the runtime cannot break down: a negative one, or one more than a
/// few hours after the year 3000.
KELPKIT_API std::wstring Time_tToString(const std::int64_t& time);

/// A date to milliseconds since 1970-01-01 08:00:00, rounded to whole seconds, halves away from zero. -1 for what
/// equals the over date, 0 for what equals the zero date. The value of any other date counts, whatever its status.
/// Milliseconds that 64 bits cannot hold give the least 64-bit integer.
///
///     1970-01-01 08:00:01  1000
///     1970-01-01 00:00:00  -28800000
///     1899-12-30 00:00:00  0
///     2999-07-12 00:00:00  -1
KELPKIT_API std::int64_t OleDateTimeToMS(const COleDateTime& date);

/// Milliseconds since 1970-01-01 08:00:00 to a date, which is valid. Less than a second is cut off, towards the epoch.
/// -1 gives the over date.
///
///     0                    1970-01-01 08:00:00
///     1999                 1970-01-01 08:00:01
///     -999                 1970-01-01 08:00:00
///     -1000                1970-01-01 07:59:59
///
/// The date's value is the plain sum of days, also below 0, where a date's time of day counts upwards all the same. So
/// what comes before 30 December 1899 comes out up to two days late: -2209212000000, which is 29 December 1899, 18:00,
/// gives -0.25, which is 30 December 1899, 06:00.
KELPKIT_API COleDateTime MSToOleDateTime(std::int64_t milliseconds);

/// A date as text: "2024-03-05". The time of day does not show, save that the last half second of a day counts as the
/// next. A null date gives an empty text. One that is invalid, or that Windows does not take for a date of the years 100
/// to 9999, gives string 55296 of the host program's resources; without it, "Invalid DateTime".
KELPKIT_API std::wstring OleDateTimeToString(COleDateTime date);

/// Text as people write it to a date, by the rules of the user's locale (VarDateFromStr): "2024-03-05 14:30" and the
/// like. A time alone is one of 30 December 1899. A text that is not understood, such as "abc", gives an invalid date
/// of value 0; any other failure one of value -1. The text ends at its first zero character.
KELPKIT_API COleDateTime StringToOleDateTime(const std::wstring& text);

/// Whether a date is the over date, within half a second. False for invalid and null dates.
KELPKIT_API bool IsOverDateTime(const COleDateTime& date);

/// The over date: 2999-07-12 00:00:00, which stands for "no date".
KELPKIT_API COleDateTime GetOverDateTime();

} // namespace KELPKIT
