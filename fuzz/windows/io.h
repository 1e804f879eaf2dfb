#pragma once

// What log4cplus's output to the console needs, which nothing calls.

#include <cstdio>

constexpr int _O_TEXT = 0x4000;
constexpr int _O_WTEXT = 0x10000;
constexpr int _O_U16TEXT = 0x20000;
constexpr int _O_U8TEXT = 0x40000;

inline int _fileno(std::FILE* /*file*/)
{
    return -1;
}

inline int _setmode(int /*file*/, int /*mode*/)
{
    return -1;
}
