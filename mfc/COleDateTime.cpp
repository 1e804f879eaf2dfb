#include "COleDateTime.h"

#include <windows.h>

#include <oleauto.h>

#include <cmath>
#include <cwchar>
#include <iterator>

namespace
{

constexpr double kHalfSecond = 0.5 / 86400;

// Days in which time runs evenly, also before 30 December 1899.
double Linear(double date)
{
    if (date > -kHalfSecond)
        return date;
    const double day = std::ceil(date);
    return day - (date - day);
}

double FromLinear(double days)
{
    if (days > -kHalfSecond)
        return days;
    const double day = std::floor(days);
    return day - (days - day);
}

// From 1 January 100 to 31 December 9999, each with its time of day.
bool IsInRange(double date)
{
    return date > -657435 && date < 2958466;
}

bool BreakDown(const COleDateTime& date, UDATE& parts)
{
    return date.m_status == COleDateTime::valid && ::VarUdateFromDate(date.m_dt, 0, &parts) == S_OK;
}

int Part(const COleDateTime& date, WORD SYSTEMTIME::*part, int offset = 0)
{
    UDATE parts;
    return BreakDown(date, parts) ? parts.st.*part + offset : int{COleDateTime::error};
}

WORD Word(int value)
{
    return static_cast<WORD>(value < 0 ? 0 : value);
}

SYSTEMTIME SystemTime(int year, int month, int day, int hour, int minute, int second)
{
    SYSTEMTIME time = {};
    time.wYear = Word(year);
    time.wMonth = Word(month);
    time.wDay = Word(day);
    time.wHour = Word(hour);
    time.wMinute = Word(minute);
    time.wSecond = Word(second);
    return time;
}

bool IsSameTime(const SYSTEMTIME& a, const SYSTEMTIME& b)
{
    return a.wYear == b.wYear && a.wMonth == b.wMonth && a.wDay == b.wDay && a.wHour == b.wHour &&
           a.wMinute == b.wMinute && a.wSecond == b.wSecond;
}

long Whole(double number)
{
    return std::fabs(number) < 0x1p31 ? static_cast<long>(number) : 0;
}

CString InvalidText()
{
    constexpr UINT kInvalidDateTime = 55296;
    const wchar_t* text = nullptr; // into the resource, which has no terminator
    const int length =
        ::LoadStringW(::GetModuleHandleW(nullptr), kInvalidDateTime, reinterpret_cast<wchar_t*>(&text), 0);
    return length > 0 ? CString(text, length) : CString(L"Invalid DateTime");
}

} // namespace

long COleDateTimeSpan::GetDays() const
{
    return Whole(GetTotalDays());
}

long COleDateTimeSpan::GetHours() const
{
    return Whole(std::fmod(GetTotalHours(), 24));
}

long COleDateTimeSpan::GetMinutes() const
{
    return Whole(std::fmod(GetTotalMinutes(), 60));
}

long COleDateTimeSpan::GetSeconds() const
{
    return Whole(std::fmod(GetTotalSeconds(), 60));
}

bool COleDateTimeSpan::operator==(const COleDateTimeSpan& other) const
{
    if (m_status != other.m_status)
        return false;
    return m_status == null || (m_status == valid && std::fabs(m_span - other.m_span) < kHalfSecond);
}

bool COleDateTimeSpan::operator<(const COleDateTimeSpan& other) const
{
    return m_status == valid && other.m_status == valid && m_span < other.m_span;
}

COleDateTimeSpan COleDateTimeSpan::operator+(const COleDateTimeSpan& other) const
{
    COleDateTimeSpan sum(m_span + other.m_span);
    if (m_status == null || other.m_status == null)
        sum.m_status = null;
    else if (m_status != valid || other.m_status != valid)
        sum.m_status = invalid;
    return sum;
}

COleDateTimeSpan COleDateTimeSpan::operator-() const
{
    COleDateTimeSpan negated = *this;
    negated.m_span = -m_span;
    return negated;
}

void COleDateTimeSpan::CheckRange()
{
    constexpr double kLongest = 3615897;
    if (!(std::fabs(m_span) <= kLongest))
        m_status = invalid;
}

double COleDateTimeSpan::Total(double unitsInADay) const
{
    return std::trunc((m_span + (m_span < 0 ? -kHalfSecond : kHalfSecond)) * unitsInADay);
}

COleDateTime::COleDateTime(const SYSTEMTIME& time)
{
    SYSTEMTIME source = time;
    SYSTEMTIME back;
    if (!::SystemTimeToVariantTime(&source, &m_dt) || !::VariantTimeToSystemTime(m_dt, &back) ||
        !IsSameTime(source, back))
        m_status = invalid;
}

