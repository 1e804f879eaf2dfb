#include <Kelpkit/DateTime.h> // first: MFC stands no windows.h before it

#include "support/Calendar.h"
#include "support/CodePage.h"
#include "support/EnvironmentVariable.h"
#include "support/ImportPatch.h"
#include "support/OwnProcess.h"
#include "support/Random.h"
#include "support/Threads.h"
#include "support/TimeZone.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <oleauto.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

using namespace KELPKIT;
using test::ImportPatch;
using test::SetTimeZone;

namespace
{

// In milliseconds, as all times of the model below.
constexpr std::int64_t kHour = 3600000;
constexpr std::int64_t kDay = 24 * kHour;
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

// The scale's zero and the two dates that stand apart, on a clock that starts on 30 December 1899.
constexpr std::int64_t kEpoch = 25569 * kDay + 8 * kHour;
constexpr std::int64_t kOver = 401596 * kDay;
constexpr std::int64_t kFirst = -657434 * kDay;      // 100-01-01 00:00:00
constexpr std::int64_t kBeyondLast = 2958466 * kDay; // 10000-01-01 00:00:00

// The value of a date at a time of that clock: the day, and a time of day that counts away from zero.
double ValueAt(std::int64_t time)
{
    const std::int64_t day = time >= 0 ? time / kDay : -((-time + kDay - 1) / kDay);
    const double timeOfDay = static_cast<double>(time - day * kDay) / kDay;
    return static_cast<double>(day) + (day < 0 ? -timeOfDay : timeOfDay);
}

// What OleDateTimeToMS gives there, in whole numbers.
std::int64_t ModelMilliseconds(std::int64_t time)
{
    if (time >= 0 && time < 500) // the last half second before it has a value near -2
        return 0;
    if (std::abs(time - kOver) < 500)
        return -1;
    const std::int64_t span = time - kEpoch;
    return (span + (span < 0 ? -500 : 500)) / 1000 * 1000;
}

COleDateTime WithStatus(double value, COleDateTime::DateTimeStatus status)
{
    COleDateTime date(value);
    date.SetStatus(status);
    return date;
}

// "1970-01-01 08:00:00", or the status.
std::wstring Described(const COleDateTime& date)
{
    return date.Format(L"%Y-%m-%d %H:%M:%S").GetString();
}

HRESULT g_parseResult;

HRESULT WINAPI FailingParse(LPCOLESTR, LCID, ULONG, DATE* date)
{
    *date = 12345;
    return g_parseResult;
}

COleDateTime ParsedWithResult(HRESULT result)
{
    g_parseResult = result;
    const ImportPatch patch("VarDateFromStr", &FailingParse);
    return StringToOleDateTime(L"2024-03-05");
}

// Linkers leave out the import of a function that nothing calls; then there is none to replace.
template <class Function>
std::unique_ptr<ImportPatch> PatchIfImported(const char* name, Function* replacement)
{
    try {
        return std::make_unique<ImportPatch>(name, replacement);
    } catch (const std::runtime_error&) {
        return nullptr;
    }
}

using StringToOleDateTimeUnderCodePage936 = test::UnderCodePage936;
using StringToOleDateTimeUnderCodePage1252 = test::UnderCodePage1252;

} // namespace

TEST(FixedDates, AreWhatTheyAre)
{
    EXPECT_EQ(MSToOleDateTime(0).m_dt, 25569 + 8.0 / 24);
    EXPECT_EQ(GetOverDateTime().m_dt, 401596);
    EXPECT_EQ(MSToOleDateTime(0).GetStatus(), COleDateTime::valid);
    EXPECT_EQ(GetOverDateTime().GetStatus(), COleDateTime::valid);
}

TEST(FixedDates, WereSetWhenTheLibraryWasLoaded)
{
    const auto toDate = PatchIfImported(
        "SystemTimeToVariantTime", +[](SYSTEMTIME*, double*) -> INT { return FALSE; });
    const auto fromDate = PatchIfImported(
        "VariantTimeToSystemTime", +[](double, SYSTEMTIME*) -> INT { return FALSE; });
    EXPECT_EQ(GetOverDateTime().m_dt, 401596);
    EXPECT_EQ(GetOverDateTime().GetStatus(), COleDateTime::valid);
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(25570.0)), 57600000);
}

