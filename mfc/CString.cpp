#include "CString.h"

#include <windows.h>

#include <cstring>

namespace
{

std::wstring Printed(const wchar_t* format, std::va_list arguments)
{
    // Microsoft's own functions, in which %s is wide whatever the standard's have been made to mean.
    std::va_list again = nullptr;
    va_copy(again, arguments);
    const int length = format == nullptr ? 0 : ::_vscwprintf(format, again);
    va_end(again);
    std::wstring text(static_cast<std::size_t>((std::max)(length, 0)), L'\0');
    if (!text.empty())
        ::_vsnwprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

} // namespace

CString::CString(const char* text) : CString(text, text == nullptr ? 0 : static_cast<int>(std::strlen(text))) {}

CString::CString(const char* text, int length)
{
    if (text == nullptr || length <= 0)
        return;
    m_text.resize(Count(::MultiByteToWideChar(CP_THREAD_ACP, 0, text, length, nullptr, 0)));
    ::MultiByteToWideChar(CP_THREAD_ACP, 0, text, length, m_text.data(), GetLength());
}

void CString::FormatV(const wchar_t* format, std::va_list arguments)
{
    m_text = Printed(format, arguments);
}

CString CString::Formatted(const wchar_t* format, ...) // NOLINT(cert-dcl50-cpp): as the runtime's
{
    std::va_list arguments = nullptr;
    va_start(arguments, format);
    CString text;
    text.FormatV(format, arguments);
    va_end(arguments);
    return text;
}
