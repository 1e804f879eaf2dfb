#include <Kelpkit/Mfc.h> // first: MFC stands no windows.h before it

#include "support/Calendar.h"
#include "support/CodePage.h"
#include "support/TimeZone.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cmath>
#include <ctime>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace
{

constexpr double kSecond = 1.0 / 86400;

// "2024-03-05 14:30:15 Tue 065", or the status.
std::string Described(const COleDateTime& date)
{
    if (date.GetStatus() != COleDateTime::valid)
        return date.GetStatus() == COleDateTime::null ? "null" : "invalid";
    constexpr const char* kDays[] = {"error", "Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    const int dayOfWeek = date.GetDayOfWeek();
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d %s %03d", date.GetYear(), date.GetMonth(),
                  date.GetDay(), date.GetHour(), date.GetMinute(), date.GetSecond(),
                  kDays[dayOfWeek < 0 ? 0 : dayOfWeek], date.GetDayOfYear());
    return text;
}

COleDateTime WithStatus(double value, COleDateTime::DateTimeStatus status)
{
    COleDateTime date(value);
    date.SetStatus(status);
    return date;
}

COleDateTime Invalid(double value = 0)
{
    return WithStatus(value, COleDateTime::invalid);
}

COleDateTime Null(double value = 0)
{
    return WithStatus(value, COleDateTime::null);
}

COleDateTime Parsed(const wchar_t* text)
{
    COleDateTime date;
    const bool read = date.ParseDateTime(text);
    EXPECT_EQ(read, date.GetStatus() == COleDateTime::valid);
    return date;
}

using COleDateTimeUnderCodePage936 = test::UnderCodePage936;
using COleDateTimeUnderCodePage1252 = test::UnderCodePage1252;

} // namespace

TEST(COleDateTime, IsTheZeroDateUnlessGivenAnother)
{
    const COleDateTime date;
    EXPECT_EQ(date.m_dt, 0);
    EXPECT_EQ(date.GetStatus(), COleDateTime::valid);
    EXPECT_EQ(Described(date), "1899-12-30 00:00:00 Sat 364");
}

TEST(COleDateTime, IsMadeOfYearToSecond)
{
    const COleDateTime date(2024, 3, 5, 14, 30, 15);
    EXPECT_EQ(Described(date), "2024-03-05 14:30:15 Tue 065");
    EXPECT_DOUBLE_EQ(date.m_dt, 45356 + (14 * 3600 + 30 * 60 + 15) * kSecond);
    EXPECT_EQ(COleDateTime(2999, 7, 12, 0, 0, 0).m_dt, 401596);
    EXPECT_EQ(COleDateTime(100, 1, 1, 0, 0, 0).m_dt, -657434);
    EXPECT_EQ(COleDateTime(9999, 12, 31, 0, 0, 0).m_dt, 2958465);
    EXPECT_EQ(COleDateTime(1899, 12, 29, 6, 0, 0).m_dt, -1.25);
}

TEST(COleDateTime, IsMadeOfASystemTimeWithoutItsMilliseconds)
{
    SYSTEMTIME time = {};
    time.wYear = 2024;
    time.wMonth = 2;
    time.wDay = 29;
    time.wHour = 23;
    time.wMinute = 59;
    time.wSecond = 59;
    time.wMilliseconds = 999;
    EXPECT_EQ(Described(COleDateTime(time)), "2024-02-29 23:59:59 Thu 060");
}

