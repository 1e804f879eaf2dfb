// Programs that really crash, and the dumps that they leave.

#include "support/CrashRecord.h"
#include "support/EnvironmentVariable.h"
#include "support/FileContents.h"
#include "support/FolderTree.h"
#include "support/LastError.h"
#include "support/MiniDump.h"
#include "support/Process.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

using test::BesideThisProgram;
using test::CrashRecord;
using test::MiniDump;
using test::TempFolder;

namespace
{

constexpr std::uint32_t kAccessViolation = 0xC0000005;
constexpr std::uint32_t kOwnException = 0xE0001234;
constexpr std::uint32_t kRaised = 0xE0000001;      // by Crasher's handlers of the C runtime
constexpr std::uint32_t kTermination = 0xE06B656C; // of mingw's build
#if defined(_MSC_VER)
constexpr std::uint32_t kCppException = 0xE06D7363;
constexpr std::uint32_t kInvalidParameter = 0xC0000417;
#else
constexpr std::uint32_t kThrow = 0x20474343;
#endif

// The local time as the names of dumps have it.
std::wstring Now()
{
    SYSTEMTIME now;
    ::GetLocalTime(&now);
    wchar_t text[32];
    std::swprintf(text, std::size(text), L"%04d%02d%02d%02d%02d%02d", now.wYear, now.wMonth, now.wDay, now.wHour,
                  now.wMinute, now.wSecond);
    return text;
}

// Whether a dump stands in a folder or below it.
bool HasDump(const std::wstring& folder)
{
    const std::wstring end = L".dmp";
    const std::vector<std::wstring> entries = test::ListTree(folder);
    return std::any_of(entries.begin(), entries.end(), [&end](const std::wstring& entry) {
        return entry.size() >= end.size() && entry.compare(entry.size() - end.size(), end.size(), end) == 0;
    });
}

// Runs crashing programs with a temporary folder of their own.
class CrashDump : public testing::Test
{
protected:
    CrashDump() { ::CreateDirectoryW(m_temp.c_str(), nullptr); }

    // Runs Crasher.exe, or a copy of it elsewhere, and returns its exit code.
    std::uint32_t Crash(const std::wstring& arguments, const std::wstring& program = BesideThisProgram(L"Crasher.exe"))
    {
        const test::EnvironmentVariable tmp(L"TMP", m_temp);
        const test::EnvironmentVariable temp(L"TEMP", m_temp);
        // Copies find their DLLs here.
        const test::EnvironmentVariable path(L"PATH", BesideThisProgram(L"") + L";" +
                                                          test::EnvironmentVariable::Value(L"PATH").value_or(L""));
        m_start = Now();
        const std::uint32_t exitCode = test::Run(L"\"" + program + L"\" \"" + m_records + L"\" " + arguments);
        m_end = Now();
        return exitCode;
    }

    std::vector<std::wstring> Dumps() const { return test::ListTree(m_temp); }

    // The one dump that the program left, of the name that an executable of this name must give.
    MiniDump TheDump(const std::wstring& name = L"Crasher.exe") const
    {
        const std::vector<std::wstring> dumps = Dumps();
        EXPECT_EQ(dumps.size(), 1U);
        const std::wstring dump = dumps.empty() ? L"" : dumps[0];
        EXPECT_EQ(dump.substr(std::min(dump.size(), m_start.size())), L"_" + name + L".dmp");
        EXPECT_GE(dump.substr(0, m_start.size()), m_start);
        EXPECT_LE(dump.substr(0, m_end.size()), m_end);
        return MiniDump(m_temp + L"\\" + dump);
    }

    // The main thread first, then each exception.
    std::vector<CrashRecord> Records() const
    {
        const std::string bytes = test::ReadFileBytes(m_records);
        std::vector<CrashRecord> records(bytes.size() / sizeof(CrashRecord));
        std::memcpy(records.data(), bytes.data(), records.size() * sizeof(CrashRecord));
        return records;
    }

