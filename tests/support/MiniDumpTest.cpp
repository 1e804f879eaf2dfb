#include "support/MiniDump.h"

#include "support/FileContents.h"
#include "support/FileHolder.h"
#include "support/LastError.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <dbghelp.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

using test::MiniDump;
using test::TempFolder;

namespace
{

// A dump of this process, as if this thread had raised an exception.
void WriteDump(const std::wstring& path, std::uint32_t code)
{
    ::SymSetOptions(SYMOPT_DEFERRED_LOADS); // no symbols are needed
    CONTEXT context = {};
    ::RtlCaptureContext(&context);
    EXCEPTION_RECORD record = {};
    record.ExceptionCode = code;
    record.ExceptionFlags = EXCEPTION_NONCONTINUABLE;
    record.ExceptionAddress = reinterpret_cast<void*>(&WriteDump);
    record.NumberParameters = 2;
    record.ExceptionInformation[0] = 7;
    record.ExceptionInformation[1] = 8;
    EXCEPTION_POINTERS pointers = {&record, &context};
    MINIDUMP_EXCEPTION_INFORMATION information = {};
    information.ThreadId = ::GetCurrentThreadId();
    information.ExceptionPointers = &pointers;
    const test::FileHolder file(path, GENERIC_READ | GENERIC_WRITE, 0, CREATE_ALWAYS);
    ASSERT_TRUE(::MiniDumpWriteDump(::GetCurrentProcess(), ::GetCurrentProcessId(), file.Handle(), MiniDumpNormal,
                                    &information, nullptr, nullptr))
        << test::LastErrorText();
}

} // namespace

TEST(MiniDump, SaysWhatWasWritten)
{
    const TempFolder folder;
    WriteDump(folder / L"a.dmp", 0xE0004321);
    const MiniDump dump(folder / L"a.dmp");
    EXPECT_EQ(dump.exception.code, 0xE0004321);
    EXPECT_EQ(dump.exception.flags, EXCEPTION_NONCONTINUABLE);
    EXPECT_EQ(dump.exception.threadId, ::GetCurrentThreadId());
    EXPECT_EQ(dump.exception.address, reinterpret_cast<std::uintptr_t>(&WriteDump));
    EXPECT_EQ(dump.exception.parameters, (std::vector<std::uint64_t>{7, 8}));
    EXPECT_EQ(dump.ModuleNameAt(dump.exception.address), L"supporttests.exe");
    EXPECT_EQ(dump.ModuleNameAt(0), L"");
    EXPECT_NE(dump.FindThread(::GetCurrentThreadId()), nullptr);
    EXPECT_EQ(dump.FindThread(0), nullptr);
    EXPECT_EQ(dump.processorArchitecture, PROCESSOR_ARCHITECTURE_AMD64);
}

TEST(MiniDump, ThrowsForAFileThatIsNoDump)
{
    const TempFolder folder;
    test::WriteFileBytes(folder / L"a.dmp", std::string(1000, 'x'));
    EXPECT_THROW(MiniDump(folder / L"a.dmp"), std::runtime_error);
    EXPECT_THROW(MiniDump(folder / L"missing.dmp"), std::runtime_error);
}

TEST(MiniDump, ThrowsForADumpThatEndsTooEarly)
{
    const TempFolder folder;
    WriteDump(folder / L"a.dmp", 1);
    const std::string bytes = test::ReadFileBytes(folder / L"a.dmp");
    for (const std::size_t length : {std::size_t{0}, std::size_t{10}, std::size_t{40}, bytes.size() / 2}) {
        SCOPED_TRACE(length);
        test::WriteFileBytes(folder / L"b.dmp", bytes.substr(0, length));
        EXPECT_THROW(MiniDump(folder / L"b.dmp"), std::runtime_error);
    }
}
