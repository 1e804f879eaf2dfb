#include "log/ConfiguredLog.h"
#include "support/FileContents.h"
#include "support/ImportPatch.h"
#include "support/LastError.h"
#include "support/LocaleRestorer.h"

#include <Kelpkit/Files.h>
#include <Kelpkit/Log.h>
#include <Kelpkit/Text.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <clocale>
#include <ctime>
#include <cwchar>
#include <string>

using namespace KELPKIT;
using test::WriteFileBytes;

namespace
{

std::string Utf16(const std::wstring& text, bool isBigEndian)
{
    std::string bytes;
    for (const wchar_t c : L"\xFEFF" + text) {
        const char low = static_cast<char>(c & 0xFF);
        const char high = static_cast<char>(c >> 8);
        bytes += isBigEndian ? high : low;
        bytes += isBigEndian ? low : high;
    }
    return bytes;
}

// How a property file may be written.
struct Encoding {
    const char* name;
    std::string (*encode)(const std::wstring& text);
    bool isUnicode;
};

const Encoding kEncodings[] = {
    {"Ansi", [](const std::wstring& text) { return UnicodeToAnsi(text); }, false},
    {"Utf8", [](const std::wstring& text) { return "\xEF\xBB\xBF" + UnicodeToUTF8(text); }, true},
    {"Utf16", [](const std::wstring& text) { return Utf16(text, false); }, true},
    {"Utf16BigEndian", [](const std::wstring& text) { return Utf16(text, true); }, true},
};

class PropertyFile : public test::ConfiguredLog, public testing::WithParamInterface<Encoding>
{
protected:
    static constexpr const wchar_t* kProperties = L"log4cplus.rootLogger=TRACE, fileAppender, second\r\n"
                                                  L"log4cplus.appender.fileAppender=log4cplus::FileAppender\r\n"
                                                  L"log4cplus.appender.fileAppender.layout=log4cplus::SimpleLayout\r\n"
                                                  L"log4cplus.appender.second=log4cplus::NullAppender\r\n";
    static constexpr const wchar_t* kSecondFile = L"log4cplus.appender.second=log4cplus::FileAppender\r\n"
                                                  L"log4cplus.appender.second.layout=log4cplus::SimpleLayout\r\n";

    // A name for a file, Chinese where the encoding of the property file has it, under any code page.
    static std::wstring Name() { return GetParam().isUnicode || ::GetACP() != 1252 ? L"模型 é" : L"é Ö €"; }

    // With names relative to the folder, whose own name not every encoding has.
    void SetUp() override { ASSERT_TRUE(::SetCurrentDirectoryW(Folder().Path().c_str())) << test::LastErrorText(); }
    void TearDown() override
    {
        CloseLog();
        ASSERT_TRUE(::SetCurrentDirectoryW(L"..")) << test::LastErrorText();
    }