COleDateTime::COleDateTime(int year, int month, int day, int hour, int minute, int second)
    : COleDateTime(SystemTime(year, month, day, hour, minute, second))
{
}

COleDateTime::COleDateTime(long long time)
{
    std::tm local;
    if (::_localtime64_s(&local, &time) == 0)
        *this = COleDateTime(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                             local.tm_sec);
    else
        m_status = invalid;
}

int COleDateTime::GetYear() const
{
    return Part(*this, &SYSTEMTIME::wYear);
}

int COleDateTime::GetMonth() const
{
    return Part(*this, &SYSTEMTIME::wMonth);
}

int COleDateTime::GetDay() const
{
    return Part(*this, &SYSTEMTIME::wDay);
}

int COleDateTime::GetHour() const
{
    return Part(*this, &SYSTEMTIME::wHour);
}

int COleDateTime::GetMinute() const
{
    return Part(*this, &SYSTEMTIME::wMinute);
}

int COleDateTime::GetSecond() const
{
    return Part(*this, &SYSTEMTIME::wSecond);
}

int COleDateTime::GetDayOfWeek() const
{
    return Part(*this, &SYSTEMTIME::wDayOfWeek, 1);
}

int COleDateTime::GetDayOfYear() const
{
    UDATE parts;
    return BreakDown(*this, parts) ? parts.wDayOfYear : int{error};
}

bool COleDateTime::GetAsSystemTime(SYSTEMTIME& time) const
{
    UDATE parts;
    if (!BreakDown(*this, parts))
        return false;
    time = parts.st;
    time.wMilliseconds = 0;
    return true;
}

bool COleDateTime::operator==(const COleDateTime& other) const
{
    if (m_status != other.m_status)
        return false;
    return m_status == null || (m_status == valid && std::fabs(m_dt - other.m_dt) < kHalfSecond);
}

bool COleDateTime::operator<(const COleDateTime& other) const
{
    return m_status == valid && other.m_status == valid && Linear(m_dt) < Linear(other.m_dt);
}

COleDateTime COleDateTime::operator+(COleDateTimeSpan span) const
{
    COleDateTime sum(FromLinear(Linear(m_dt) + span.m_span));
    if (m_status == null || span.m_status == COleDateTimeSpan::null)
        sum.m_status = null;
    else if (m_status != valid || span.m_status != COleDateTimeSpan::valid || !IsInRange(sum.m_dt))
        sum.m_status = invalid;
    return sum;
}

COleDateTime COleDateTime::operator-(COleDateTimeSpan span) const
{
    return *this + -span;
}

COleDateTimeSpan COleDateTime::operator-(const COleDateTime& other) const
{
    COleDateTimeSpan span(Linear(m_dt) - Linear(other.m_dt));
    if (m_status == null || other.m_status == null)
        span.m_status = COleDateTimeSpan::null;
    else if (m_status != valid || other.m_status != valid)
        span.m_status = COleDateTimeSpan::invalid;
    return span;
}

CString COleDateTime::Format(const wchar_t* format) const
{
    if (m_status == null)
        return {};
    UDATE parts;
    if (!BreakDown(*this, parts))
        return InvalidText();
    std::tm time = {};
    time.tm_year = parts.st.wYear - 1900;
    time.tm_mon = parts.st.wMonth - 1;
    time.tm_mday = parts.st.wDay;
    time.tm_hour = parts.st.wHour;
    time.tm_min = parts.st.wMinute;
    time.tm_sec = parts.st.wSecond;
    time.tm_wday = parts.st.wDayOfWeek;
    time.tm_yday = parts.wDayOfYear - 1;
    wchar_t text[256];
    const std::size_t length = std::wcsftime(text, std::size(text), format, &time);
    // Not every runtime says 0 where there is no room.
    return length < std::size(text) ? CString(text, static_cast<int>(length)) : CString();
}

bool COleDateTime::ParseDateTime(const wchar_t* text, unsigned long flags, unsigned long locale)
{
    // Older headers have the text for writable.
    const HRESULT result = ::VarDateFromStr(const_cast<wchar_t*>(text == nullptr ? L"" : text), locale, flags, &m_dt);
    m_status = SUCCEEDED(result) ? valid : invalid;
    if (FAILED(result))
        m_dt = result == DISP_E_TYPEMISMATCH ? 0 : -1;
    return m_status == valid;
}
