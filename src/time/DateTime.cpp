#include "Kelpkit/DateTime.h"

#include <cmath>
#include <ctime>
#include <cwchar>
#include <iterator>
#include <limits>
#include <utility>

namespace KELPKIT
{
namespace
{

// Set when the library is loaded; the functions only read them. They are given in days, since loading must not call the
// platform's conversions, whose DLL is loaded late.
const COleDateTime kZeroDate;
const COleDateTime kEpoch(25569 + 8.0 / 24); // 1970-01-01 08:00:00, the Unix epoch in local time of UTC+8
const COleDateTime kOverDate(401596.0);      // 2999-07-12 00:00:00

// Cut off, as the processor does it: what no 64-bit integer holds becomes the least one.
std::int64_t Truncated(double value)
{
    return std::fabs(value) < 0x1p63 ? static_cast<std::int64_t>(value) : std::numeric_limits<std::int64_t>::min();
}

} // namespace

std::int64_t StringToTime_t(const std::wstring& text)
{
    std::tm time = {};
    time.tm_isdst = -1;
    // By contract the numbers go into the fields as they are, and how many are read does not matter.
    ::swscanf_s(text.c_str(), L"%d/%d/%d %d:%d:%d", &time.tm_year, &time.tm_mon, &time.tm_mday, &time.tm_hour,
                &time.tm_min, &time.tm_sec);
    return ::_mktime64(&time);
}

std::wstring Time_tToString(const std::int64_t& time)
{
    std::tm local;
    if (::_localtime64_s(&local, &time) != 0)
        return {};
    wchar_t text[64];
    ::swprintf_s(text, std::size(text), L"date is %04d-%02d-%02d %02d:%02d:%02d", local.tm_year, local.tm_mon,
                 local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
    return text;
}

// For applications whose headers declare the time without const.
KELPKIT_API std::wstring Time_tToString(std::int64_t& time)
{
    return Time_tToString(std::as_const(time));
}

std::int64_t OleDateTimeToMS(const COleDateTime& date)
{
    if (date == kZeroDate)
        return 0;
    if (date == kOverDate)
        return -1;
    // The value counts whatever the status, and subtraction is for valid dates.
    return Truncated((COleDateTime(date.m_dt) - kEpoch).GetTotalSeconds() * 1000);
}

COleDateTime MSToOleDateTime(std::int64_t milliseconds)
{
    if (milliseconds == -1)
        return kOverDate;
    const std::int64_t seconds = milliseconds / 1000;
    const std::int64_t minutes = seconds / 60;
    const std::int64_t hours = minutes / 60;
    const std::int64_t days = hours / 24;
    const double span = static_cast<double>(days) + static_cast<double>(hours - 24 * days) / 24 +
                        static_cast<double>(minutes - 60 * hours) / 1440 +
                        static_cast<double>(seconds - 60 * minutes) / 86400;
    // By contract a plain sum, also where it is negative.
    return COleDateTime(span + kEpoch.m_dt);
}

std::wstring OleDateTimeToString(COleDateTime date)
{
    return date.Format(L"%Y-%m-%d").GetString();
}

COleDateTime StringToOleDateTime(const std::wstring& text)
{
    COleDateTime date;
    date.ParseDateTime(text.c_str());
    return date;
}

bool IsOverDateTime(const COleDateTime& date)
{
    return date == kOverDate;
}

COleDateTime GetOverDateTime()
{
    return kOverDate;
}

} // namespace KELPKIT