TEST(StringToTime_t, CountsYearsFrom1900AndMonthsFrom0)
{
    SetTimeZone("CST-8");
    EXPECT_EQ(StringToTime_t(L"120/4/6 7:8:9"), 1588720089) << "6 May 2020, 07:08:09";
    EXPECT_EQ(StringToTime_t(L"70/0/1 8:0:0"), 0);
    EXPECT_EQ(StringToTime_t(L"124/11/31 23:59:59"), 1735660799);
}

TEST(StringToTime_t, IsMinus1ForAYearOfFourDigits)
{
    SetTimeZone("CST-8");
    EXPECT_EQ(StringToTime_t(L"2020/5/6 7:8:9"), -1);
    EXPECT_EQ(StringToTime_t(L"1970/1/1 8:0:0"), -1);
}

TEST(StringToTime_t, ReadsLocalTimeWithDaylightSaving)
{
    const std::pair<const char*, std::pair<std::int64_t, std::int64_t>> cases[] = {
        {"CST-8", {1704081600, 1719806400}},
        {"UTC0", {1704110400, 1719835200}},
        {"EST5EDT", {1704128400, 1719849600}}, // five hours behind in winter, four in summer
    };
    for (const auto& [zone, expected] : cases) {
        SetTimeZone(zone);
        EXPECT_EQ(StringToTime_t(L"124/0/1 12:0:0"), expected.first) << zone;
        EXPECT_EQ(StringToTime_t(L"124/6/1 12:0:0"), expected.second) << zone;
    }
}

// The environment is that with which the process starts. At least one of these is not the zone of the system.
TEST(LocalTime, IsThatOfTheEnvironmentRatherThanTheSystems)
{
    const struct {
        const wchar_t* zone;
        std::int64_t noon;
        const wchar_t* localTime;
    } cases[] = {
        {L"ABC5", 1588784400, L"date is 0120-04-06 07:00:00"},
        {L"XYZ-9", 1588734000, L"date is 0120-04-06 21:00:00"},
    };
    for (const auto& row : cases) {
        const test::EnvironmentVariable zone(L"TZ", row.zone);
        test::InOwnProcess([&row] {
            EXPECT_EQ(StringToTime_t(L"120/4/6 12:0:0"), row.noon);
            EXPECT_EQ(Time_tToString(std::int64_t{1588766400}), row.localTime);
        });
    }
}

TEST(StringToTime_t, WhatIsNotReadIs0)
{
    SetTimeZone("UTC0");
    const std::int64_t midnight = 1588723200; // 6 May 2020
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(StringToTime_t(L"120/4/6 23:58:57"), midnight + 86337);
        EXPECT_EQ(StringToTime_t(L"120/4/6 7:8"), midnight + 25680);
        EXPECT_EQ(StringToTime_t(L"120/4/6 7:8:"), midnight + 25680);
        EXPECT_EQ(StringToTime_t(L"120/4/6 7"), midnight + 25200);
        EXPECT_EQ(StringToTime_t(L"120/4/6"), midnight);
        EXPECT_EQ(StringToTime_t(L"120/4/6T7:8:9"), midnight);
        EXPECT_EQ(StringToTime_t(L"120/4"), 1588204800) << "day 0 of May is 30 April";
        EXPECT_EQ(StringToTime_t(L"120"), 1577750400) << "day 0 of January is 31 December";
        EXPECT_EQ(StringToTime_t(L"120-4-6"), 1577750400);
        for (const wchar_t* const text : {L"", L" ", L"abc", L"/4/6", L"年"})
            EXPECT_EQ(StringToTime_t(text), -1) << testing::PrintToString(text);
    }
}

TEST(StringToTime_t, TakesWhiteSpaceAsTheScanDoes)
{
    SetTimeZone("UTC0");
    const std::int64_t expected = 1588748889;
    for (const wchar_t* const text : {L"120/4/6 7:8:9", L"  120/4/6 7:8:9", L"120/ 4/ 6\t\n7: 8: 9",
                                      L"+120/04/06 07:08:09", L"120/4/6 7:8:9 and more", L"120/4/6 7:8:9.75"})
        EXPECT_EQ(StringToTime_t(text), expected) << testing::PrintToString(text);
    EXPECT_EQ(StringToTime_t(L"120 /4/6 7:8:9"), 1577750400) << "but not before a slash";
    EXPECT_EQ(StringToTime_t(L"120/4/67:8:9"), 1588723200 + 61 * 86400) << "day 67, and no hour";
}