    TempFolder m_folder;
    std::wstring m_temp = m_folder / L"temp";

private:
    std::wstring m_records = m_folder / L"records";
    std::wstring m_start;
    std::wstring m_end;
};

void ExpectThreadWithItsStack(const MiniDump& dump, std::uint32_t threadId, std::uint64_t stackPointer)
{
    const MiniDump::Thread* const thread = dump.FindThread(threadId);
    ASSERT_NE(thread, nullptr);
    EXPECT_GE(stackPointer, thread->stackStart);
    EXPECT_LT(stackPointer, thread->stackStart + thread->stackSize);
}

// Does the dump say of the exception what the program wrote down when it was raised?
void ExpectSame(const MiniDump& dump, const CrashRecord& record)
{
    EXPECT_EQ(dump.exception.code, record.code);
    EXPECT_EQ(dump.exception.address, record.address);
    EXPECT_EQ(dump.exception.threadId, record.threadId);
    ExpectThreadWithItsStack(dump, record.threadId, dump.exception.stackPointer);
}

struct CrashWay {
    const wchar_t* arguments;
    std::uint32_t code;
    const wchar_t* module; // in which it happens
    std::vector<std::uint64_t> parameters;
};

std::string Letters(const std::wstring& text)
{
    std::string letters;
    for (const wchar_t c : text) {
        if (c != L' ' && c != L'-')
            letters += static_cast<char>(c);
    }
    return letters;
}

std::string Name(const testing::TestParamInfo<CrashWay>& way)
{
    return Letters(way.param.arguments);
}

std::ostream& operator<<(std::ostream& stream, const CrashWay& way)
{
    return stream << testing::PrintToString(std::wstring(way.arguments));
}

// An end that the C++ runtime or the C runtime brings about.
struct RuntimeEnd {
    const wchar_t* arguments;
    std::uint32_t exitCode;
    std::uint32_t dumpCode; // of the exception in the dump; 0 where there is no dump
};

std::string EndName(const testing::TestParamInfo<RuntimeEnd>& end)
{
    return Letters(end.param.arguments);
}

std::ostream& operator<<(std::ostream& stream, const RuntimeEnd& end)
{
    return stream << testing::PrintToString(std::wstring(end.arguments));
}

class EachRuntimeEnd : public CrashDump, public testing::WithParamInterface<RuntimeEnd>
{
};

class EachCrash : public CrashDump, public testing::WithParamInterface<CrashWay>
{
};

} // namespace

TEST_P(EachCrash, LeavesADumpOfTheExceptionItsThreadAndItsModule)
{
    const CrashWay& way = GetParam();
    EXPECT_EQ(Crash(way.arguments), way.code);
    const std::vector<CrashRecord> records = Records();
    ASSERT_EQ(records.size(), 2U);
    const MiniDump dump = TheDump();
    ExpectSame(dump, records[1]);
    EXPECT_EQ(dump.exception.code, way.code);
    EXPECT_EQ(dump.exception.parameters, way.parameters);
    EXPECT_EQ(dump.ModuleNameAt(dump.exception.address), way.module);
    const bool inSecondThread = std::wcsstr(way.arguments, L" thread") != nullptr;
    EXPECT_EQ(dump.exception.threadId != records[0].threadId, inSecondThread);
    EXPECT_NE(dump.FindThread(records[0].threadId), nullptr);
    for (const wchar_t* const name : {L"crasher.exe", L"kelpkit.dll", L"ntdll.dll"}) {
        EXPECT_EQ(std::count_if(dump.modules.begin(), dump.modules.end(),
                                [name](const MiniDump::Module& module) { return module.Name() == name; }),
                  1)
            << testing::PrintToString(std::wstring(name));
    }
    EXPECT_EQ(dump.processorArchitecture, PROCESSOR_ARCHITECTURE_AMD64);
    EXPECT_GE(dump.windowsMajorVersion, 6U);
}

INSTANTIATE_TEST_SUITE_P(
    CrashDump, EachCrash,
    testing::Values(CrashWay{L"read", kAccessViolation, L"crasher.exe", {0, 0}},
                    CrashWay{L"write", kAccessViolation, L"crasher.exe", {1, 0}},
                    CrashWay{L"divide", 0xC0000094, L"crasher.exe", {}},
                    CrashWay{L"illegal", 0xC000001D, L"crasher.exe", {}},
                    CrashWay{L"privileged", 0xC0000096, L"crasher.exe", {}},
                    CrashWay{L"call", kAccessViolation, L"", {8, 0}}, // at address 0, where no module is
                    CrashWay{L"raise", kOwnException, L"kernelbase.dll", {7, 8}},
                    CrashWay{L"kelpkit", kAccessViolation, L"kelpkit.dll", {0, 16}},
                    CrashWay{L"write thread", kAccessViolation, L"crasher.exe", {1, 0}},
                    CrashWay{L"raise thread", kOwnException, L"kernelbase.dll", {7, 8}},
                    CrashWay{L"write earlier twice", kAccessViolation, L"crasher.exe", {1, 0}},
                    CrashWay{L"write no-heap", kAccessViolation, L"crasher.exe", {1, 0}}),
    &Name);

