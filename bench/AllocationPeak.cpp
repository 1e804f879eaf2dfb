#include "AllocationPeak.h"

#include "support/ImportPatch.h"

#include <algorithm>
#include <cstdlib>
#include <malloc.h>
#include <memory>
#include <stdexcept>
#include <vector>

namespace bench
{
namespace
{

// Not this program's imports, which are patched as well.
void* (*g_malloc)(std::size_t) = nullptr;
void* (*g_calloc)(std::size_t, std::size_t) = nullptr;
void* (*g_realloc)(void*, std::size_t) = nullptr;
void (*g_free)(void*) = nullptr;

std::ptrdiff_t g_held = 0;
std::ptrdiff_t g_peak = 0;

std::ptrdiff_t SizeOf(void* block)
{
    return block == nullptr ? 0 : static_cast<std::ptrdiff_t>(::_msize(block));
}

void* Counted(void* block)
{
    g_held += SizeOf(block);
    g_peak = std::max(g_peak, g_held);
    return block;
}

void* CountedMalloc(std::size_t size)
{
    return Counted(g_malloc(size));
}

void* CountedCalloc(std::size_t count, std::size_t size)
{
    return Counted(g_calloc(count, size));
}

void* CountedRealloc(void* block, std::size_t size)
{
    const std::ptrdiff_t before = SizeOf(block);
    void* const moved = g_realloc(block, size);
    if (moved != nullptr || size == 0)
        g_held -= before;
    return Counted(moved);
}

void CountedFree(void* block)
{
    g_held -= SizeOf(block);
    g_free(block);
}

using Patches = std::vector<std::unique_ptr<test::ImportPatch>>;

// Patches the function in every module that imports it.
template <class Function>
void Patch(Patches& patches, const char* name, Function* counted, Function*& original)
{
    // The last one is this program.
    constexpr const wchar_t* kModules[] = {L"Kelpkit.dll", L"XMLParser.dll", L"libstdc++-6.dll", nullptr};
    for (const wchar_t* const module : kModules) {
        try {
            patches.push_back(std::make_unique<test::ImportPatch>(module, name, counted));
            original = patches.back()->Original<Function>();
        } catch (const std::runtime_error&) {
            // This one does without.
            continue;
        }
    }
}

} // namespace

std::size_t AllocationPeak(const std::function<void()>& work)
{
    Patches patches;
    Patch(patches, "malloc", CountedMalloc, g_malloc);
    Patch(patches, "calloc", CountedCalloc, g_calloc);
    Patch(patches, "realloc", CountedRealloc, g_realloc);
    Patch(patches, "free", CountedFree, g_free);
    g_held = 0;
    g_peak = 0;
    work();
    return static_cast<std::size_t>(g_peak);
}

} // namespace bench