TEST(COleDateTime, IsInvalidOfPartsThatThePlatformChanges)
{
    EXPECT_EQ(Described(COleDateTime(2023, 2, 29, 0, 0, 0)), "invalid");
    EXPECT_EQ(Described(COleDateTime(2024, 13, 1, 0, 0, 0)), "invalid");
    EXPECT_EQ(Described(COleDateTime(2024, 0, 1, 0, 0, 0)), "invalid");
    EXPECT_EQ(Described(COleDateTime(2024, 1, 0, 0, 0, 0)), "invalid");
    EXPECT_EQ(Described(COleDateTime(2024, 1, 1, 24, 0, 0)), "invalid");
    EXPECT_EQ(Described(COleDateTime(2024, 1, 1, 0, 60, 0)), "invalid");
    EXPECT_EQ(Described(COleDateTime(2024, 1, 1, 0, 0, 60)), "invalid");
    EXPECT_EQ(Described(COleDateTime(50, 1, 1, 0, 0, 0)), "invalid") << "two digits mean a later century";
    EXPECT_EQ(Described(COleDateTime(10000, 1, 1, 0, 0, 0)), "invalid");
    EXPECT_EQ(Described(COleDateTime(-1, -1, -1, -1, -1, -1)), "invalid");
    EXPECT_EQ(Described(COleDateTime(2024, -1, 1, 0, 0, 0)), "invalid");
    EXPECT_EQ(Described(COleDateTime(2024, 1, -1, 0, 0, 0)), "invalid");
}

TEST(COleDateTime, TakesNegativeHoursMinutesAndSecondsForZero)
{
    EXPECT_EQ(Described(COleDateTime(2024, 1, 1, -1, -2, -3)), "2024-01-01 00:00:00 Mon 001");
}

TEST(COleDateTime, CanBeSetAnew)
{
    COleDateTime date = Null(7);
    EXPECT_EQ(date.SetDateTime(2024, 3, 5, 14, 30, 15), 0);
    EXPECT_EQ(Described(date), "2024-03-05 14:30:15 Tue 065");
    EXPECT_EQ(date.SetDate(2024, 2, 29), 0);
    EXPECT_EQ(Described(date), "2024-02-29 00:00:00 Thu 060");
    EXPECT_EQ(date.SetTime(14, 30, 15), 0);
    EXPECT_EQ(Described(date), "1899-12-30 14:30:15 Sat 364");
    EXPECT_EQ(date.SetDate(2023, 2, 29), 1);
    EXPECT_EQ(date.GetStatus(), COleDateTime::invalid);
    EXPECT_EQ(date.SetTime(24, 0, 0), 1);
    EXPECT_EQ(date.SetDateTime(2024, 13, 1, 0, 0, 0), 1);
    EXPECT_EQ(date.SetDate(2024, 3, 5), 0) << "valid again";
    EXPECT_EQ(date.GetStatus(), COleDateTime::valid);
}

TEST(COleDateTime, GivesASystemTime)
{
    SYSTEMTIME time = {};
    ASSERT_TRUE(COleDateTime(2024, 3, 5, 14, 30, 15).GetAsSystemTime(time));
    EXPECT_EQ(Described(COleDateTime(time)), "2024-03-05 14:30:15 Tue 065");
    EXPECT_EQ(time.wDayOfWeek, 2);
    EXPECT_EQ(time.wMilliseconds, 0);
    for (const COleDateTime& date : {Invalid(45356), Null(45356), COleDateTime(-657435.0), COleDateTime(2958466.0)})
        EXPECT_FALSE(date.GetAsSystemTime(time)) << date.m_dt;
    EXPECT_EQ(time.wYear, 2024) << "unchanged";
}

TEST(COleDateTime, IsMadeOfATimeInLocalTime)
{
    const std::pair<const char*, const char*> cases[] = {
        {"CST-8", "2024-06-01 20:00:00 Sat 153"},
        {"UTC0", "2024-06-01 12:00:00 Sat 153"},
        {"EST5EDT", "2024-06-01 08:00:00 Sat 153"}, // an hour ahead, for daylight saving
    };
    for (const auto& [zone, expected] : cases) {
        test::SetTimeZone(zone);
        EXPECT_EQ(Described(COleDateTime(1717243200LL)), expected) << zone;
    }
}

TEST(COleDateTime, IsInvalidOfATimeThatCannotBeBrokenDown)
{
    test::SetTimeZone("UTC0");
    for (const long long time : {-1LL, std::numeric_limits<long long>::min(), std::numeric_limits<long long>::max()})
        EXPECT_EQ(Described(COleDateTime(time)), "invalid") << time;
}

