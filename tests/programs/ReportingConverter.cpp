// A converter for the tests. Writes down how it was started: its command line, the way its window is to be shown, and
// its current folder, one to a line in UTF-8, into report.txt beside itself. Succeeds with the outputs that its third
// argument names, in the folder of its first.

#include <windows.h>

#include <fstream>
#include <string>

namespace
{

std::string Utf8(const std::wstring& text)
{
    std::string utf8(text.size() * 3 + 1, '\0');
    const int size = ::WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()), utf8.data(),
                                           static_cast<int>(utf8.size()), nullptr, nullptr);
    utf8.resize(static_cast<std::size_t>(size));
    return utf8;
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    wchar_t program[MAX_PATH + 1] = {};
    ::GetModuleFileNameW(nullptr, program, MAX_PATH);
    wchar_t currentFolder[MAX_PATH + 1] = {};
    ::GetCurrentDirectoryW(MAX_PATH, currentFolder);
    STARTUPINFOW startup = {};
    ::GetStartupInfoW(&startup);

    const std::wstring path = program;
    std::ofstream report((path.substr(0, path.rfind(L'\\') + 1) + L"report.txt").c_str(), std::ios::binary);
    report << Utf8(::GetCommandLineW()) << '\n'
           << ((startup.dwFlags & STARTF_USESHOWWINDOW) != 0 ? std::to_string(startup.wShowWindow) : "default") << '\n'
           << Utf8(currentFolder) << '\n'
           << Utf8(path.substr(path.rfind(L'\\') + 1)) << '\n';

    if (argc == 4) {
        const std::wstring input = argv[1];
        const std::wstring output = input.substr(0, input.rfind(L'\\') + 1) + argv[3];
        std::ofstream((output + L"_new.qmx").c_str()) << "QMX 2\n";
        std::ofstream((output + L"_new.hsf").c_str()) << "HSF\n";
    }
    return 0;
}
