// The DLLs as files that are loaded and unloaded. This program calls nothing of it, so it is not loaded from the start.

#include "support/FileContents.h"
#include "support/LastError.h"
#include "support/Process.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

std::wstring Dll()
{
    return test::BesideThisProgram(L"Kelpkit.dll");
}

// Mangled names of what is called here.
#if defined(_MSC_VER)
#define WSTRING "V?$basic_string@_WU?$char_traits@_W@std@@V?$allocator@_W@2@@std@@"
#define STRING "V?$basic_string@DU?$char_traits@D@std@@V?$allocator@D@2@@std@@"
constexpr const char* kSetProperties = "?SetProperties@CLogMsg@KELPKIT@@SAXAEB" WSTRING "@Z";
constexpr const char* kSetLogPath = "?SetLogPath@CLogMsg@KELPKIT@@SAXAEB" WSTRING "@Z";
constexpr const char* kLogMsg = "?LogMsg@CLogMsg@KELPKIT@@SAXW4loglv@2@PEB_W@Z";
constexpr const char* kGetCpuId = "?GetCPUId@KELPKIT@@YA?A" WSTRING "XZ";
constexpr const char* kBuildMd5CodeOfConst = "?BuildMd5Code@KELPKIT@@YA_NAEB" STRING "AEAV23@@Z";
constexpr const char* kBuildMd5Code = "?BuildMd5Code@KELPKIT@@YA_NAEA" STRING "0@Z";
constexpr const char* kTimeToStringOfConst = "?Time_tToString@KELPKIT@@YA?A" WSTRING "AEB_J@Z";
constexpr const char* kTimeToString = "?Time_tToString@KELPKIT@@YA?A" WSTRING "AEA_J@Z";
#else
#define WSTRING "NSt7__cxx1112basic_stringIwSt11char_traitsIwESaIwEEE"
#define STRING "NSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE"
constexpr const char* kSetProperties = "_ZN7KELPKIT7CLogMsg13SetPropertiesERK" WSTRING;
constexpr const char* kSetLogPath = "_ZN7KELPKIT7CLogMsg10SetLogPathERK" WSTRING;
constexpr const char* kLogMsg = "_ZN7KELPKIT7CLogMsg6LogMsgENS_5loglvEPKw";
constexpr const char* kGetCpuId = "_ZN7KELPKIT8GetCPUIdB5cxx11Ev";
constexpr const char* kBuildMd5CodeOfConst = "_ZN7KELPKIT12BuildMd5CodeERK" STRING "RS5_";
constexpr const char* kBuildMd5Code = "_ZN7KELPKIT12BuildMd5CodeER" STRING "S6_";
constexpr const char* kTimeToStringOfConst = "_ZN7KELPKIT14Time_tToStringB5cxx11ERKx";
constexpr const char* kTimeToString = "_ZN7KELPKIT14Time_tToStringB5cxx11ERx";
#endif

// Null where the module does not export the name.
template <class Function>
Function Find(HMODULE module, const char* name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(module, name)));
}

// Reads a value of the version resource.
template <class Value>
const Value* VersionValue(std::vector<std::byte>& resource, const wchar_t* name)
{
    void* value = nullptr;
    UINT size = 0;
    EXPECT_TRUE(::VerQueryValueW(resource.data(), name, &value, &size)) << test::LastErrorText();
    return static_cast<const Value*>(value);
}

class EachLibrary : public testing::TestWithParam<const wchar_t*>
{
};

class LateDll : public testing::TestWithParam<const wchar_t*>
{
};

class ExitFromThread : public testing::TestWithParam<const wchar_t*>
{
};

} // namespace

TEST(Library, LoadsAndUnloads100TimesInOneProcess)
{
    for (int round = 0; round < 100; ++round) {
        const HMODULE module = ::LoadLibraryW(Dll().c_str());
        ASSERT_NE(module, nullptr) << test::LastErrorText();
        ASSERT_TRUE(::FreeLibrary(module)) << test::LastErrorText();
        ASSERT_EQ(::GetModuleHandleW(L"Kelpkit.dll"), nullptr);
    }
}

