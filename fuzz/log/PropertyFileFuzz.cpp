#include "support/Fuzz.h"

#include "log4cplus/FileInMemory.h"

#include <fuzzer/FuzzedDataProvider.h>
#include <log4cplus/helpers/loglog.h>
#include <log4cplus/helpers/property.h>
#include <log4cplus/internal/ansitext.h>
#include <log4cplus/internal/env.h>
#include <log4cplus/internal/internal.h>

#include <map>

using fuzz::Expect;
using Map = std::map<std::wstring, std::wstring>;

namespace
{

constexpr wchar_t kMain[] = L"a";

// The only files that there are.
std::map<std::wstring, std::string> g_files;

// After so many no more are opened, as files may include each other.
constexpr int kMostOpened = 6;
int g_opened;

const std::string* Opened(const std::wstring& name)
{
    const auto found = g_files.find(name);
    return found == g_files.end() || g_opened++ >= kMostOpened ? nullptr : &found->second;
}

} // namespace

std::FileInMemory::FileInMemory(const wchar_t* name, std::ios_base::openmode /*mode*/)
{
    if (const std::string* const bytes = Opened(name))
        str(*bytes);
    else
        setstate(failbit);
}

// What the reader needs of the rest of log4cplus.
namespace log4cplus
{

tstring const internal::empty_str;

bool internal::parse_bool(bool& /*value*/, tstring const& /*text*/)
{
    return false;
}

std::string helpers::tostring(const std::wstring& text)
{
    return {text.begin(), text.end()};
}

thread::Mutex::Mutex() = default;
thread::Mutex::~Mutex() = default;

helpers::LogLog::LogLog() = default;
helpers::LogLog::~LogLog() = default;

void helpers::LogLog::error(const tstring& /*message*/, bool /*throws*/) const {}

helpers::LogLog& helpers::getLogLog()
{
    static LogLog log;
    return log;
}

} // namespace log4cplus

namespace
{

std::wstring ModelUnits(UINT codePage, const std::string& bytes, DWORD flags = 0)
{
    std::wstring units(bytes.size(), L'\0');
    const int count = ::MultiByteToWideChar(codePage, flags, bytes.data(), static_cast<int>(bytes.size()), units.data(),
                                            static_cast<int>(units.size()));
    return units.substr(0, static_cast<std::size_t>(count));
}

std::wstring ModelUtf16(const std::string& bytes, bool isBigEndian)
{
    std::wstring units;
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
        const auto at = [&](std::size_t place) { return static_cast<unsigned char>(bytes[place]); };
        units += static_cast<wchar_t>(isBigEndian ? at(i) << 8 | at(i + 1) : at(i + 1) << 8 | at(i));
    }
    for (std::size_t i = 0; i < units.size(); ++i) {
        const bool isLow = i > 0 && IS_HIGH_SURROGATE(units[i - 1]) && (units[i] & 0xFC00) == 0xDC00;
        const bool isHigh = i + 1 < units.size() && IS_HIGH_SURROGATE(units[i]) && (units[i + 1] & 0xFC00) == 0xDC00;
        if ((units[i] & 0xF800) == 0xD800 && !isLow && !isHigh)
            units[i] = 0xFFFD;
    }
    return bytes.size() % 2 == 0 ? units : units + L'\xFFFD';
}

// A line that is no text in the code page keeps its bytes, as lone surrogates.
std::wstring ModelAnsi(const std::string& bytes)
{
    std::wstring units;
    for (std::size_t start = 0; start < bytes.size();) {
        const std::string line = bytes.substr(start, bytes.find('\n', start) - start);
        const std::wstring text = ModelUnits(CP_ACP, line, MB_ERR_INVALID_CHARS);
        units += text;
        for (std::size_t i = 0; text.empty() && i < line.size(); ++i) {
            const auto byte = static_cast<unsigned char>(line[i]);
            units += static_cast<wchar_t>(byte < 0x80 ? byte : 0xDC00 + byte);
        }
        start += line.size() + 1;
        units += start <= bytes.size() ? L"\n" : L"";
    }
    return units;
}

std::wstring ModelDecoded(const std::string& bytes)
{
    if (bytes.substr(0, 3) == "\xEF\xBB\xBF")
        return ModelUnits(CP_UTF8, bytes.substr(3));
    const std::string two = bytes.substr(0, 2);
    return two == "\xFF\xFE" || two == "\xFE\xFF" ? ModelUtf16(bytes, two == "\xFE\xFF") : ModelAnsi(bytes);
}

std::wstring ModelTrimmed(const std::wstring& text)
{
    const wchar_t* const blanks = L" \t\n\v\f\r";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == text.npos ? L"" : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

void ModelRead(const std::wstring& name, Map& properties);

// A comment, another file, or a key and a value.
void ModelReadLine(const std::wstring& line, Map& properties)
{
    const std::wstring text = ModelTrimmed(line);
    if (text.empty() || text[0] == L'#')
        return;
    if (text.substr(0, 7) == L"include" && text.size() > 8 && ModelTrimmed(text.substr(7, 1)).empty()) {
        ModelRead(fuzz::UpToZero(ModelTrimmed(text.substr(8))), properties);
        return;
    }
    const std::size_t equals = text.find(L'=');
    if (equals != text.npos)
        properties[ModelTrimmed(text.substr(0, equals))] = ModelTrimmed(text.substr(equals + 1));
}

void ModelRead(const std::wstring& name, Map& properties)
{
    const std::string* const bytes = Opened(name);
    const std::wstring text = bytes == nullptr ? L"" : ModelDecoded(*bytes);
    for (std::size_t start = 0; start < text.size();) {
        const std::wstring line = text.substr(start, text.find(L'\n', start) - start);
        ModelReadLine(line, properties);
        start += line.size() + 1;
    }
}

// What Kelpkit calls, and what the file is decoded by.
void ExpectDecoded(const std::string& bytes)
{
    const std::wstring text = log4cplus::internal::decode_file(bytes);
    Expect(text == ModelDecoded(bytes), "decoded as the model does");
    const std::wstring logText = log4cplus::internal::log_text(text);
    const std::string narrow(logText.begin(), logText.end());
    if (text == ModelAnsi(bytes))
        Expect(narrow == bytes, "log text has the bytes of an ANSI file again");
    Expect(log4cplus::internal::true_text(logText) == ModelUnits(CP_ACP, narrow), "log text is ANSI");
}

} // namespace

// The file "b", ended by a backslash with anything behind it but another one, and the file "a", which may include both.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    g_files[L"b"] = input.ConsumeRandomLengthString();
    g_files[kMain] = input.ConsumeRemainingBytesAsString();
    ExpectDecoded(g_files[kMain]);

    g_opened = 0;
    Map expected;
    ModelRead(kMain, expected);
    g_opened = 0;
    const log4cplus::helpers::Properties properties(kMain);
    Expect(properties.size() == expected.size(), "as many properties as the model reads");
    for (const auto& [key, value] : expected) {
        Expect(properties.exists(key), "every key of the model");
        Expect(properties.getProperty(key) == value, "with the model's value");
    }
    return 0;
}
