#include "Tour.h"

#include <Kelpkit/Log.h>
#include <Kelpkit/Text.h>

using namespace KELPKIT;

void ShowLog(Tour& tour)
{
    tour.Section(L"The log");
    tour.Step(L"LogMsg at each severity", [] {
        CLogMsg::LogMsg(LV_FATAL, L"a fatal message");
        CLogMsg::LogMsg(LV_ERROR, L"an error");
        CLogMsg::LogMsg(LV_WARN, L"a warning");
        CLogMsg::LogMsg(LV_INFO, L"模型 gear 已打开");
        CLogMsg::LogMsg(LV_DEBUG, L"for the developer");
        CLogMsg::LogMsg(LV_TRACE, L"the finest");
        CLogMsg::LogMsg(LV_OFF, L"this one is not written");
        return Tour::Result{L"6 of 7 are written", true};
    });
    const std::string log = Contents(LogFile(tour));
    tour.Step(L"the log file", [&] {
        // The failed upgrade of before stands in it, too.
        const bool right = log.find(" FATAL 53 a fatal message") != log.npos &&
                           log.find(UnicodeToAnsi(L" TRACE 63 Qmx文件升级失败!")) != log.npos &&
                           log.find("not written") == log.npos;
        return Tour::Result{std::to_wstring(log.size()) + L" bytes", right};
    });
    std::vector<std::wstring> lines;
    StringMulitSplit(AnsiToUnicode(log), L"\r\n", lines);
    for (const std::wstring& line : lines)
        Tour::Note(line);
    tour.Step(L"模型 in the file", [&] {
        const std::string bytes = UnicodeToAnsi(L"模型");
        return Tour::Result{Hex(bytes) + L", its bytes in the code page", log.find(bytes + " gear") != log.npos};
    });
}