TEST_P(EachRuntimeEnd, LeavesADumpOrNoneAndTheExitCode)
{
    const RuntimeEnd& end = GetParam();
    EXPECT_EQ(Crash(end.arguments), end.exitCode);
    if (end.dumpCode == 0) {
        EXPECT_TRUE(Dumps().empty());
        return;
    }
    const MiniDump dump = TheDump();
    EXPECT_EQ(dump.exception.code, end.dumpCode);
    if (end.dumpCode == kTermination) {
        EXPECT_EQ(dump.exception.flags, EXCEPTION_NONCONTINUABLE);
    }
    ExpectThreadWithItsStack(dump, dump.exception.threadId, dump.exception.stackPointer);
    const bool inSecondThread = std::wcsstr(end.arguments, L"thread") != nullptr;
    EXPECT_EQ(dump.exception.threadId != Records().at(0).threadId, inSecondThread);
}

INSTANTIATE_TEST_SUITE_P(CrashDump, EachRuntimeEnd,
                         testing::Values(RuntimeEnd{L"abort", 3, 0},
                                         RuntimeEnd{L"abort thread raising", kRaised, kRaised}),
                         &EndName);

#if defined(_MSC_VER)
// The exit code 3 after a dump, 255 and the exception of an invalid parameter are Wine's or clang's.
INSTANTIATE_TEST_SUITE_P(VisualStudio, EachRuntimeEnd,
                         testing::Values(RuntimeEnd{L"throw", kCppException, kCppException},
                                         RuntimeEnd{L"throw-on", kCppException, kCppException},
                                         RuntimeEnd{L"throw system-thread", kCppException, kCppException},
                                         RuntimeEnd{L"throw crt-thread", kCppException, kCppException},
                                         RuntimeEnd{L"throw handler", kCppException, kCppException},
                                         RuntimeEnd{L"throw thread", 3, kCppException},
                                         RuntimeEnd{L"noexcept", 3, kCppException}, RuntimeEnd{L"terminate", 3, 0},
                                         RuntimeEnd{L"terminate handler", 96, 0},
                                         RuntimeEnd{L"terminate raising", kRaised, kRaised},
                                         RuntimeEnd{L"pure", 255, 0}, RuntimeEnd{L"pure raising", kRaised, kRaised},
                                         RuntimeEnd{L"parameter", kInvalidParameter, kInvalidParameter},
                                         RuntimeEnd{L"parameter raising", kRaised, kRaised}),
                         &EndName);
#else
INSTANTIATE_TEST_SUITE_P(
    Mingw, EachRuntimeEnd,
    testing::Values(
        RuntimeEnd{L"throw", kTermination, kTermination}, RuntimeEnd{L"throw thread", kTermination, kTermination},
        RuntimeEnd{L"throw system-thread", kThrow, kThrow}, RuntimeEnd{L"throw crt-thread", kThrow, kThrow},
        RuntimeEnd{L"throw-on", kTermination, kTermination},
        RuntimeEnd{L"throw-on raising", kTermination, kTermination},
        RuntimeEnd{L"throw-on-without-heap", kTermination, kTermination},
        RuntimeEnd{L"noexcept", kTermination, kTermination}, RuntimeEnd{L"terminate", kTermination, kTermination},
        RuntimeEnd{L"terminate no-heap", kTermination, kTermination},
        RuntimeEnd{L"throw twice", kTermination, kTermination},
        // 97: the application's handler was called, with the exception; 96: without one.
        RuntimeEnd{L"throw handler", 97, kTermination}, RuntimeEnd{L"throw crt-thread handler", kThrow, kThrow},
        RuntimeEnd{L"throw-on handler", 97, kTermination}, RuntimeEnd{L"throw handler twice", 97, kTermination},
        RuntimeEnd{L"terminate handler", 96, kTermination}, RuntimeEnd{L"throw later-handler", 97, 0},
        RuntimeEnd{L"throw returning", 3, kTermination}, RuntimeEnd{L"throw chained", 3, kTermination},
        // 98: a filter that was set later was called.
        RuntimeEnd{L"throw later", 98, 0}, RuntimeEnd{L"throw handler later", 97, 0},
        RuntimeEnd{L"throw returning raising later", 98, 0}, RuntimeEnd{L"abort abort-handler", 95, 0},
        RuntimeEnd{L"pure", kAccessViolation, kAccessViolation}, RuntimeEnd{L"parameter", 0, 0},
        RuntimeEnd{L"parameter raising", 0, 0}),
    &EndName);
#endif

