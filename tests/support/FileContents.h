#pragma once

#include <string>

namespace test
{

// Writes a file of these bytes, replacing it; throws std::runtime_error on failure.
void WriteFileBytes(const std::wstring& path, const std::string& bytes);

// All bytes of a file; throws std::runtime_error on failure.
std::string ReadFileBytes(const std::wstring& path);

// Makes a file of this size, all zeros, that takes no room on the disk; throws std::runtime_error on failure.
void MakeSparseFile(const std::wstring& path, long long size);

} // namespace test
