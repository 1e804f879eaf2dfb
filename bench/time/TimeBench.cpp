#include "Bench.h"

#include "Kelpkit/DateTime.h"

#include <windows.h>

#include <oleauto.h>

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <cwchar>
#include <string>

namespace bench
{
namespace
{

std::time_t BySwscanf(const std::wstring& text)
{
    std::tm fields = {};
    std::swscanf(text.c_str(), L"%d/%d/%d %d:%d:%d", &fields.tm_year, &fields.tm_mon, &fields.tm_mday, &fields.tm_hour,
                 &fields.tm_min, &fields.tm_sec);
    return std::mktime(&fields);
}

std::wstring ByWcsftime(std::time_t time)
{
    wchar_t text[40];
    const std::size_t length = std::wcsftime(text, 40, L"date is %Y-%m-%d %H:%M:%S", std::localtime(&time));
    return {text, length};
}

std::wstring DateText(double date)
{
    UDATE fields = {};
    ::VarUdateFromDate(date, 0, &fields);
    wchar_t text[20];
    const int length = std::swprintf(text, 20, L"%04d-%02d-%02d", fields.st.wYear, fields.st.wMonth, fields.st.wDay);
    return {text, static_cast<std::size_t>(length)};
}

} // namespace

void Register()
{
    const auto& text = Keep<std::wstring>(L"120/4/6 7:8:9");
    Comparison("text to time", "\"120/4/6 7:8:9\"")
        .Kelpkit([&text] { return KELPKIT::StringToTime_t(text); })
        .Peer("swscanf and mktime", [&text] { return BySwscanf(text); });

    const std::int64_t& time = Keep(std::int64_t{1'588'748'889});
    Comparison("time to text", "6 May 2020")
        .Kelpkit([&time] { return KELPKIT::Time_tToString(time); })
        .Peer("localtime and wcsftime", [&time] { return ByWcsftime(time); });

    const COleDateTime& date = Keep(KELPKIT::MSToOleDateTime(1'588'748'889'000));
    Comparison("date to milliseconds", "6 May 2020").Kelpkit([&date] { return KELPKIT::OleDateTimeToMS(date); });
    Comparison("date to text", "6 May 2020")
        .Kelpkit([&date] { return KELPKIT::OleDateTimeToString(date); })
        .Peer("VarUdateFromDate and swprintf", [&date] { return DateText(date.m_dt); });

    const auto& written = Keep<std::wstring>(L"2020-05-06 07:08:09");
    Comparison("text to date", "\"2020-05-06 07:08:09\"")
        .Kelpkit([&written] { return KELPKIT::StringToOleDateTime(written); })
        .Peer("VarDateFromStr", [&written] {
            DATE parsed = 0;
            ::VarDateFromStr(const_cast<wchar_t*>(written.c_str()), LOCALE_USER_DEFAULT, 0, &parsed);
            return parsed;
        });
}

} // namespace bench
