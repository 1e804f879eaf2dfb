#pragma once

#include <string>

namespace xmlparser
{

// The name beside the file under which the calling thread writes its next content. No other live thread has it.
std::wstring TemporaryName(const std::wstring& path);

// Deletes what writers of the file left under such names, of processes that are gone.
void RemoveLeftovers(const std::wstring& path);

} // namespace xmlparser