TEST(Library, LeavesNothingBehindThatRunsAfterItWasUnloaded)
{
    const HMODULE module = ::LoadLibraryW(Dll().c_str());
    ASSERT_NE(module, nullptr) << test::LastErrorText();
    ASSERT_TRUE(::FreeLibrary(module)) << test::LastErrorText();
    // Calls queued for this thread run now.
    EXPECT_EQ(::SleepEx(10, TRUE), 0U);
}

TEST(Library, LogsBetweenLoadingAndUnloading)
{
    const test::TempFolder folder;
    const std::wstring propertyFile = folder / L"log4cplus.properties";
    const std::wstring logFile = folder / L"run.log";
    test::WriteFileBytes(propertyFile, "log4cplus.rootLogger=TRACE, fileAppender\n"
                                       "log4cplus.appender.fileAppender=log4cplus::FileAppender\n"
                                       "log4cplus.appender.fileAppender.Append=true\n"
                                       "log4cplus.appender.fileAppender.layout=log4cplus::PatternLayout\n"
                                       "log4cplus.appender.fileAppender.layout.ConversionPattern=%m;\n");
    std::string expected;
    for (int round = 0; round < 20; ++round) {
        const HMODULE module = ::LoadLibraryW(Dll().c_str());
        ASSERT_NE(module, nullptr) << test::LastErrorText();
        const auto setProperties = Find<void (*)(const std::wstring&)>(module, kSetProperties);
        const auto setLogPath = Find<void (*)(const std::wstring&)>(module, kSetLogPath);
        const auto logMsg = Find<void (*)(int, const wchar_t*)>(module, kLogMsg);
        ASSERT_TRUE(setProperties && setLogPath && logMsg);
        setProperties(propertyFile);
        setLogPath(logFile);
        logMsg(4, L"text");
        expected += "text;";
        ASSERT_TRUE(::FreeLibrary(module)) << test::LastErrorText();
    }
    EXPECT_EQ(test::ReadFileBytes(logFile), expected);
}

TEST(Library, LeavesNoExceptionHandlerBehind)
{
    const HMODULE module = ::LoadLibraryW(Dll().c_str());
    ASSERT_NE(module, nullptr) << test::LastErrorText();
    const auto getCpuId = Find<std::wstring (*)()>(module, kGetCpuId);
    ASSERT_NE(getCpuId, nullptr);
    EXPECT_NE(getCpuId(), L"") << "which is asked for under a handler";
    ASSERT_TRUE(::FreeLibrary(module)) << test::LastErrorText();
    // An exception passes by every handler of the process.
    EXPECT_THROW(throw std::runtime_error("text"), std::runtime_error);
}

// Applications may have been compiled with headers that declare these without const.
TEST(Library, ExportsWhatTakesAReferenceUnderTheNamesWithAndWithoutConst)
{
    const HMODULE module = ::LoadLibraryW(Dll().c_str());
    ASSERT_NE(module, nullptr) << test::LastErrorText();
    for (const char* const name : {kBuildMd5CodeOfConst, kBuildMd5Code}) {
        SCOPED_TRACE(name);
        const auto buildMd5Code = Find<bool (*)(std::string&, std::string&)>(module, name);
        ASSERT_NE(buildMd5Code, nullptr);
        std::string input = "abc";
        std::string output;
        EXPECT_TRUE(buildMd5Code(input, output));
        EXPECT_EQ(output, "900150983cd24fb0d6963f7d28e17f72");
        EXPECT_EQ(input, "abc");
    }
    for (const char* const name : {kTimeToStringOfConst, kTimeToString}) {
        SCOPED_TRACE(name);
        const auto timeToString = Find<std::wstring (*)(std::int64_t&)>(module, name);
        ASSERT_NE(timeToString, nullptr);
        std::int64_t time = 0;
        EXPECT_EQ(timeToString(time).substr(0, 8), L"date is ");
        EXPECT_EQ(time, 0);
    }
    ::FreeLibrary(module);
}

