#include "system/ParentReferences.h"

#include <cstddef>

namespace KELPKIT
{

std::wstring CollapseParentReferences(std::wstring path)
{
    while (true) {
        const std::size_t reference = path.find(L"\\..");
        // By contract the search for the name's backslash starts three characters before the reference: behind a
        // name of one character it passes over that backslash, and two names go or none.
        if (reference == std::wstring::npos || reference < 3)
            return path;
        const std::size_t backslash = path.rfind(L'\\', reference - 3);
        if (backslash == std::wstring::npos)
            return path;
        path.erase(backslash, reference + 3 - backslash);
    }
}

} // namespace KELPKIT