TEST(StringToTime_t, CarriesOverWhatIsOutOfRange)
{
    SetTimeZone("UTC0");
    EXPECT_EQ(StringToTime_t(L"119/16/6 7:8:9"), 1588748889);
    EXPECT_EQ(StringToTime_t(L"120/3/36 7:8:9"), 1588748889);
    EXPECT_EQ(StringToTime_t(L"120/4/5 31:8:9"), 1588748889);
    EXPECT_EQ(StringToTime_t(L"120/4/6 6:67:69"), 1588748889);
    EXPECT_EQ(StringToTime_t(L"121/-8/6 7:8:9"), 1588748889);
}

TEST(StringToTime_t, IsMinus1ForWhatTheRuntimeCannotRepresent)
{
    SetTimeZone("UTC0");
    EXPECT_EQ(StringToTime_t(L"1100/11/31 0:0:0"), 32535129600) << "31 December 3000";
    EXPECT_EQ(StringToTime_t(L"1101/5/1 0:0:0"), -1);
    EXPECT_EQ(StringToTime_t(L"69/11/30 0:0:0"), -1);
    EXPECT_EQ(StringToTime_t(L"-5/0/1 0:0:0"), -1);
    EXPECT_EQ(StringToTime_t(L"2147483647/2147483647/2147483647 2147483647:2147483647:2147483647"), -1);
    EXPECT_EQ(StringToTime_t(L"-2147483648/-2147483648/-2147483648"), -1);
}

TEST(StringToTime_t, TextEndsAtItsFirstZeroCharacter)
{
    SetTimeZone("UTC0");
    EXPECT_EQ(StringToTime_t(std::wstring(L"120/4/6\0 7:8:9", 14)), 1588723200);
}

TEST(Time_tToString, WritesTheFieldsAsStored)
{
    SetTimeZone("CST-8");
    EXPECT_EQ(Time_tToString(1588720089), L"date is 0120-04-06 07:08:09");
    EXPECT_EQ(Time_tToString(0), L"date is 0070-00-01 08:00:00");
    EXPECT_EQ(Time_tToString(1735660799), L"date is 0124-11-31 23:59:59");
    EXPECT_EQ(Time_tToString(32535129600), L"date is 1100-11-31 08:00:00");
}

TEST(Time_tToString, TakesAVariable)
{
    SetTimeZone("UTC0");
    __int64 time = 1;
    EXPECT_EQ(Time_tToString(time), L"date is 0070-00-01 00:00:01");
    EXPECT_EQ(time, 1);
}

TEST(Time_tToString, WritesLocalTimeWithDaylightSaving)
{
    const std::pair<const char*, std::pair<const wchar_t*, const wchar_t*>> cases[] = {
        {"CST-8", {L"date is 0124-00-01 20:00:00", L"date is 0124-06-01 20:00:00"}},
        {"UTC0", {L"date is 0124-00-01 12:00:00", L"date is 0124-06-01 12:00:00"}},
        {"EST5EDT", {L"date is 0124-00-01 07:00:00", L"date is 0124-06-01 08:00:00"}},
    };
    for (const auto& [zone, expected] : cases) {
        SetTimeZone(zone);
        EXPECT_EQ(Time_tToString(1704110400), expected.first) << zone;
        EXPECT_EQ(Time_tToString(1719835200), expected.second) << zone;
    }
}

TEST(Time_tToString, IsEmptyForATimeThatCannotBeBrokenDown)
{
    SetTimeZone("CST-8");
    for (const std::int64_t time : {std::int64_t{-1}, std::int64_t{-28800}, kLeast, kMost, std::int64_t{40000000000}})
        EXPECT_EQ(Time_tToString(time), L"") << time;
}

TEST(Time_tToString, StringToTime_tReadsWhatItWrote)
{
    for (const char* const zone : {"CST-8", "UTC0"}) {
        SetTimeZone(zone);
        test::Random random(1);
        for (int round = 0; round < 20000; ++round) {
            const std::int64_t time = std::int64_t{random.Below(4000000000)} * 8;
            std::wstring text = Time_tToString(time).substr(8);
            text[4] = text[7] = L'/';
            ASSERT_EQ(StringToTime_t(text), time) << testing::PrintToString(text);
        }
    }
}