    void StartLogWith(const std::wstring& more) { StartLog(GetParam().encode(kProperties + more)); }
};

std::string EncodingName(const testing::TestParamInfo<Encoding>& info)
{
    return info.param.name;
}

class InvalidPropertyFile : public test::ConfiguredLog
{
protected:
    static constexpr const char* kProperties = "log4cplus.rootLogger=TRACE, fileAppender\n"
                                               "log4cplus.appender.fileAppender=log4cplus::FileAppender\n"
                                               "log4cplus.appender.fileAppender.layout=log4cplus::PatternLayout\n"
                                               "log4cplus.appender.fileAppender.layout.ConversionPattern=";
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Log, PropertyFile, testing::ValuesIn(kEncodings), EncodingName);

TEST_P(PropertyFile, IsReadInItsEncoding)
{
    StartLogWith(L"");
    CLogMsg::LogMsg(LV_INFO, L"text");
    EXPECT_EQ(Lines(LogFile()), "INFO - text\n");
}

TEST_P(PropertyFile, PutsTheTextOfAPatternIntoTheLogAsAnsiBytes)
{
    StartLogWith(L"log4cplus.appender.fileAppender.layout=log4cplus::PatternLayout\r\n"
                 L"log4cplus.appender.fileAppender.layout.ConversionPattern=模型é€ %m\xD83D\xDC80%n\r\n");
    CLogMsg::LogMsg(LV_INFO, L"文件é");
    EXPECT_EQ(Lines(LogFile()), UnicodeToAnsi(L"模型é€ 文件é\xD83D\xDC80") + "\n");
}

TEST_P(PropertyFile, PutsTheTextOfADateFormatIntoTheLogAsAnsiBytes)
{
    StartLogWith(L"log4cplus.appender.fileAppender.layout=log4cplus::TTCCLayout\r\n"
                 L"log4cplus.appender.fileAppender.layout.ThreadPrinting=false\r\n"
                 L"log4cplus.appender.fileAppender.layout.DateFormat=年é\r\n");
    CLogMsg::LogMsg(LV_INFO, L"text");
    EXPECT_EQ(Lines(LogFile()), UnicodeToAnsi(L"年é") + " INFO log <> - text\n");
}

TEST_P(PropertyFile, FiltersMessagesByTheirText)
{
    StartLogWith(L"log4cplus.appender.fileAppender.filters.1=log4cplus::spi::StringMatchFilter\r\n"
                 L"log4cplus.appender.fileAppender.filters.1.AcceptOnMatch=false\r\n"
                 L"log4cplus.appender.fileAppender.filters.1.StringToMatch=" +
                 Name());
    CLogMsg::LogMsg(LV_INFO, (L"not " + Name()).c_str());
    CLogMsg::LogMsg(LV_INFO, L"text");
    EXPECT_EQ(Lines(LogFile()), "INFO - text\n");
}

TEST_P(PropertyFile, NamesTheFileOfASecondLog)
{
    StartLogWith(kSecondFile + (L"log4cplus.appender.second.File=" + Name() + L".log"));
    CLogMsg::LogMsg(LV_INFO, L"text");
    EXPECT_EQ(Lines(Folder() / (Name() + L".log")), "INFO - text\n");
}

TEST_P(PropertyFile, NamesAFileInAFolderToCreate)
{
    StartLogWith(kSecondFile + (L"log4cplus.appender.second.CreateDirs=true\r\n"
                                L"log4cplus.appender.second.File=" +
                                Name() + L"\\" + Name() + L".log"));
    CLogMsg::LogMsg(LV_INFO, L"text");
    EXPECT_EQ(Lines(Folder() / (Name() + L"\\" + Name() + L".log")), "INFO - text\n");
}

TEST_P(PropertyFile, NamesTheFileOfATimeBasedLog)
{
    StartLogWith(kSecondFile + (L"log4cplus.appender.second=log4cplus::TimeBasedRollingFileAppender\r\n"
                                L"log4cplus.appender.second.FilenamePattern=%d{" +
                                Name() + L"}.log"));
    CLogMsg::LogMsg(LV_INFO, L"text");
    EXPECT_EQ(Lines(Folder() / (Name() + L".log")), "INFO - text\n");
}

// Some C libraries convert the format to bytes by the locale.
TEST_P(PropertyFile, NamesTheFileOfATimeBasedLogWhereTheCLibraryFormatsOnlyAscii)
{
#ifdef _MSC_VER
    const wchar_t* const dll = L"log4cplusU.dll";
#else
    const wchar_t* const dll = L"liblog4cplusU.dll";
#endif
    const test::ImportPatch patch(
        dll, "wcsftime", +[](wchar_t* out, std::size_t size, const wchar_t* format, const tm* time) -> std::size_t {
            const std::wstring text = format;
            const bool isAscii = std::all_of(text.begin(), text.end(), [](wchar_t c) { return c < 0x80; });
            return isAscii ? std::wcsftime(out, size, format, time) : 0;
        });
    StartLogWith(kSecondFile + (L"log4cplus.appender.second=log4cplus::TimeBasedRollingFileAppender\r\n"
                                L"log4cplus.appender.second.FilenamePattern=" +
                                Name() + L" %d{yyyy}.log"));
    CLogMsg::LogMsg(LV_INFO, L"text");
    SYSTEMTIME now;
    ::GetLocalTime(&now);
    EXPECT_EQ(Lines(Folder() / (Name() + L" " + std::to_wstring(now.wYear) + L".log")), "INFO - text\n");
}

TEST_P(PropertyFile, NamesALockFile)
{
    StartLogWith(kSecondFile + (L"log4cplus.appender.second.UseLockFile=true\r\n"
                                L"log4cplus.appender.second.File=second.log\r\n"
                                L"log4cplus.appender.second.LockFile=" +
                                Name() + L".lock"));
    CLogMsg::LogMsg(LV_INFO, L"text");
    EXPECT_EQ(Lines(Folder() / L"second.log"), "INFO - text\n");
    EXPECT_TRUE(CheckFileExis(Folder() / (Name() + L".lock")));
}

TEST_P(PropertyFile, IncludesAFileOfAnyEncoding)
{
    for (const Encoding& included : kEncodings) {
        SCOPED_TRACE(included.name);
        const std::wstring secondLog = L"second of " + AnsiToUnicode(included.name) + L".log";
        WriteFileBytes(Folder() / Name(),
                       included.encode(kSecondFile + (L"log4cplus.appender.second.File=" + secondLog)));
        StartLogWith(L"include " + Name() + L"\r\n");
        CLogMsg::LogMsg(LV_INFO, L"text");
        EXPECT_EQ(Lines(Folder() / secondLog), "INFO - text\n");
    }
}

TEST_P(PropertyFile, IsReadAlikeWhateverTheLocaleOfTheProcess)
{
    const test::LocaleRestorer restorer;
    ASSERT_NE(std::setlocale(LC_ALL, ""), nullptr);
    StartLogWith(kSecondFile + (L"log4cplus.appender.second.File=" + Name() + L".log"));
    CLogMsg::LogMsg(LV_INFO, L"text");
    EXPECT_EQ(Lines(Folder() / (Name() + L".log")), "INFO - text\n");
}

TEST_P(PropertyFile, LeavesTheLogPathOfTheApplicationAlone)
{
    for (const wchar_t* const name : {L"café.log", L"Ö.log", L"模型.log", L"\x00C4\x00A3.log"}) {
        StartLogWith(L"");
        CLogMsg::SetLogPath(Folder() / name);
        CLogMsg::LogMsg(LV_INFO, L"text");
        EXPECT_EQ(Lines(Folder() / name), "INFO - text\n");
    }
}

TEST_P(PropertyFile, EndsWhereItIncludesItself)
{
    WriteFileBytes(Folder() / Name(), GetParam().encode(L"include " + Name() + L"\r\n"));
    StartLogWith(L"include " + Name() + L"\r\n");
    CLogMsg::LogMsg(LV_INFO, L"text");
    EXPECT_EQ(Lines(LogFile()), "INFO - text\n");
}

TEST_F(InvalidPropertyFile, KeepsTheBytesOfAPatternThatAreNoText)
{
    const std::string invalid = "\x81 \xFF\xFE \xE4\xB8\xAD";
    StartLog(kProperties + invalid + "%m%n\n");
    CLogMsg::LogMsg(LV_INFO, L"text");
    EXPECT_EQ(Lines(LogFile()), invalid + "text\n");
}

TEST_F(InvalidPropertyFile, ReplacesInvalidUtf8)
{
    StartLog("\xEF\xBB\xBF" + std::string(kProperties) + "a\xFFz%m%n\n");
    CLogMsg::LogMsg(LV_INFO, L"text");
    EXPECT_EQ(Lines(LogFile()), UnicodeToAnsi(L"a\xFFFDztext") + "\n");
}

TEST_F(InvalidPropertyFile, ReplacesUnpairedSurrogatesInUtf16)
{
    for (const bool isBigEndian : {false, true}) {
        StartLog(Utf16(AnsiToUnicode(kProperties) + L"\xDC80\xD83D%m\xD83D\xDE00%n\n", isBigEndian));
        CLogMsg::LogMsg(LV_INFO, L"text");
        EXPECT_EQ(Lines(LogFile()), UnicodeToAnsi(L"\xFFFD\xFFFDtext\xD83D\xDE00") + "\n");
    }
}

TEST_F(InvalidPropertyFile, ReplacesHalfACharacterAtTheEndInUtf16)
{
    StartLog(Utf16(AnsiToUnicode(kProperties) + L"%m%n", false) + "x");
    CLogMsg::LogMsg(LV_INFO, L"text");
    EXPECT_EQ(Lines(LogFile()), "text\n" + UnicodeToAnsi(L"\xFFFD"));
}

TEST_F(InvalidPropertyFile, IsEmptyWhereThereIsAMarkOnly)
{
    for (const char* const mark : {"\xEF\xBB\xBF", "\xFF\xFE", "\xFE\xFF", "\xEF\xBB", "\xFF", "\xFE"}) {
        EXPECT_NO_THROW(StartLog(mark));
        EXPECT_NO_THROW(CLogMsg::LogMsg(LV_INFO, L"text"));
        EXPECT_FALSE(CheckFileExis(LogFile()));
    }
}

TEST_F(InvalidPropertyFile, LeavesTheOtherLogsWhereAPathIsNoText)
{
    const std::string start = std::string(kProperties)
                                  .append("%m%n\n"
                                          "log4cplus.rootLogger=TRACE, second, fileAppender\n"
                                          "log4cplus.appender.second=log4cplus::FileAppender\n"
                                          "log4cplus.appender.second.File=");
    for (const std::string& path : {std::string("\x81 \xFF\xFE"), std::string("Q:\\\xE4\xB8\xAD\\x")}) {
        EXPECT_NO_THROW(StartLog(start + path));
        EXPECT_NO_THROW(CLogMsg::LogMsg(LV_INFO, L"text"));
        EXPECT_EQ(Lines(LogFile()), "text\n");
    }
}
