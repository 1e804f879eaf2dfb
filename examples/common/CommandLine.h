#pragma once

#include <string>
#include <vector>

enum ExitCode { kDone, kFailed, kWrongArguments };

// What the program was started with, without its own name.
std::vector<std::wstring> Arguments();

// Writes a message to the error stream.
void Complain(const std::wstring& program, const std::wstring& message);
