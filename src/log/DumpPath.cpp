#include "log/DumpPath.h"

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <initializer_list>

namespace KELPKIT::crash
{

DumpPath::DumpPath(const wchar_t* folder, const SYSTEMTIME& now, const wchar_t* program)
{
    Append(folder);
    AppendNumber(now.wYear, 4);
    for (const WORD field : {now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond})
        AppendNumber(field, 2);
    Append(L'_');
    Append(program);
    Append(L".dmp");
}

void DumpPath::Append(wchar_t c)
{
    if (m_length < MAX_PATH - 1)
        m_text[m_length++] = c;
}

void DumpPath::Append(const wchar_t* text)
{
    for (; *text != L'\0'; ++text)
        Append(*text);
}

void DumpPath::AppendNumber(unsigned number, int digits)
{
    if (number > 9 || digits > 1)
        AppendNumber(number / 10, digits - 1);
    Append(static_cast<wchar_t>(L'0' + number % 10));
}

void CopyProgramName(const wchar_t* path, wchar_t (&name)[MAX_PATH])
{
    const wchar_t* const backslash = std::wcsrchr(path, L'\\');
    if (backslash == nullptr)
        return;
    const std::size_t nameBytes = std::wcslen(backslash + 1) * sizeof(wchar_t);
    std::memcpy(name, backslash + 1, std::min(nameBytes, std::wcslen(path)));
}

} // namespace KELPKIT::crash
