#pragma once

#include "support/ImportPatch.h"

#include <string>
#include <vector>

namespace test
{

// While it lives, Kelpkit.dll deletes nothing outside this process's temporary folders: such a call fails with
// "access denied" and is noted. Under Wine the whole machine lies on drive Z:.
class DeletionGuard
{
public:
    DeletionGuard();

    // The paths refused so far, of all guards, as they were given.
    static const std::vector<std::wstring>& Refused();

private:
    ImportPatch m_deleteFile;
    ImportPatch m_removeDirectory;
};

} // namespace test
