#include "Tour.h"

#include <Kelpkit/DateTime.h>

using namespace KELPKIT;

void ShowTimes(Tour& tour)
{
    tour.Section(L"Dates and times");
    tour.Step(L"StringToOleDateTime of 2024-03-05", [] {
        const COleDateTime date = StringToOleDateTime(L"2024-03-05 14:30");
        return Tour::Result{OleDateTimeToString(date), date == COleDateTime(2024, 3, 5, 14, 30, 0)};
    });
    tour.Step(L"OleDateTimeToMS, there and back", [] {
        const std::int64_t milliseconds = OleDateTimeToMS(COleDateTime(2024, 3, 5, 14, 30, 0));
        return Tour::Result{std::to_wstring(milliseconds) + L" since 1970-01-01 08:00:00",
                            MSToOleDateTime(milliseconds) == COleDateTime(2024, 3, 5, 14, 30, 0)};
    });
    tour.Step(L"MSToOleDateTime of -1", [] {
        const COleDateTime date = MSToOleDateTime(-1);
        return Tour::Result{OleDateTimeToString(date) + L", no date", IsOverDateTime(date)};
    });
    tour.Step(L"OleDateTimeToString of no date", [] {
        const std::wstring text = OleDateTimeToString(StringToOleDateTime(L"abc"));
        return Tour::Result{text, text == L"Invalid DateTime"};
    });
    tour.Step(L"StringToTime_t of 120/4/6 7:8:9", [] {
        const std::int64_t time = StringToTime_t(L"120/4/6 7:8:9");
        const std::wstring text = Time_tToString(time);
        return Tour::Result{text, text == L"date is 0120-04-06 07:08:09"};
    });
}
