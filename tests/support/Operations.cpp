#include <Kelpkit/Kelpkit.h> // first: MFC stands no windows.h before it

#include <Kelpkit/XMLParser.h>

#include "support/CopyNeedFile.h"
#include "support/FileContents.h"
#include "support/FolderTree.h"
#include "support/Operations.h"

#include <log4cplus/hierarchy.h>
#include <log4cplus/logger.h>

#include <windows.h>

#include <cmath>
#include <cstdint>
#include <cwchar>
#include <memory>
#include <type_traits>
#include <typeinfo>

using namespace KELPKIT;

// As applications have it whose headers declare these without const.
namespace KELPKIT
{

KELPKIT_API bool BuildMd5Code(std::string& input, std::string& output);
KELPKIT_API std::wstring Time_tToString(std::int64_t& time);

} // namespace KELPKIT

namespace test
{
namespace
{

// Results as text.

std::string Shown(const std::string& text)
{
    return text;
}

std::string Shown(const std::wstring& text)
{
    std::string shown;
    for (const wchar_t c : text) {
        if (c < 0x80)
            shown += static_cast<char>(c);
        else
            shown += "\\" + std::to_string(c);
    }
    return shown;
}

template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
std::string Shown(Number number)
{
    return std::to_string(number);
}

std::string Shown(const COleDateTime& date)
{
    // In milliseconds: the C locale would show in a fraction.
    return std::to_string(date.m_status) + " " + std::to_string(std::llround(date.m_dt * 86400000));
}

std::string Shown(const std::vector<std::wstring>& texts)
{
    std::string shown;
    for (const std::wstring& text : texts)
        shown += Shown(text) + "|";
    return shown;
}

// A row whose operation takes nothing of the folder.
template <class Call>
Operation Plain(std::vector<std::string> names, const Call& call, unsigned traits = 0)
{
    return {std::move(names), [call](const std::wstring&) { return Shown(call()); }, traits};
}

// Texts of Chinese and ASCII, too long for an object to hold them without memory of their own.
const std::wstring kWide = L"图纸 gear, 图纸 wheel, 图纸 axle";
const std::string kNarrow = "gear,wheel,axle,gear,wheel,axle";

std::string Utf8()
{
    return "\xE5\x9B\xBE\xE7\xBA\xB8 gear, \xE5\x9B\xBE\xE7\xBA\xB8 wheel";
}

void AddConversions(std::vector<Operation>& rows)
{
    const std::string narrow = "(std::string const&)";
    const std::string wide = "(std::wstring const&)";
    const auto add = [&rows](const std::string& name, const auto& call) { rows.push_back(Plain({name}, call)); };
    add("KELPKIT::AnsiToUnicode" + narrow, [] { return AnsiToUnicode(Utf8()); });
    add("KELPKIT::UnicodeToAnsi" + wide, [] { return UnicodeToAnsi(kWide); });
    add("KELPKIT::UTF8ToUnicode" + narrow, [] { return UTF8ToUnicode(Utf8()); });
    add("KELPKIT::UnicodeToUTF8" + wide, [] { return UnicodeToUTF8(kWide); });
    add("KELPKIT::ConvertUtf8ToGBK" + narrow, [] { return ConvertUtf8ToGBK(Utf8()); });
    add("KELPKIT::ConvertGBKToUtf8" + wide, [] { return ConvertGBKToUtf8(kWide); });
    add("KELPKIT::ConvertTStringToString" + wide, [] { return ConvertTStringToString(kWide); });
    add("KELPKIT::ConvertGBKToAnsi" + wide, [] { return ConvertGBKToAnsi(kWide); });
    add("KELPKIT::ConvertGBKToUnicode" + wide, [] { return ConvertGBKToUnicode(kWide); });
    add("KELPKIT::ConvertUnicodeToGBK" + wide, [] { return ConvertUnicodeToGBK(kWide); });
    add("KELPKIT::ConvertAnsiToGBK" + narrow, [] { return ConvertAnsiToGBK(Utf8()); });
}

template <class Char>
std::string ReplaceAndSplit(std::basic_string<Char> text, const std::basic_string<Char>& separator)
{
    StringReplace(text, separator, separator + separator);
    std::basic_string<Char> left;
    std::basic_string<Char> right;
    const bool isSplit = StringSplitLeftRight(text, separator, left, right);
    return Shown(isSplit) + Shown(left) + "|" + Shown(right);
}

void AddStrings(std::vector<Operation>& rows)
{
    const std::string trimmed = "(std::wstring&, wchar_t)";
    rows.push_back(Plain({"KELPKIT::StringLtrim" + trimmed, "KELPKIT::StringRtrim" + trimmed}, [] {
        std::wstring text = L"xx" + kWide + L"xx";
        return StringRtrim(StringLtrim(text, L'x'), L'x');
    }));
    rows.push_back(Plain({"KELPKIT::StringTrim" + trimmed}, [] {
        std::wstring text = L"xx" + kWide + L"xx";
        return StringTrim(text, L'x');
    }));
    rows.push_back(Plain({"KELPKIT::StringReplace(std::string&, std::string const&, std::string const&)",
                          "KELPKIT::StringSplitLeftRight(std::string const&, std::string const&, std::string&, "
                          "std::string&)"},
                         [] { return ReplaceAndSplit<char>(kNarrow, ","); }));
    rows.push_back(Plain({"KELPKIT::StringReplace(std::wstring&, std::wstring const&, std::wstring const&)",
                          "KELPKIT::StringSplitLeftRight(std::wstring const&, std::wstring const&, std::wstring&, "
                          "std::wstring&)"},
                         [] { return ReplaceAndSplit<wchar_t>(kWide, L","); }));
    rows.push_back(
        Plain({"KELPKIT::StringMulitSplit(std::wstring const&, std::wstring const&, std::vector<std::wstring>&)"}, [] {
            std::vector<std::wstring> pieces;
            StringMulitSplit(kWide + kWide, L",", pieces);
            return pieces;
        }));
    rows.push_back(Plain({"KELPKIT::StringSplitBySize(std::wstring const&, int, std::vector<std::wstring>&)"}, [] {
        std::vector<std::wstring> pieces;
        StringSplitBySize(kWide, 10, pieces);
        return pieces;
    }));
    rows.push_back(Plain({"KELPKIT::ALargeB(std::wstring, std::wstring)"},
                         [] { return ALargeB(kWide + L"1.10", kWide + L"1.9"); }));
    rows.push_back(Plain({"KELPKIT::IsDoubleZero(double)"}, [] { return IsDoubleZero(1e-6); }));
    rows.push_back(Plain({"KELPKIT::CSortAssist::CSortAssist()", "KELPKIT::CSortAssist::~CSortAssist()",
                          "KELPKIT::CSortAssist::operator=(KELPKIT::CSortAssist const&)"},
                         [] {
                             CSortAssist assist;
                             assist = CSortAssist();
                             return sizeof assist;
                         }));
}

void AddCodecs(std::vector<Operation>& rows)
{
    rows.push_back(Plain({"KELPKIT::CBase64::Encode(char const*, int)", "KELPKIT::CBase64::Encode(std::string)",
                          "KELPKIT::CBase64::operator=(KELPKIT::CBase64 const&)"},
                         [] {
                             CBase64 codec;
                             codec = CBase64();
                             return codec.Encode(kNarrow) + codec.Encode(kNarrow.data(), 20);
                         }));
    rows.push_back(Plain({"KELPKIT::CBase64::Decode(char const*, char*, int)"}, [] {
        const std::string text = "Z2Vhcix3aGVlbCxheGxlLGdlYXIsd2hlZWwsYXhsZQ==";
        std::string out(text.size(), '\0');
        out.resize(static_cast<std::size_t>(CBase64::Decode(text.data(), out.data(), static_cast<int>(text.size()))));
        return out;
    }));
    rows.push_back(Plain({"KELPKIT::CBase64::DecodeEx(std::string, char*&, int&)",
                          "KELPKIT::CBase64::DecodeEx(std::string, std::string&)"},
                         [] {
                             const std::string text = "Z2Vhcix3aGVlbCxheGxlLGdlYXIsd2hlZWwsYXhsZQ==";
                             char* buffer = nullptr;
                             int length = 0;
                             CBase64::DecodeEx(text, buffer, length);
                             const std::unique_ptr<char[]> owner(buffer);
                             std::string out;
                             CBase64::DecodeEx(text, out);
                             return out + std::string(buffer, static_cast<std::size_t>(length));
                         }));
    rows.push_back(Plain({"KELPKIT::BuildMd5Code(std::string const&, std::string&)"}, [] {
        std::string digest;
        BuildMd5Code(kNarrow, digest);
        return digest;
    }));
    rows.push_back(Plain({"KELPKIT::BuildMd5Code(std::string&, std::string&)"}, [] {
        std::string text = kNarrow;
        BuildMd5Code(text, text);
        return text;
    }));
    rows.push_back(Plain({"KELPKIT::BuildMd5Code(std::wstring const&, std::wstring&)"}, [] {
        std::wstring digest;
        BuildMd5Code(kWide, digest);
        return digest;
    }));
}

void AddColors(std::vector<Operation>& rows)
{
    const std::string text = "(std::wstring const&)";
    rows.push_back(Plain({"KELPKIT::RGBColorToREF" + text}, [] { return RGBColorToREF(L"  0 , 128 , 255   "); }));
    rows.push_back(Plain({"KELPKIT::REFColorToRGB(unsigned long)"}, [] { return REFColorToRGB(0xFF8000); }));
    rows.push_back(Plain({"KELPKIT::HexColorToREF" + text}, [] { return HexColorToREF(L"00000000000#FF8000"); }));
    rows.push_back(Plain(
        {"KELPKIT::CADColorToREF" + text},
        [] { return CADColorToREF(L"no index of any color") + CADColorToREF(L"100"); }, Operation::kOneThread));
}

void AddSystem(std::vector<Operation>& rows)
{
    const auto add = [&rows](const char* name, const auto& call) { rows.push_back(Plain({name}, call)); };
    add("KELPKIT::GetSysRoot()", GetSysRoot);
    add("KELPKIT::GetTempPathW()", [] { return KELPKIT::GetTempPathW(); });
    add("KELPKIT::GetComputerNameW()", [] { return KELPKIT::GetComputerNameW(); });
    add("KELPKIT::GetHostIP()", GetHostIP);
    add("KELPKIT::IsWindowsXP()", IsWindowsXP);
    add("KELPKIT::IsWindows7()", IsWindows7);
    add("KELPKIT::IsWindows8()", IsWindows8);
    // Of the identifiers of the hardware, only the first calls are for one thread.
    add("KELPKIT::GetCPUId()", GetCPUId);
    add("KELPKIT::GetHDDId()", GetHDDId);
    add("KELPKIT::GetHardwareCode()", GetHardwareCode);
    // Never the same twice, save for its form.
    add("KELPKIT::GenerateUUID()", [] {
        std::wstring uuid = GenerateUUID();
        for (wchar_t& c : uuid)
            c = std::wcschr(L"0123456789abcdef", c) == nullptr ? c : L'x';
        return uuid;
    });
    rows.push_back(Plain(
        {"KELPKIT::StartCrashReport()"},
        [] {
            StartCrashReport();
            return ::SetUnhandledExceptionFilter(nullptr) != nullptr;
        },
        Operation::kOneThread));
}

void AddDates(std::vector<Operation>& rows)
{
    const auto add = [&rows](const char* name, const auto& call) { rows.push_back(Plain({name}, call)); };
    add("KELPKIT::StringToTime_t(std::wstring const&)", [] { return StringToTime_t(L"120/4/6 7:8:9 and more"); });
    add("KELPKIT::Time_tToString(long long const&)", [] { return Time_tToString(std::int64_t{1588748889}); });
    add("KELPKIT::Time_tToString(long long&)", [] {
        std::int64_t time = 1588748889;
        return Time_tToString(time);
    });
    add("KELPKIT::OleDateTimeToMS(COleDateTime const&)", [] { return OleDateTimeToMS(COleDateTime(45000.25)); });
    add("KELPKIT::MSToOleDateTime(long long)", [] { return MSToOleDateTime(1678000000000); });
    add("KELPKIT::OleDateTimeToString(COleDateTime)", [] { return OleDateTimeToString(COleDateTime(45000.25)); });
    add("KELPKIT::StringToOleDateTime(std::wstring const&)",
        [] { return StringToOleDateTime(L"2024-03-05 14:30:00"); });
    add("KELPKIT::IsOverDateTime(COleDateTime const&)", [] { return IsOverDateTime(COleDateTime(45000.25)); });
    add("KELPKIT::GetOverDateTime()", GetOverDateTime);
}

std::wstring ModelFile(const std::wstring& folder)
{
    return folder + L"\\gear.qmx";
}

void WriteModel(const std::wstring& folder)
{
    WriteFileBytes(ModelFile(folder), "QMX 1\n");
    WriteFileBytes(folder + L"\\gear_new.qmx", "QMX 2\n");
}

void AddFileQueries(std::vector<Operation>& rows)
{
    const auto add = [&rows](const char* name, const auto& call) {
        rows.push_back({{name}, [call](const std::wstring& folder) { return Shown(call(folder)); }});
        rows.back().prepare = WriteModel;
    };
    add("KELPKIT::CheckFileExis(std::wstring const&)", [](auto& folder) { return CheckFileExis(ModelFile(folder)); });
    add("KELPKIT::CheckFolderExis(std::wstring const&)", [](auto& folder) { return CheckFolderExis(folder); });
    add("KELPKIT::GetFileDir(std::wstring const&)", [](auto&) { return GetFileDir(L"C:\\models\\gears\\gear.qmx"); });
    add("KELPKIT::GetFileExtion(std::wstring const&)",
        [](auto&) { return GetFileExtion(L"C:\\models.of gears and wheels\\gear"); });
    add("KELPKIT::GetFileSize(std::wstring const&)", [](auto& folder) { return GetFileSize(ModelFile(folder)); });
    add("KELPKIT::GetFileMD5(std::wstring const&)", [](auto& folder) { return GetFileMD5(ModelFile(folder)); });
    add("KELPKIT::CheckFileValid(std::wstring const&, std::wstring&)", [](auto& folder) {
        std::wstring reason;
        return Shown(CheckFileValid(ModelFile(folder) + L".none", reason)) + Shown(reason);
    });
}

std::wstring Below(const std::wstring& folder)
{
    return folder + L"\\tree";
}

std::string ShownTree(const std::wstring& folder)
{
    return Shown(ListTree(Below(folder)));
}

void MakeSomeTree(const std::wstring& folder)
{
    DeleteDirectory(Below(folder));
    MakeTree(Below(folder), {L"source\\", L"source\\gear.txt", L"source\\parts\\", L"source\\parts\\axle.tmp"});
}

void AddFolders(std::vector<Operation>& rows)
{
    rows.push_back({{"KELPKIT::MakeDirectory(std::wstring const&)", "KELPKIT::DeleteDirectory(std::wstring const&)"},
                    [](const std::wstring& folder) {
                        const bool isMade = MakeDirectory(Below(folder) + L"\\of\\folders");
                        return Shown(isMade) + Shown(DeleteDirectory(Below(folder)));
                    },
                    Operation::kPiecemeal,
                    MakeSomeTree,
                    ShownTree});
    const std::string prefix = "KELPKIT::CFileFolderManageTool::";
    rows.push_back(
        {{prefix + "CFileFolderManageTool()", prefix + "CFileFolderManageTool(KELPKIT::CFileFolderManageTool const&)",
          prefix + "operator=(KELPKIT::CFileFolderManageTool const&)", prefix + "~CFileFolderManageTool()",
          prefix + "SetNoNeedFilePath(std::wstring const&)", prefix + "SetNoNeedFileExName(std::wstring const&)",
          prefix + "CopyFolder(std::wstring const&, std::wstring const&)", prefix + "IsNoNeedFile(std::wstring const&)",
          prefix + "IsNoNeedFileExName(std::wstring const&)", prefix + "GetFileType(std::wstring const&)"},
         [](const std::wstring& folder) {
             const std::wstring source = Below(folder) + L"\\source";
             CFileFolderManageTool set;
             set.SetNoNeedFilePath(source + L"\\left out$" + source + L"\\none");
             set.SetNoNeedFileExName(L"tmp$an extension that nothing has");
             CFileFolderManageTool tool;
             tool = CFileFolderManageTool(set);
             return Shown(tool.CopyFolder(source, Below(folder) + L"\\copy"));
         },
         Operation::kPiecemeal,
         MakeSomeTree,
         ShownTree});
    rows.push_back({{prefix + "CopyNeedFile(std::wstring const&, std::wstring const&)"},
                    [](const std::wstring& folder) {
                        CFileFolderManageTool tool;
                        return Shown(CopyNeedFile(tool, ModelFile(folder), folder + L"\\copy.qmx"));
                    },
                    0,
                    WriteModel});
    rows.push_back(
        {{prefix + "ClearFolder(std::wstring const&)"},
         [](const std::wstring& folder) { return Shown(CFileFolderManageTool().ClearFolder(Below(folder))); },
         Operation::kPiecemeal,
         MakeSomeTree,
         ShownTree});
    const std::string scoped = "KELPKIT::CAutoCreateFolder::";
    rows.push_back({{scoped + "CAutoCreateFolder(std::wstring const&)",
                     scoped + "CAutoCreateFolder(KELPKIT::CAutoCreateFolder const&)",
                     scoped + "operator=(KELPKIT::CAutoCreateFolder const&)", scoped + "~CAutoCreateFolder()"},
                    [](const std::wstring& folder) {
                        const CAutoCreateFolder made(folder + L"\\scoped");
                        CAutoCreateFolder other(made);
                        other = made;
                        return Shown(Exists(folder + L"\\scoped"));
                    },
                    Operation::kPiecemeal,
                    nullptr,
                    [](const std::wstring& folder) { return Shown(Exists(folder + L"\\scoped")); }});
}

std::wstring ConfigFile(const std::wstring& folder)
{
    return folder + L"\\config.xml";
}

std::string ConfigBytes(const std::wstring& folder)
{
    return ReadFileBytes(ConfigFile(folder));
}

void WriteConfig(const std::wstring& folder)
{
    WriteFileBytes(ConfigFile(folder), "<?xml version=\"1.0\" encoding=\"GBK\"?>\n<config>\n"
                                       "  <server>\n    <host>a host of some length</host>\n  </server>\n"
                                       "  <port>8080</port>\n  <usersloginfo>\n"
                                       "    <user><name>a user of some length</name><password>x</password></user>\n"
                                       "  </usersloginfo>\n</config>\n");
}

std::string WriteAndReadTree(const std::wstring& folder)
{
    IXMLTreePtr tree;
    CXMLTreeCreator::Allocate(tree);
    const CString path = ConfigFile(folder).c_str();
    if (!tree->LoadFile(path))
        return {};
    int count = 0;
    tree->GetChildCount(count);
    CString text;
    if (!tree->GoToPath(L"server/host") || !tree->GetText(text))
        return {};
    tree->RemoveCurrent();
    if (!tree->AddChild(L"host", L"another <host> of some length"))
        return {};
    tree->GoToParent();
    tree->GoToParent();
    tree->GoToChildAt(2);
    tree->RemoveAllChildren();
    tree->GoToParent();
    if (!tree->GoToChild(L"port", 0) || !tree->SaveFile(path))
        return {};
    return std::to_string(count) + Shown(text.GetString());
}

void AddXml(std::vector<Operation>& rows)
{
    const std::string config = "KELPKIT::CXMLConfig::";
    const std::string logins = "(std::vector<KELPKIT::StUsrPwd, std::allocator<KELPKIT::StUsrPwd> >";
    const auto add = [&rows](std::vector<std::string> names, const auto& call, const std::string& failure) {
        rows.push_back({std::move(names),
                        [call](const std::wstring& folder) { return Shown(call(folder)); },
                        0,
                        WriteConfig,
                        ConfigBytes,
                        {failure}});
    };
    add(
        {config + "CXMLConfig(std::wstring const&)", config + "~CXMLConfig()", config + "GetXmlString(wchar_t const*)",
         config + "GetXMLValue(std::wstring const&, std::wstring&)"},
        [](auto& folder) { return CXMLConfig(ConfigFile(folder)).GetXmlString(L"server/host"); }, "");
    add(
        {config + "CXMLConfig(KELPKIT::CXMLConfig const&)", config + "operator=(KELPKIT::CXMLConfig const&)"},
        [](auto& folder) {
            const CXMLConfig first(ConfigFile(folder));
            CXMLConfig second(first);
            second = first;
            return second.GetXmlString(L"server/host");
        },
        "");
    add(
        {config + "GetXmlInt(wchar_t const*)"},
        [](auto& folder) { return CXMLConfig(ConfigFile(folder)).GetXmlInt(L"port"); }, "0");
    add(
        {config + "WriteXmlString(std::wstring, wchar_t const*)",
         config + "SetXMLValue(std::wstring const&, std::wstring const&)"},
        [](auto& folder) { return CXMLConfig(ConfigFile(folder)).WriteXmlString(kWide, L"server/host"); }, "0");
    add(
        {config + "WriteXmlInt(int, wchar_t const*)"},
        [](auto& folder) { return CXMLConfig(ConfigFile(folder)).WriteXmlInt(1234567890, L"server/number"); }, "0");
    add(
        {config + "GetShellXmlUsrs" + logins + "&)"},
        [](auto& folder) {
            std::vector<StUsrPwd> users;
            CXMLConfig(ConfigFile(folder)).GetShellXmlUsrs(users);
            return users.empty() ? std::wstring() : users[0].name + users[0].password;
        },
        "");
    // Tells no failure.
    add(
        {config + "WriteShellXmlUsrs" + logins + " const&)"},
        [](auto& folder) {
            CXMLConfig(ConfigFile(folder)).WriteShellXmlUsrs({{kWide, kWide}, {L"ann", L"secret!"}});
            return 0;
        },
        "0");
    add({"CXMLTreeCreator::Allocate(std::auto_ptr<IXMLTree>&)", "IXMLTree::LoadFile", "IXMLTree::SaveFile",
         "IXMLTree::AddChild", "IXMLTree::RemoveCurrent", "IXMLTree::RemoveAllChildren", "IXMLTree::GoToChildAt",
         "IXMLTree::GoToChild", "IXMLTree::GoToPath", "IXMLTree::GetChildCount", "IXMLTree::GetText",
         "IXMLTree::GoToParent"},
        WriteAndReadTree, "");
    rows.push_back(Plain({"CXMLTreeCreator::CXMLTreeCreator(CXMLTreeCreator const&)",
                          "CXMLTreeCreator::~CXMLTreeCreator()", "CXMLTreeCreator::operator=(CXMLTreeCreator const&)",
                          "typeinfo for CXMLTreeCreator", "vtable for CXMLTreeCreator"},
                         [] {
                             const CXMLTreeCreator creator;
                             const auto copy = std::make_unique<CXMLTreeCreator>(creator);
                             *copy = creator;
                             const CXMLTreeCreator& copied = *copy;
                             return typeid(copied) == typeid(CXMLTreeCreator);
                         }));
}

void WriteLogProperties(const std::wstring& folder)
{
    WriteFileBytes(folder + L"\\log.properties", "log4cplus.rootLogger=TRACE, fileAppender\n"
                                                 "log4cplus.appender.fileAppender=log4cplus::RollingFileAppender\n"
                                                 "log4cplus.appender.fileAppender.layout=log4cplus::PatternLayout\n"
                                                 "log4cplus.appender.fileAppender.layout.ConversionPattern=%m%n\n");
}

void AddLog(std::vector<Operation>& rows)
{
    const std::string log = "KELPKIT::CLogMsg::";
    rows.push_back(Plain({log + "CLogMsg()", log + "operator=(KELPKIT::CLogMsg const&)", log + "~CLogMsg()",
                          log + "LogMsg(KELPKIT::loglv, wchar_t const*)"},
                         [] {
                             CLogMsg message;
                             message = CLogMsg();
                             message.LogMsg(LV_INFO, kWide.c_str());
                             return 0;
                         }));
    rows.push_back({{log + "SetProperties(std::wstring const&)", log + "SetLogPath(std::wstring const&)"},
                    [](const std::wstring& folder) {
                        CLogMsg::SetProperties(folder + L"\\log.properties");
                        CLogMsg::SetLogPath(folder + L"\\log of gears\\run.log");
                        return std::string();
                    },
                    Operation::kOneThread | Operation::kConfiguresLog,
                    WriteLogProperties});
}

const HWND kHost = reinterpret_cast<HWND>(0x10002);
const HWND kChild = reinterpret_cast<HWND>(0x10004);
constexpr DWORD kChildProcess = 4242;

std::string HostAChild(const std::wstring& /*unused*/)
{
    ChildExe child;
    const CRect area(1, 2, 300, 200);
    std::string done = Shown(child.CreateSubWindow(kHost, L"\"C:\\App\\viewer.exe\" gear.qmx")) +
                       Shown(child.AddSubWindow(area)) + Shown(child.HasSubWindow()) + Shown(child.MoveSubWindow(area));
    child.UpdateSubWindow();
    ChildExe copy(child);
    done += Shown(copy.CloseSubWindow());
    copy = child;
    return done + typeid(copy).name();
}

void AddPrograms(std::vector<Operation>& rows)
{
    const std::string child = "KELPKIT::ChildExe::";
    rows.push_back({{child + "ChildExe()", child + "ChildExe(KELPKIT::ChildExe const&)",
                     child + "operator=(KELPKIT::ChildExe const&)", child + "~ChildExe()",
                     child + "CreateSubWindow(HWND__*, CString const&)", child + "AddSubWindow(CRect const&)",
                     child + "CloseSubWindow()", child + "UpdateSubWindow()", child + "HasSubWindow()",
                     child + "MoveSubWindow(CRect const&)", child + "CreateSubExeProcess(CString const&)",
                     child + "IsExeHasRun(unsigned long)", child + "GetWndHandleByPID(unsigned long)",
                     child + "EnumWindowsProc(HWND__*, long long)", "typeinfo for KELPKIT::ChildExe",
                     "vtable for KELPKIT::ChildExe"},
                    HostAChild,
                    Operation::kOneThread | Operation::kStartsProgram});
    rows.push_back({{"KELPKIT::ConvertHoopsQmx(std::wstring const&, std::wstring const&, std::wstring const&, "
                     "std::wstring&, std::wstring&, std::wstring&)"},
                    [](const std::wstring& folder) {
                        std::wstring hsf;
                        std::wstring qmx;
                        std::wstring error;
                        const bool isDone = ConvertHoopsQmx(ModelFile(folder), L"full", L"gear", hsf, qmx, error);
                        return Shown(isDone) + Shown(qmx == folder + L"\\gear_new.qmx") + Shown(hsf) + Shown(error);
                    },
                    Operation::kStartsProgram,
                    WriteModel});
}

BOOL WINAPI CreateNothing(const wchar_t*, wchar_t*, SECURITY_ATTRIBUTES*, SECURITY_ATTRIBUTES*, BOOL, DWORD, void*,
                          const wchar_t*, STARTUPINFOW*, PROCESS_INFORMATION* process)
{
    *process = {};
    process->dwProcessId = kChildProcess;
    return TRUE;
}

BOOL WINAPI PathExists(const wchar_t* path)
{
    return ::wcsstr(path, L"Pelvane.exe") != nullptr || ::GetFileAttributesW(path) != INVALID_FILE_ATTRIBUTES;
}

DWORD WINAPI ChildOwns(HWND, DWORD* process)
{
    *process = kChildProcess;
    return 1;
}

} // namespace

const std::vector<Operation>& Operations()
{
    static const std::vector<Operation> s_operations = [] {
        std::vector<Operation> rows;
        AddConversions(rows);
        AddStrings(rows);
        AddCodecs(rows);
        AddColors(rows);
        AddSystem(rows);
        AddDates(rows);
        AddFileQueries(rows);
        AddFolders(rows);
        AddXml(rows);
        AddLog(rows);
        AddPrograms(rows);
        return rows;
    }();
    return s_operations;
}

LogToFile::LogToFile(const std::wstring& folder)
{
    WriteLogProperties(folder);
    CLogMsg::SetProperties(folder + L"\\log.properties");
    CLogMsg::SetLogPath(folder + L"\\run.log");
}

LogToFile::~LogToFile()
{
    log4cplus::Logger::getDefaultHierarchy().resetConfiguration();
    CLogMsg::SetProperties(L"");
}

FakePrograms::FakePrograms()
    : m_createProcess("CreateProcessW", CreateNothing),
      m_waitForIdle(
          "WaitForInputIdle", +[](HANDLE, DWORD) -> DWORD { return 0; }),
      m_sleep(
          "Sleep", +[](DWORD) {}),
      m_pathExists("PathFileExistsW", PathExists),
      m_enumerate(
          "EnumWindows", +[](WNDENUMPROC procedure, LPARAM parameter) { return procedure(kChild, parameter); }),
      m_processOfWindow("GetWindowThreadProcessId", ChildOwns), m_parent(
                                                                    "GetParent", +[](HWND) -> HWND { return nullptr; }),
      m_setParent(
          "SetParent", +[](HWND, HWND) { return kHost; }),
      m_setStyle(
          "SetWindowLongW", +[](HWND, int, LONG) -> LONG { return 1; }),
      m_move(
          "MoveWindow", +[](HWND, int, int, int, int, BOOL) -> BOOL { return TRUE; }),
      m_show(
          "ShowWindow", +[](HWND, int) -> BOOL { return TRUE; }),
      m_order(
          "SetWindowPos", +[](HWND, HWND, int, int, int, int, UINT) -> BOOL { return TRUE; }),
      m_post(
          "PostMessageW", +[](HWND, UINT, WPARAM, LPARAM) -> BOOL { return TRUE; }),
      m_isWindow(
          "IsWindow", +[](HWND) -> BOOL { return TRUE; })
{
}

} // namespace test