TEST(OleDateTimeToMS, CountsFromTheEpoch)
{
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(1970, 1, 1, 8, 0, 0)), 0);
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(1970, 1, 1, 8, 0, 1)), 1000);
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(1970, 1, 1, 7, 59, 59)), -1000);
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(1970, 1, 1, 0, 0, 0)), -28800000);
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(2024, 3, 5, 14, 30, 0)), 1709620200000);
}

TEST(OleDateTimeToMS, IsMinus1ForTheOverDate)
{
    EXPECT_EQ(OleDateTimeToMS(GetOverDateTime()), -1);
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(2999, 7, 12, 0, 0, 0)), -1);
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(ValueAt(kOver + 499))), -1);
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(ValueAt(kOver - 499))), -1);
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(2999, 7, 12, 0, 0, 1)), 32488704001000);
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(2999, 7, 11, 23, 59, 59)), 32488703999000);
}

TEST(OleDateTimeToMS, Is0ForTheZeroDate)
{
    EXPECT_EQ(OleDateTimeToMS(COleDateTime()), 0);
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(1899, 12, 30, 0, 0, 0)), 0);
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(0.000005)), 0);
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(-0.000005)), 0);
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(1899, 12, 30, 0, 0, 1)), -2209190399000);
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(1899, 12, 29, 23, 59, 59)), -2209190401000);
}

TEST(OleDateTimeToMS, RoundsHalfSecondsAwayFromZero)
{
    const double epoch = MSToOleDateTime(0).m_dt;
    const std::pair<double, std::int64_t> cases[] = {
        {0.4, 0}, {0.6, 1000}, {1.4, 1000}, {1.6, 2000}, {-0.4, 0}, {-0.6, -1000}, {-1.4, -1000}, {-1.6, -2000},
    };
    for (const auto& [seconds, milliseconds] : cases)
        EXPECT_EQ(OleDateTimeToMS(COleDateTime(epoch + seconds / 86400)), milliseconds) << seconds;
}

TEST(OleDateTimeToMS, CountsTheTimeOfDayUpwardsBefore1899December30)
{
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(1899, 12, 29, 6, 0, 0)), -2209190400000 - 18 * kHour);
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(-1.25)), -2209190400000 - 18 * kHour);
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(-0.25)), -2209190400000 + 6 * kHour) << "06:00 of 30 December";
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(100, 1, 1, 0, 0, 0)), kFirst - kEpoch);
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(100, 1, 1, 23, 59, 59)), kFirst - kEpoch + kDay - 1000);
}

TEST(OleDateTimeToMS, FollowsTheModelFromYear100To9999)
{
    // Every day, at a second of its own, on both sides of the half seconds around it.
    test::Random random(1);
    for (std::int64_t midnight = kFirst; midnight < kBeyondLast; midnight += kDay) {
        const std::int64_t second = midnight + std::int64_t{random.Below(86399) + 1} * 1000;
        for (const int offset : {-501, -499, 0, 499, 501}) {
            const std::int64_t time = second + offset;
            ASSERT_EQ(OleDateTimeToMS(COleDateTime(ValueAt(time))), ModelMilliseconds(time))
                << midnight / kDay << " days, " << time - midnight << " ms";
        }
    }
}

TEST(OleDateTimeToMS, FollowsTheModelAroundTheFixedDates)
{
    for (const std::int64_t fixed : {std::int64_t{0}, kEpoch, kOver, kFirst + 5000, kBeyondLast - 5000}) {
        for (std::int64_t time = fixed - 5000; time <= fixed + 5000; ++time) {
            // Where a half second ends exactly is for the last bit of the value to say.
            if (std::abs(time % 1000) == 500)
                continue;
            ASSERT_EQ(OleDateTimeToMS(COleDateTime(ValueAt(time))), ModelMilliseconds(time)) << fixed << " " << time;
        }
    }
}

TEST(OleDateTimeToMS, AValueCountsWhateverItsStatus)
{
    for (const auto status : {COleDateTime::invalid, COleDateTime::null}) {
        EXPECT_EQ(OleDateTimeToMS(WithStatus(25570, status)), 57600000);
        EXPECT_EQ(OleDateTimeToMS(WithStatus(0, status)), -2209190400000) << "the zero date is valid";
        EXPECT_EQ(OleDateTimeToMS(WithStatus(401596, status)), 32488704000000) << "and so is the over date";
    }
    EXPECT_EQ(OleDateTimeToMS(StringToOleDateTime(L"abc")), -2209190400000);
}