TEST(COleDateTime, GetCurrentTimeIsNow)
{
    test::SetTimeZone("CST-8");
    const COleDateTime before(static_cast<long long>(std::time(nullptr)));
    const COleDateTime now = COleDateTime::GetCurrentTime();
    const COleDateTime after(static_cast<long long>(std::time(nullptr)));
    EXPECT_EQ(now.GetStatus(), COleDateTime::valid);
    EXPECT_LE(before, now);
    EXPECT_LE(now, after);
}

TEST(COleDateTime, HasNoPartsUnlessItIsValidAndADate)
{
    for (const COleDateTime& date : {Invalid(45356), Null(45356), COleDateTime(-657435.0), COleDateTime(2958466.0),
                                     COleDateTime(1e300), COleDateTime(-1e300)}) {
        const int parts[] = {date.GetYear(),   date.GetMonth(),  date.GetDay(),       date.GetHour(),
                             date.GetMinute(), date.GetSecond(), date.GetDayOfWeek(), date.GetDayOfYear()};
        for (const int part : parts)
            EXPECT_EQ(part, -1) << date.m_dt;
    }
}

TEST(COleDateTime, CountsTheTimeOfDayUpwardsBefore1899December30)
{
    EXPECT_EQ(Described(COleDateTime(-1.25)), "1899-12-29 06:00:00 Fri 363");
    EXPECT_EQ(Described(COleDateTime(-1.75)), "1899-12-29 18:00:00 Fri 363");
    EXPECT_EQ(Described(COleDateTime(-0.75)), "1899-12-30 18:00:00 Sat 364") << "the same as 0.75";
    EXPECT_EQ(Described(COleDateTime(-657434.75)), "0100-01-01 18:00:00 Fri 001");
}

TEST(COleDateTime, KnowsEachDayFromYear100To9999)
{
    test::CivilDate civil{100, 1, 1};
    int dayOfYear = 1;
    for (int day = -657434; day <= 2958465; ++day) {
        // Each month's ends, and every fifth day.
        const bool isEnd = civil.day == 1 || civil.day >= 28;
        if (isEnd || day % 5 == 0) {
            const COleDateTime date(static_cast<double>(day));
            ASSERT_TRUE(date.GetYear() == civil.year && date.GetMonth() == civil.month && date.GetDay() == civil.day &&
                        date.GetDayOfYear() == dayOfYear && date.GetDayOfWeek() == (day + 657434 + 5) % 7 + 1)
                << day << ": " << Described(date);
            ASSERT_EQ(COleDateTime(civil.year, civil.month, civil.day, 0, 0, 0).m_dt, day);
        }
        civil = test::NextDay(civil);
        dayOfYear = civil.month == 1 && civil.day == 1 ? 1 : dayOfYear + 1;
    }
}

TEST(COleDateTime, IsEqualWithinHalfASecond)
{
    const COleDateTime date(2024, 3, 5, 14, 30, 0);
    EXPECT_EQ(date, date);
    EXPECT_EQ(date, COleDateTime(date.m_dt + 0.499 * kSecond));
    EXPECT_EQ(date, COleDateTime(date.m_dt - 0.499 * kSecond));
    EXPECT_NE(date, COleDateTime(date.m_dt + 0.501 * kSecond));
    EXPECT_NE(date, COleDateTime(date.m_dt - 0.501 * kSecond));
    EXPECT_NE(COleDateTime(), COleDateTime(0.5 / 86400)) << "half a second exactly";
    EXPECT_NE(COleDateTime(), COleDateTime(-0.5 / 86400));
    EXPECT_NE(COleDateTime(std::numeric_limits<double>::quiet_NaN()),
              COleDateTime(std::numeric_limits<double>::quiet_NaN()));
}

