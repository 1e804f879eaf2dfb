#include "support/Fuzz.h"
#include "system/ParentReferences.h"

#include <cstddef>

namespace
{

// The first "\..", or -1.
std::ptrdiff_t FirstReference(const std::wstring& path)
{
    for (std::size_t i = 0; i + 2 < path.size(); ++i) {
        if (path[i] == L'\\' && path[i + 1] == L'.' && path[i + 2] == L'.')
            return static_cast<std::ptrdiff_t>(i);
    }
    return -1;
}

// As GetSysRoot describes it, one reference at a time.
std::wstring ModelCollapsed(const std::wstring& path)
{
    const std::ptrdiff_t reference = FirstReference(path);
    std::ptrdiff_t backslash = reference < 0 ? -1 : reference - 3;
    while (backslash >= 0 && path[static_cast<std::size_t>(backslash)] != L'\\')
        --backslash;
    if (backslash < 0)
        return path;
    return ModelCollapsed(path.substr(0, static_cast<std::size_t>(backslash)) +
                          path.substr(static_cast<std::size_t>(reference) + 3));
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::wstring path = fuzz::Wide({data, data + size});
    fuzz::Expect(KELPKIT::CollapseParentReferences(path) == ModelCollapsed(path), "folded as the model does");
    return 0;
}
