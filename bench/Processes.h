#pragma once

#include <string>

namespace bench
{

// The path of a program in the folder of this one.
std::wstring ProgramPath(const std::wstring& name);

// Runs a program, hidden, to its end. Returns its exit code.
unsigned long Run(std::wstring commandLine);

} // namespace bench