TEST(OleDateTimeToMS, GivesTheLeastIntegerForWhatNoneHolds)
{
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double value : {1e300, -1e300, 2e11, -2e11, infinity, -infinity, std::nan("")})
        EXPECT_EQ(OleDateTimeToMS(COleDateTime(value)), kLeast) << value;
    EXPECT_EQ(OleDateTimeToMS(COleDateTime(1e11)), 8639997790809600000) << "in the year 273 million";
}

TEST(MSToOleDateTime, CountsFromTheEpoch)
{
    EXPECT_EQ(Described(MSToOleDateTime(0)), L"1970-01-01 08:00:00");
    EXPECT_EQ(Described(MSToOleDateTime(1709620200000)), L"2024-03-05 14:30:00");
    EXPECT_EQ(Described(MSToOleDateTime(-28800000)), L"1970-01-01 00:00:00");
    EXPECT_EQ(Described(MSToOleDateTime(kBeyondLast - kEpoch - 1000)), L"9999-12-31 23:59:59");
}

TEST(MSToOleDateTime, DropsWhatIsLessThanASecond)
{
    EXPECT_EQ(Described(MSToOleDateTime(1999)), L"1970-01-01 08:00:01");
    EXPECT_EQ(Described(MSToOleDateTime(-1000)), L"1970-01-01 07:59:59");
    EXPECT_EQ(Described(MSToOleDateTime(-1999)), L"1970-01-01 07:59:59") << "towards the epoch";
    EXPECT_EQ(MSToOleDateTime(999).m_dt, MSToOleDateTime(0).m_dt);
    EXPECT_EQ(MSToOleDateTime(-999).m_dt, MSToOleDateTime(0).m_dt);
    EXPECT_EQ(MSToOleDateTime(-2).m_dt, MSToOleDateTime(0).m_dt);
}

TEST(MSToOleDateTime, GivesTheOverDateForMinus1)
{
    EXPECT_EQ(MSToOleDateTime(-1).m_dt, 401596);
    EXPECT_TRUE(IsOverDateTime(MSToOleDateTime(-1)));
    EXPECT_FALSE(IsOverDateTime(MSToOleDateTime(0)));
    EXPECT_TRUE(IsOverDateTime(MSToOleDateTime(32488704000000))) << "by counting, too";
}

TEST(MSToOleDateTime, IsAPlainSumAlsoBelow0)
{
    const std::int64_t zeroDate = -2209190400000;
    EXPECT_NEAR(MSToOleDateTime(zeroDate - kDay).m_dt, -1, 1e-9);
    EXPECT_NEAR(MSToOleDateTime(zeroDate - kDay / 4).m_dt, -0.25, 1e-9) << "29 December, 18:00, would be -1.75";
    EXPECT_EQ(Described(MSToOleDateTime(zeroDate - kDay / 4)), L"1899-12-30 06:00:00");
    for (std::int64_t time = kFirst; time < 0; time += kDay * 3 / 4)
        ASSERT_NEAR(MSToOleDateTime(time - kEpoch).m_dt, static_cast<double>(time) / kDay, 1e-9) << time;
}

TEST(MSToOleDateTime, IsValidWhateverTheValue)
{
    for (const std::int64_t milliseconds : {kLeast, kMost, kFirst * 2, kBeyondLast}) {
        const COleDateTime date = MSToOleDateTime(milliseconds);
        EXPECT_EQ(date.GetStatus(), COleDateTime::valid) << milliseconds;
        const double days = static_cast<double>(milliseconds) / kDay + 25569 + 1.0 / 3;
        EXPECT_NEAR(date.m_dt, days, std::fabs(days) * 1e-15) << milliseconds;
    }
}

TEST(MSToOleDateTime, OleDateTimeToMSGivesAMillionValuesBack)
{
    // From 1899-12-30 to the year 9999, in steps that meet every second of the day.
    constexpr std::int64_t kStep = (kBeyondLast / 1000000 / 1000 + 1) * 1000;
    int count = 0;
    for (std::int64_t time = kStep; time < kBeyondLast; time += kStep) {
        const std::int64_t milliseconds = time - kEpoch;
        ASSERT_EQ(OleDateTimeToMS(MSToOleDateTime(milliseconds)), milliseconds);
        ASSERT_NEAR(MSToOleDateTime(milliseconds).m_dt, ValueAt(time), 1e-9) << milliseconds;
        ++count;
    }
    for (std::int64_t milliseconds = -100000000; milliseconds <= 100000000; milliseconds += 1000) {
        ASSERT_EQ(OleDateTimeToMS(MSToOleDateTime(milliseconds)), milliseconds);
        ++count;
    }
    EXPECT_GE(count, 1000000);
}

