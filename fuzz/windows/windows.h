#pragma once

#include <windef.h>

constexpr int MAX_PATH = 260;

struct CPINFO {
    UINT MaxCharSize;
};

struct SYSTEMTIME {
    WORD wYear;
    WORD wMonth;
    WORD wDayOfWeek;
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
};

constexpr UINT CP_ACP = 0;
constexpr UINT CP_UTF8 = 65001;
constexpr DWORD MB_ERR_INVALID_CHARS = 0x08;
constexpr DWORD WC_ERR_INVALID_CHARS = 0x80;
constexpr DWORD WC_NO_BEST_FIT_CHARS = 0x400;

constexpr bool IS_HIGH_SURROGATE(wchar_t unit)
{
    return unit >= 0xD800 && unit < 0xDC00;
}

// Windows' conversions, one character at a time, for UTF-8, ISO-8859-1 (28591), and a double-byte code page that is
// made like GBK (936, also the ANSI one): a euro sign in one byte, private characters, and pairs that are not all defined.
int MultiByteToWideChar(UINT codePage, DWORD flags, const char* bytes, int size, wchar_t* units, int room);
int WideCharToMultiByte(UINT codePage, DWORD flags, const wchar_t* units, int size, char* bytes, int room,
                        const char* defaultCharacter, BOOL* replaced);
BOOL IsValidCodePage(UINT codePage);
BOOL GetCPInfo(UINT codePage, CPINFO* information);