TEST(COleDateTime, IsEqualOnlyInTheSameStatus)
{
    EXPECT_EQ(Null(1), Null(2)) << "null dates are equal whatever their values";
    EXPECT_FALSE(Invalid() == Invalid()) << "invalid ones never";
    EXPECT_TRUE(Invalid() != Invalid());
    EXPECT_NE(COleDateTime(), Null());
    EXPECT_NE(COleDateTime(), Invalid());
    EXPECT_NE(Null(), Invalid());
    const COleDateTime invalid = Invalid();
    EXPECT_FALSE(invalid == invalid);
}

TEST(COleDateTime, IsOrderedInTime)
{
    // 06:00 and 18:00 of 29 December, and 06:00 of 30 December: the values alone are in another order.
    const double inOrder[] = {-1.25, -1.75, 0.25, 0.75, 1, 45356.5};
    for (std::size_t i = 0; i + 1 < std::size(inOrder); ++i) {
        const COleDateTime earlier(inOrder[i]);
        const COleDateTime later(inOrder[i + 1]);
        EXPECT_TRUE(earlier < later && earlier <= later && later > earlier && later >= earlier) << inOrder[i];
        EXPECT_FALSE(later < earlier || later <= earlier || earlier > later || earlier >= later) << inOrder[i];
    }
    const COleDateTime date(1.0);
    EXPECT_TRUE(date <= date && date >= date);
    EXPECT_FALSE(date < date || date > date);
}

TEST(COleDateTime, DifferencesAreSpans)
{
    const COleDateTime later(1999, 3, 20, 22, 15, 0);
    const COleDateTime earlier(1999, 3, 19, 22, 14, 50);
    EXPECT_EQ((later - earlier).GetTotalSeconds(), 86410);
    EXPECT_EQ((earlier - later).GetTotalSeconds(), -86410);
    EXPECT_EQ(later - (later - earlier), earlier);
    EXPECT_EQ(earlier + (later - earlier), later);
}

TEST(COleDateTime, TimeGoesOnAcross1899December30)
{
    // An hour at a time, from four days before to four days after.
    const COleDateTime start(1899, 12, 26, 0, 0, 0);
    for (int hour = 0; hour <= 192; ++hour) {
        const COleDateTime date = start + COleDateTimeSpan(0, hour, 0, 0);
        const int day = hour / 24; // from 26 December
        const COleDateTime expected(day < 6 ? 1899 : 1900, day < 6 ? 12 : 1, day < 6 ? 26 + day : day - 5, hour % 24, 0,
                                    0);
        EXPECT_EQ(date, expected) << hour << ": " << date.m_dt << ", " << expected.m_dt;
        EXPECT_EQ((expected - start).GetTotalHours(), hour);
        EXPECT_EQ(expected - COleDateTimeSpan(0, hour, 0, 0), start) << hour;
    }
}

TEST(COleDateTime, CountsHalfASecondUpwardsBefore1899December30)
{
    constexpr double kHalfSecond = 0.5 / 86400;
    EXPECT_GT((COleDateTime(-kHalfSecond) - COleDateTime(0.0)).m_span, 0);
    EXPECT_LT((COleDateTime(std::nextafter(-kHalfSecond, 0)) - COleDateTime(0.0)).m_span, 0) << "an error of rounding";
}

TEST(COleDateTime, KeepsWhatItIsAddedTo)
{
    COleDateTime date(2024, 2, 28, 12, 0, 0);
    date += COleDateTimeSpan(1, 12, 0, 0);
    EXPECT_EQ(Described(date), "2024-03-01 00:00:00 Fri 061");
    date -= COleDateTimeSpan(0, 0, 0, 1);
    EXPECT_EQ(Described(date), "2024-02-29 23:59:59 Thu 060");
}

#if !defined(_AFX) // MFC asserts that dates are valid.
TEST(COleDateTime, OnlyValidDatesComeBeforeOrAfterEachOther)
{
    const COleDateTime date(1.0);
    EXPECT_FALSE(Invalid(0) < date || Invalid(0) <= date || Invalid(9) > date || Invalid(9) >= date);
    EXPECT_FALSE(Null(0) < date || Null(0) <= date || Null(9) > date || Null(9) >= date);
    EXPECT_TRUE(Null(1) <= Null(2) && Null(1) >= Null(2)) << "equal";
}