TEST(OleDateTimeToString, WritesTheDateWithoutTheTime)
{
    EXPECT_EQ(OleDateTimeToString(COleDateTime(2024, 3, 5, 14, 30, 0)), L"2024-03-05");
    EXPECT_EQ(OleDateTimeToString(COleDateTime(2024, 2, 29, 23, 59, 59)), L"2024-02-29");
    EXPECT_EQ(OleDateTimeToString(GetOverDateTime()), L"2999-07-12");
    EXPECT_EQ(OleDateTimeToString(COleDateTime()), L"1899-12-30");
    EXPECT_EQ(OleDateTimeToString(COleDateTime(-1.25)), L"1899-12-29");
}

TEST(OleDateTimeToString, WritesEachDayFromYear100To9999)
{
    test::CivilDate civil{100, 1, 1};
    for (int day = -657434; day <= 2958465; ++day) {
        // Each month's ends, and every fifth day, at noon.
        if (civil.day == 1 || civil.day >= 28 || day % 5 == 0) {
            wchar_t expected[32];
            ::swprintf_s(expected, 32, L"%04d-%02d-%02d", civil.year, civil.month, civil.day);
            ASSERT_EQ(OleDateTimeToString(COleDateTime(day < 0 ? day - 0.5 : day + 0.5)), expected) << day;
        }
        civil = test::NextDay(civil);
    }
}

TEST(OleDateTimeToString, IsEmptyForANullDate)
{
    EXPECT_EQ(OleDateTimeToString(WithStatus(45356, COleDateTime::null)), L"");
}

// This program has no string 55296; InvalidDateTextTest.cpp is of one that has it.
TEST(OleDateTimeToString, SaysSoWhereThereIsNoDate)
{
    EXPECT_EQ(OleDateTimeToString(WithStatus(45356, COleDateTime::invalid)), L"Invalid DateTime");
    for (const double value : {-657435.0, 2958466.0, 1e300, -1e300})
        EXPECT_EQ(OleDateTimeToString(COleDateTime(value)), L"Invalid DateTime") << value;
}

TEST(OleDateTimeToString, SaysSoWhereTheConversionFails)
{
    const ImportPatch patch(
        "VarUdateFromDate", +[](DATE, ULONG, UDATE*) -> HRESULT { return E_INVALIDARG; });
    EXPECT_EQ(OleDateTimeToString(COleDateTime(2024, 3, 5, 14, 30, 0)), L"Invalid DateTime");
}

// Left out, here and below, is what Wine does not read though Windows may: 2024年3月5日, and in Chinese the names of
// months and 下午 2:30.
TEST(StringToOleDateTime, ReadsWhatPeopleWrite)
{
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {L"2024-03-05", L"2024-03-05 00:00:00"},
        {L"2024/3/5 14:30", L"2024-03-05 14:30:00"},
        {L"2024-03-05 14:30:15", L"2024-03-05 14:30:15"},
        {L" 2024-3-5 ", L"2024-03-05 00:00:00"},
        {L"14:30", L"1899-12-30 14:30:00"},
        {L"100-1-1", L"0100-01-01 00:00:00"},
        {L"2999-07-12", L"2999-07-12 00:00:00"},
    };
    for (const auto& [text, expected] : cases) {
        const COleDateTime date = StringToOleDateTime(text);
        EXPECT_EQ(date.GetStatus(), COleDateTime::valid) << testing::PrintToString(text);
        EXPECT_EQ(Described(date), expected) << testing::PrintToString(text);
    }
}

TEST_F(StringToOleDateTimeUnderCodePage1252, ReadsTheMonthFirst)
{
    EXPECT_EQ(Described(StringToOleDateTime(L"3/5/2024")), L"2024-03-05 00:00:00");
    EXPECT_EQ(Described(StringToOleDateTime(L"March 5, 2024 2:30 PM")), L"2024-03-05 14:30:00");
}

