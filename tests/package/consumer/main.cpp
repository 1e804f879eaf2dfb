// Uses each family of the installed package, and log4cplus with an appender of its own. Exit code 0 if all is well.

#include <Kelpkit/Kelpkit.h>

#include <log4cplus/appender.h>
#include <log4cplus/logger.h>
#include <log4cplus/spi/loggingevent.h>

#include <windows.h>

#include <iostream>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

namespace
{

class CountingAppender : public log4cplus::Appender
{
public:
    ~CountingAppender() override { destructorImpl(); }
    void close() override {}

    int count = 0;

protected:
    void append(const log4cplus::spi::InternalLoggingEvent&) override { ++count; }
};

// Not to be deleted as its base.
class ClosingChild final : public KELPKIT::ChildExe
{
public:
    bool CloseSubWindow() override
    {
        closed = true;
        return ChildExe::CloseSubWindow();
    }

    bool closed = false;
};

int g_failures = 0;

void Check(bool passed, const char* what)
{
    std::cout << (passed ? "ok      " : "FAILED  ") << what << '\n';
    g_failures += passed ? 0 : 1;
}

} // namespace

int main()
{
    std::vector<std::wstring> pieces;
    KELPKIT::StringMulitSplit(L"a,b;c", L",;", pieces);
    Check(pieces.size() == 3, "text is split");
    Check(KELPKIT::UTF8ToUnicode("\xE4\xB8\xAD") == L"\x4E2D", "text is converted");
    Check(KELPKIT::CBase64::Encode("Man", 3) == "TWFu", "data is encoded");
    Check(KELPKIT::ALargeB(L"1.10", L"1.9") == 1, "versions are compared");

    Check(KELPKIT::HexColorToREF(L"#FF8000") == 0x0080FF, "a colour is read");

    ClosingChild child;
    Check(!child.CreateSubWindow(nullptr, L"program.exe") && child.closed, "a derived class closes its child program");
    Check(child.HasSubWindow() == 0 && !child.AddSubWindow(CRect(0, 0, 100, 100)), "nothing is hosted");

    auto* const appender = new CountingAppender;
    log4cplus::Logger::getInstance(L"log").addAppender(log4cplus::SharedAppenderPtr(appender));
    KELPKIT::CLogMsg::LogMsg(KELPKIT::LV_FATAL, L"text");
    Check(appender->count == 1, "the application shares the library's log");

    ::SetUnhandledExceptionFilter(nullptr);
    KELPKIT::StartCrashReport();
    Check(::SetUnhandledExceptionFilter(nullptr) != nullptr, "crashes are caught");

    Check(KELPKIT::CheckFolderExis(L"C:\\Windows"), "a folder is found");
    Check(!KELPKIT::GetSysRoot().empty(), "the program's folder is known");
    Check(KELPKIT::GenerateUUID().size() == 36, "a UUID is generated");
    Check(KELPKIT::GetCPUId().size() > 32, "the processor says who it is");
    Check(KELPKIT::GetHDDId() == KELPKIT::GetHDDId(), "the disks are asked once");
    Check(KELPKIT::GetHardwareCode().size() >= 32, "the hardware has a code");
    Check(CString(L"ab").GetLength() == 2, "the MFC types are there");
    Check(KELPKIT::OleDateTimeToString(KELPKIT::StringToOleDateTime(L"2024-3-5")) == L"2024-03-05", "a date is read");
    Check(KELPKIT::OleDateTimeToMS(COleDateTime(1970, 1, 1, 8, 0, 1)) == 1000, "milliseconds are counted");

    IXMLTreePtr tree;
    Check(CXMLTreeCreator::Allocate(tree) && tree->AddChild(L"config", L"") && tree->SaveFile(L"consumer.xml"),
          "an XML file is made");
    KELPKIT::CXMLConfig config(L"consumer.xml");
    Check(config.WriteXmlInt(7, L"count") && config.GetXmlInt(L"count") == 7, "a value is stored");
    const CXMLTreeCreator creator;
    Check(typeid(CXMLTreeCreator(creator)) == typeid(CXMLTreeCreator), "the creator's own parts are there");

    std::wstring hsf;
    std::wstring qmx;
    std::wstring error;
    Check(!KELPKIT::ConvertHoopsQmx(L"C:\\gear.qmx", L"full", L"gear", hsf, qmx, error) && !error.empty(),
          "a missing converter is reported");

    // Memory of the standard library is made on one side and released on the other.
    std::wstring text = L"some text that is too long to stand in the string object itself";
    KELPKIT::StringReplace(text, L"text", L"longer text than before");
    text.clear();
    text.shrink_to_fit();
    Check(text.empty(), "strings cross the border");
    return g_failures;
}
