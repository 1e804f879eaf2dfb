#include "Kelpkit/ModelUpgrade.h"

#include "Kelpkit/Files.h"
#include "Kelpkit/Log.h"
#include "Kelpkit/SystemInfo.h"
#include "WindowsApi.h"

#include <shlwapi.h>

namespace KELPKIT
{
namespace
{

bool Exists(const std::wstring& path)
{
    return ::PathFileExistsW(path.c_str()) != FALSE;
}

bool Fail(const wchar_t* reason, std::wstring& errorMsg)
{
    errorMsg = reason;
    CLogMsg::LogMsg(LV_TRACE, reason);
    return false;
}

// The text as a command line can hold it.
std::wstring UpToZero(const std::wstring& text)
{
    return text.substr(0, text.find(L'\0'));
}

std::wstring InQuotes(const std::wstring& argument)
{
    return L" \"" + argument + L"\"";
}

// Runs a program hidden and waits for its end. Returns false if it does not start.
bool RunHidden(std::wstring commandLine)
{
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_HIDE;
    PROCESS_INFORMATION process = {};
    if (!::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                          &process))
        return false;
    ::WaitForSingleObject(process.hProcess, INFINITE);
    // Both handles stay open, by contract.
    return true;
}

} // namespace

bool ConvertHoopsQmx(const std::wstring& strInputFile, const std::wstring& strSecondArg,
                     const std::wstring& strOutputName, std::wstring& strNewHsfFile, std::wstring& strNewQmxFile,
                     std::wstring& strErrorMsg)
{
    // A result may be stored in an argument.
    const std::wstring input = UpToZero(strInputFile);
    const std::wstring secondArg = UpToZero(strSecondArg);
    const std::wstring outputName = UpToZero(strOutputName);
    strNewHsfFile.clear();
    strNewQmxFile.clear();
    strErrorMsg.clear();

    const std::wstring converter = GetSysRoot() + L"Pelvane.exe";
    if (!Exists(converter))
        return Fail(L"转换工具Pelvane.exe不存在!", strErrorMsg);

    // By contract the path is not quoted, and nothing in the arguments is escaped.
    if (!RunHidden(converter + InQuotes(input) + InQuotes(secondArg) + InQuotes(outputName)))
        return Fail(L"升级进程启动失败!", strErrorMsg);

    const std::wstring output = GetFileDir(input) + outputName;
    const std::wstring qmx = output + L"_new.qmx";
    const std::wstring hsf = output + L"_new.hsf";
    if (!Exists(qmx))
        return Fail(L"Qmx文件升级失败!", strErrorMsg);
    strNewQmxFile = qmx;
    if (Exists(hsf))
        strNewHsfFile = hsf;
    return true;
}

} // namespace KELPKIT