TEST_F(CrashDump, IsThereAfterKelpkitWasFreed)
{
    EXPECT_EQ(Crash(L"", BesideThisProgram(L"CrashAfterFree.exe")), kOwnException);
    const MiniDump dump = TheDump(L"CrashAfterFree.exe");
    EXPECT_EQ(dump.exception.code, kOwnException);
    EXPECT_EQ(dump.exception.parameters, (std::vector<std::uint64_t>{7, 8}));
}

TEST_F(CrashDump, IsNotThereWhereWineEndsAThreadWhoseStackOverflows)
{
    Crash(L"stack stack-kept");
    EXPECT_EQ(Records().back().code, 0xC00000FDU);
    EXPECT_TRUE(Dumps().empty());
}

TEST_F(CrashDump, IsNotThereWithoutStartCrashReport)
{
    EXPECT_EQ(Crash(L"write no-dump"), kAccessViolation);
    EXPECT_EQ(Records().size(), 2U);
    EXPECT_TRUE(Dumps().empty());
}

TEST_F(CrashDump, IsNotThereWhereAnotherFilterWasSetAfterwards)
{
    EXPECT_EQ(Crash(L"write later"), 98U);
    EXPECT_TRUE(Dumps().empty());
}

TEST_F(CrashDump, IsNotThereWhereTheTemporaryFolderIsMissing)
{
    ASSERT_TRUE(::RemoveDirectoryW(m_temp.c_str())) << test::LastErrorText();
    EXPECT_EQ(Crash(L"write"), kAccessViolation);
    EXPECT_EQ(Records().size(), 2U);
    EXPECT_FALSE(HasDump(m_folder.Path()));
    EXPECT_FALSE(HasDump(BesideThisProgram(L"")));
}

TEST_F(CrashDump, IsTestedByAProgramThatEndsAtItsFirstUseOfTheHeap)
{
    // What "no-heap" relies on: the option does what it says.
    EXPECT_EQ(Crash(L"use-heap no-heap"), 99U);
    EXPECT_EQ(Crash(L"use-heap"), 0U);
}

TEST_F(CrashDump, IsThereAfterTwoThreadsCrashAtOnce)
{
    // Whose it is, and whether it is whole, is left open: one may overwrite the other's.
    EXPECT_EQ(Crash(L"write two-threads"), kAccessViolation);
    const std::vector<CrashRecord> records = Records();
    ASSERT_GE(records.size(), 3U);
    EXPECT_NE(records[1].threadId, records[2].threadId);
    for (const std::size_t thread : {std::size_t{1}, std::size_t{2}}) {
        EXPECT_EQ(records[thread].code, kAccessViolation);
        EXPECT_NE(records[thread].threadId, records[0].threadId);
    }
    EXPECT_GE(Dumps().size(), 1U);
    for (const std::wstring& dump : Dumps())
        EXPECT_EQ(dump.substr(14), L"_Crasher.exe.dmp");
}

TEST_F(CrashDump, CutsALongExecutablesName)
{
    // Longer than half the path of the program by far.
    const std::wstring name = std::wstring(150, L'n') + L".exe";
    const std::wstring program = m_folder / name;
    ASSERT_TRUE(::CopyFileW(BesideThisProgram(L"Crasher.exe").c_str(), program.c_str(), TRUE)) << test::LastErrorText();
    EXPECT_EQ(Crash(L"write", program), kAccessViolation);
    // A byte that is the first half of a character has a zero for the other.
    ASSERT_LT((program.size() + 1) / 2, name.size());
    ExpectSame(TheDump(name.substr(0, (program.size() + 1) / 2)), Records().at(1));
}

TEST_F(CrashDump, KeepsAChineseExecutablesName)
{
    const std::wstring program = m_folder / L"齿轮 gear 𠀀.exe";
    ASSERT_TRUE(::CopyFileW(BesideThisProgram(L"Crasher.exe").c_str(), program.c_str(), TRUE)) << test::LastErrorText();
    EXPECT_EQ(Crash(L"write", program), kAccessViolation);
    const MiniDump dump = TheDump(L"齿轮 gear 𠀀.exe");
    ExpectSame(dump, Records().at(1));
    EXPECT_EQ(dump.ModuleNameAt(dump.exception.address), L"齿轮 gear 𠀀.exe");
}

TEST_F(CrashDump, LiesInATemporaryFolderWithAChineseName)
{
    m_temp = m_folder / L"临时 temp 𠀀";
    ASSERT_TRUE(::CreateDirectoryW(m_temp.c_str(), nullptr)) << test::LastErrorText();
    EXPECT_EQ(Crash(L"write"), kAccessViolation);
    ExpectSame(TheDump(), Records().at(1));
}
