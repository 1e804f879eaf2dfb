#pragma once

// Included before log4cplus's sources, so that the files that they read are in memory.

#include <windows.h>

#include <fstream>
#include <sstream>

// NOLINTNEXTLINE(cert-dcl58-cpp): log4cplus calls it std::ifstream
namespace std
{

class FileInMemory : public istringstream
{
public:
    FileInMemory(const wchar_t* name, ios_base::openmode mode);
};

} // namespace std

#define ifstream FileInMemory