TEST_F(StringToOleDateTimeUnderCodePage936, ReadsTheYearFirst)
{
    EXPECT_EQ(Described(StringToOleDateTime(L"99/3/5")), L"1999-03-05 00:00:00");
    EXPECT_EQ(Described(StringToOleDateTime(L"24-3-5 14:30")), L"2024-03-05 14:30:00");
}

TEST(StringToOleDateTime, AsksForTheUsersLocale)
{
    const ImportPatch patch(
        "VarDateFromStr", +[](LPCOLESTR text, LCID locale, ULONG flags, DATE* date) -> HRESULT {
            EXPECT_STREQ(text, L"三月五日");
            EXPECT_EQ(locale, 1024U);
            EXPECT_EQ(flags, 0U);
            *date = 45356;
            return S_OK;
        });
    const COleDateTime date = StringToOleDateTime(L"三月五日");
    EXPECT_EQ(date.m_dt, 45356);
    EXPECT_EQ(date.GetStatus(), COleDateTime::valid);
}

TEST(StringToOleDateTime, IsInvalidAndZeroWhereTheTextIsNotUnderstood)
{
    for (const wchar_t* const text : {L"abc", L"", L"2024-02-30", L"2024-03-05x", L"10000-1-1", L"无"}) {
        const COleDateTime date = StringToOleDateTime(text);
        EXPECT_EQ(date.GetStatus(), COleDateTime::invalid) << testing::PrintToString(text);
        EXPECT_EQ(date.m_dt, 0) << testing::PrintToString(text);
    }
    EXPECT_EQ(ParsedWithResult(DISP_E_TYPEMISMATCH).m_dt, 0);
}

TEST(StringToOleDateTime, IsInvalidAndMinus1ForOtherFailures)
{
    for (const HRESULT result : {DISP_E_OVERFLOW, E_INVALIDARG, E_OUTOFMEMORY, E_FAIL}) {
        const COleDateTime date = ParsedWithResult(result);
        EXPECT_EQ(date.GetStatus(), COleDateTime::invalid) << std::hex << result;
        EXPECT_EQ(date.m_dt, -1) << std::hex << result;
    }
}

TEST(StringToOleDateTime, TextEndsAtItsFirstZeroCharacter)
{
    EXPECT_EQ(Described(StringToOleDateTime(std::wstring(L"2024-03-05\0abc", 14))), L"2024-03-05 00:00:00");
}

TEST(IsOverDateTime, IsTrueOfTheOverDate)
{
    EXPECT_TRUE(IsOverDateTime(GetOverDateTime()));
    EXPECT_TRUE(IsOverDateTime(COleDateTime(2999, 7, 12, 0, 0, 0)));
}

TEST(IsOverDateTime, IsTrueWithinHalfASecond)
{
    EXPECT_TRUE(IsOverDateTime(COleDateTime(401596 + 0.4 / 86400)));
    EXPECT_TRUE(IsOverDateTime(COleDateTime(401596 - 0.4 / 86400)));
    EXPECT_FALSE(IsOverDateTime(COleDateTime(401596 + 0.6 / 86400)));
    EXPECT_FALSE(IsOverDateTime(COleDateTime(401596 - 0.6 / 86400)));
    EXPECT_FALSE(IsOverDateTime(COleDateTime(2999, 7, 12, 0, 0, 1)));
}

TEST(IsOverDateTime, IsFalseOfInvalidAndNullDates)
{
    EXPECT_FALSE(IsOverDateTime(WithStatus(401596, COleDateTime::invalid)));
    EXPECT_FALSE(IsOverDateTime(WithStatus(401596, COleDateTime::null)));
    EXPECT_FALSE(IsOverDateTime(COleDateTime()));
}

TEST(DateTime, MayBeConvertedInManyThreads)
{
    SetTimeZone("CST-8");
    test::InThreads(8, [](std::size_t number) {
        for (std::int64_t i = 0; i < 2000; ++i) {
            const std::int64_t seconds = (static_cast<std::int64_t>(number) * 2000 + i) * 86399;
            const COleDateTime date = MSToOleDateTime(seconds * 1000);
            // In the epoch's own zone the two scales are one.
            std::wstring text = Time_tToString(seconds).substr(8);
            text[4] = text[7] = L'/';
            if (OleDateTimeToMS(date) != seconds * 1000 || StringToTime_t(text) != seconds ||
                OleDateTimeToString(StringToOleDateTime(OleDateTimeToString(date))) != OleDateTimeToString(date))
                ADD_FAILURE() << seconds;
        }
    });
}