TEST_P(EachLibrary, SaysWhatItIsInItsVersionResource)
{
    const std::wstring dll = test::BesideThisProgram(GetParam());
    DWORD ignored = 0;
    std::vector<std::byte> resource(::GetFileVersionInfoSizeW(dll.c_str(), &ignored));
    ASSERT_FALSE(resource.empty()) << test::LastErrorText();
    ASSERT_TRUE(::GetFileVersionInfoW(dll.c_str(), 0, static_cast<DWORD>(resource.size()), resource.data()))
        << test::LastErrorText();

    const auto* const fixed = VersionValue<VS_FIXEDFILEINFO>(resource, L"\\");
    EXPECT_EQ(fixed->dwFileType, static_cast<DWORD>(VFT_DLL));
    EXPECT_EQ(fixed->dwFileVersionMS, static_cast<DWORD>(KELPKIT_VERSION_MAJOR << 16 | KELPKIT_VERSION_MINOR));
    EXPECT_EQ(fixed->dwFileVersionLS, static_cast<DWORD>(KELPKIT_VERSION_PATCH << 16));

    const auto* const translation = VersionValue<WORD>(resource, L"\\VarFileInfo\\Translation");
    EXPECT_EQ(translation[0], 0x0409);
    EXPECT_EQ(translation[1], 0x04B0);
    EXPECT_STREQ(VersionValue<wchar_t>(resource, L"\\StringFileInfo\\040904B0\\ProductName"), L"Kelpkit");
    EXPECT_STREQ(VersionValue<wchar_t>(resource, L"\\StringFileInfo\\040904B0\\ProductVersion"), KELPKIT_VERSION_TEXT);
    EXPECT_STREQ(VersionValue<wchar_t>(resource, L"\\StringFileInfo\\040904B0\\OriginalFilename"), GetParam());
}

TEST_P(EachLibrary, MayBePlacedAnywhereAndExecutesNoData)
{
    const std::wstring dll = test::BesideThisProgram(GetParam());
    const HMODULE module = ::LoadLibraryW(dll.c_str());
    ASSERT_NE(module, nullptr) << test::LastErrorText();
    const auto* const base = reinterpret_cast<const std::byte*>(module);
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    constexpr WORD kWanted = IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA | IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE |
                             IMAGE_DLLCHARACTERISTICS_NX_COMPAT;
    EXPECT_EQ(nt->OptionalHeader.DllCharacteristics & kWanted, kWanted);
    ::FreeLibrary(module);
}

INSTANTIATE_TEST_SUITE_P(Library, EachLibrary, testing::Values(L"Kelpkit.dll", L"XMLParser.dll"));

#if !defined(_AFXDLL)
// MFC brings some of them.
TEST_P(LateDll, IsLoadedByTheFirstCallThatNeedsIt)
{
    EXPECT_EQ(test::Run(L"\"" + test::BesideThisProgram(L"LateDll.exe") + L"\" " + GetParam()), 0U);
}

INSTANTIATE_TEST_SUITE_P(Library, LateDll,
                         testing::Values(L"bcrypt.dll", L"dbghelp.dll", L"ole32.dll", L"oleaut32.dll", L"shlwapi.dll",
                                         L"user32.dll"));
#endif

TEST_P(ExitFromThread, EndsTheProcess)
{
    const test::TempFolder folder(L"退出 x");
    EXPECT_EQ(test::Run(L"\"" + test::BesideThisProgram(L"ExitFromThread.exe") + L"\" \"" + (folder / L"run.log") +
                        L"\" " + GetParam()),
              7U);
    const std::string log = test::ReadFileBytes(folder / L"run.log");
    EXPECT_GE(log.size(), 4U * 200U * 10U) << "what was logged before is there";
}

INSTANTIATE_TEST_SUITE_P(Library, ExitFromThread, testing::Values(L"exit", L"process", L"main"));