TEST(COleDateTime, SumsHaveTheWorseStatus)
{
    COleDateTimeSpan nullSpan(1.0);
    nullSpan.SetStatus(COleDateTimeSpan::null);
    COleDateTimeSpan invalidSpan(1.0);
    invalidSpan.SetStatus(COleDateTimeSpan::invalid);
    const COleDateTimeSpan span(1.0);
    const COleDateTime date(1.0);
    EXPECT_EQ((date + span).GetStatus(), COleDateTime::valid);
    EXPECT_EQ((Null() + span).GetStatus(), COleDateTime::null);
    EXPECT_EQ((Invalid() + span).GetStatus(), COleDateTime::invalid);
    EXPECT_EQ((date + nullSpan).GetStatus(), COleDateTime::null);
    EXPECT_EQ((date - invalidSpan).GetStatus(), COleDateTime::invalid);
    EXPECT_EQ((Invalid() + nullSpan).GetStatus(), COleDateTime::null);
    EXPECT_EQ((Null() - date).GetStatus(), COleDateTimeSpan::null);
    EXPECT_EQ((Invalid() - Null()).GetStatus(), COleDateTimeSpan::null);
    EXPECT_EQ((date - Invalid()).GetStatus(), COleDateTimeSpan::invalid);
    EXPECT_EQ((date - date).GetStatus(), COleDateTimeSpan::valid);
}

TEST(COleDateTime, SumsOutsideOfTheYears100To9999AreInvalid)
{
    const COleDateTimeSpan day(1.0);
    EXPECT_EQ(Described(COleDateTime(9999, 12, 31, 23, 59, 59) + day), "invalid");
    EXPECT_EQ(Described(COleDateTime(9999, 12, 30, 23, 59, 59) + day), "9999-12-31 23:59:59 Fri 365");
    EXPECT_EQ(Described(COleDateTime(100, 1, 1, 23, 59, 59) - day), "invalid");
    EXPECT_EQ((COleDateTime(100, 1, 1, 0, 0, 0) - day).GetStatus(), COleDateTime::invalid);
    EXPECT_EQ(Described(COleDateTime(100, 1, 2, 23, 59, 59) - day), "0100-01-01 23:59:59 Fri 001");
}
#endif

TEST(COleDateTime, IsWrittenAsTheFormatSays)
{
    const COleDateTime date(2024, 3, 5, 14, 30, 15);
    EXPECT_STREQ(date.Format(L"%Y-%m-%d %H:%M:%S"), L"2024-03-05 14:30:15");
    EXPECT_STREQ(date.Format(L"%y, %j %w%%"), L"24, 065 2%");
    EXPECT_STREQ(date.Format(L""), L"");
    EXPECT_STREQ(COleDateTime(100, 1, 1, 0, 0, 0).Format(L"%Y"), L"0100");
}

TEST(COleDateTime, IsNotWrittenInMoreThan255Characters)
{
    const COleDateTime date(2024, 3, 5, 14, 30, 15);
    EXPECT_EQ(date.Format(std::wstring(255, L'x').c_str()).GetLength(), 255);
#if !defined(_AFX) // MFC's buffer may be somewhat larger.
    EXPECT_STREQ(date.Format(std::wstring(256, L'x').c_str()), L"");
#endif
    EXPECT_STREQ(date.Format(std::wstring(1000, L'x').c_str()), L"");
}

TEST(COleDateTime, SaysWhyItIsNotWritten)
{
    EXPECT_STREQ(Null(45356).Format(L"%Y"), L"");
    EXPECT_STREQ(Invalid(45356).Format(L"%Y"), L"Invalid DateTime");
    EXPECT_STREQ(COleDateTime(-657435.0).Format(L"%Y"), L"Invalid DateTime");
    EXPECT_STREQ(COleDateTime(2958466.0).Format(L"%Y"), L"Invalid DateTime");
}

