#pragma once

#include "WindowsApi.h"

#include <cstddef>

namespace KELPKIT::crash
{

// The path of a dump, which is cut where it gets too long. Built after the crash, so nothing here allocates.
class DumpPath
{
public:
    DumpPath(const wchar_t* folder, const SYSTEMTIME& now, const wchar_t* program);

    const wchar_t* Text() const { return m_text; }

private:
    void Append(wchar_t c);
    void Append(const wchar_t* text);
    // Of at least so many digits.
    void AppendNumber(unsigned number, int digits);

    wchar_t m_text[MAX_PATH] = {};
    std::size_t m_length = 0;
};

// Copies the program's name behind the last backslash of its path, of fewer than MAX_PATH characters; nothing where
// there is none. The name must be all zeros. By contract as many bytes are copied as the path has characters, which cuts
// a name that is longer than half the path, even in the middle of a character.
void CopyProgramName(const wchar_t* path, wchar_t (&name)[MAX_PATH]);

} // namespace KELPKIT::crash
