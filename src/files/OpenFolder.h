#pragma once

#include "Handle.h"

#include <string>

namespace KELPKIT
{

// A folder held open, which others may use, rename and delete meanwhile.
class OpenFolder
{
public:
    explicit OpenFolder(const std::wstring& path);

    // Whether both are one folder, by whatever paths they were opened. False also where nothing tells.
    bool IsSameAs(const OpenFolder& other) const;

private:
    Handle m_folder;
};

} // namespace KELPKIT
