#include "support/HeapPatch.h"

#include <stdexcept>

namespace test
{

HeapPatch::HeapPatch(const Heap& doubles, Heap& original)
{
    // From the first patch on, nothing may be allocated before its original is known.
    constexpr std::size_t kMost = 32;
    m_patches.reserve(kMost);
    Patch("malloc", doubles.malloc, original.malloc);
    Patch("calloc", doubles.calloc, original.calloc);
    Patch("realloc", doubles.realloc, original.realloc);
    Patch("free", doubles.free, original.free);
}

template <class Function>
void HeapPatch::Patch(const char* name, Function* replacement, Function*& original)
{
    // The last one is this program. Visual Studio's runtime is left out: each module has its own operator new, and under
    // Wine the runtime is written in C, which no exception can pass.
#if defined(_MSC_VER)
    constexpr const wchar_t* kModules[] = {L"Kelpkit.dll", L"XMLParser.dll", L"log4cplusU.dll", nullptr};
#else
    constexpr const wchar_t* kModules[] = {L"Kelpkit.dll", L"XMLParser.dll", L"liblog4cplusU.dll", L"libstdc++-6.dll",
                                           nullptr};
#endif
    for (const wchar_t* const module : kModules) {
        try {
            m_patches.push_back(std::make_unique<ImportPatch>(module, name, replacement));
            original = m_patches.back()->Original<Function>();
        } catch (const std::runtime_error&) {
            // This one does without.
            continue;
        }
    }
}

} // namespace test