TEST(COleDateTime, IsReadAsPeopleWriteItEverywhere)
{
    const std::pair<const wchar_t*, const char*> cases[] = {
        {L"2024-03-05", "2024-03-05 00:00:00 Tue 065"},
        {L"2024-3-5", "2024-03-05 00:00:00 Tue 065"},
        {L"2024/3/5", "2024-03-05 00:00:00 Tue 065"},
        {L"  2024-03-05  ", "2024-03-05 00:00:00 Tue 065"},
        {L"2024-03-05 14:30", "2024-03-05 14:30:00 Tue 065"},
        {L"2024/3/5 14:30:15", "2024-03-05 14:30:15 Tue 065"},
        {L"14:30", "1899-12-30 14:30:00 Sat 364"},
        {L"100-1-1", "0100-01-01 00:00:00 Fri 001"},
        {L"9999-12-31", "9999-12-31 00:00:00 Fri 365"},
        {L"2024-02-29", "2024-02-29 00:00:00 Thu 060"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(Described(Parsed(text)), expected) << testing::PrintToString(text);
}

TEST_F(COleDateTimeUnderCodePage1252, IsReadAsPeopleWriteItThere)
{
    const std::pair<const wchar_t*, const char*> cases[] = {
        {L"3/5/2024", "2024-03-05 00:00:00 Tue 065"},      {L"3/5/2024 2:30 PM", "2024-03-05 14:30:00 Tue 065"},
        {L"March 5, 2024", "2024-03-05 00:00:00 Tue 065"}, {L"5 Mar 2024 14:30", "2024-03-05 14:30:00 Tue 065"},
        {L"31/12/2024", "2024-12-31 00:00:00 Tue 366"}, // no 31st month
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(Described(Parsed(text)), expected) << testing::PrintToString(text);
}

TEST_F(COleDateTimeUnderCodePage936, IsReadAsPeopleWriteItThere)
{
    EXPECT_EQ(Described(Parsed(L"99/3/5")), "1999-03-05 00:00:00 Fri 064") << "the year comes first";
    EXPECT_EQ(Described(Parsed(L"24-3-5 14:30")), "2024-03-05 14:30:00 Tue 065");
}

TEST(COleDateTime, IsInvalidAndZeroWhereTheTextIsNotUnderstood)
{
    for (const wchar_t* const text : {L"abc", L"", L" ", L"2024-02-30", L"2024-13-45", L"10000-01-01", L"没有日期"}) {
        COleDateTime date(45356.0);
        EXPECT_FALSE(date.ParseDateTime(text)) << testing::PrintToString(text);
        EXPECT_EQ(date.GetStatus(), COleDateTime::invalid) << testing::PrintToString(text);
        EXPECT_EQ(date.m_dt, 0) << testing::PrintToString(text);
    }
    COleDateTime date(45356.0);
    EXPECT_FALSE(date.ParseDateTime(nullptr));
    EXPECT_EQ(date.m_dt, 0);
}

TEST(COleDateTime, IsValidAgainOnceItIsRead)
{
    COleDateTime date = Invalid(7);
    EXPECT_TRUE(date.ParseDateTime(L"2024-03-05"));
    EXPECT_EQ(Described(date), "2024-03-05 00:00:00 Tue 065");
}

TEST(COleDateTime, IsReadInTheLocaleThatIsNamed)
{
    constexpr LCID kGerman = 0x407;
    COleDateTime date;
    EXPECT_TRUE(date.ParseDateTime(L"5.3.2024", 0, kGerman));
    EXPECT_EQ(Described(date), "2024-03-05 00:00:00 Tue 065");
    EXPECT_TRUE(date.ParseDateTime(L"2024-03-05 14:30", VAR_DATEVALUEONLY));
    EXPECT_EQ(Described(date), "2024-03-05 00:00:00 Tue 065");
}
