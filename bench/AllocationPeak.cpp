#include "AllocationPeak.h"

#include "support/HeapPatch.h"

#include <algorithm>
#include <malloc.h>

namespace bench
{
namespace
{

test::Heap g_heap = {};

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
    return Counted(g_heap.malloc(size));
}

void* CountedCalloc(std::size_t count, std::size_t size)
{
    return Counted(g_heap.calloc(count, size));
}

void* CountedRealloc(void* block, std::size_t size)
{
    const std::ptrdiff_t before = SizeOf(block);
    void* const moved = g_heap.realloc(block, size);
    if (moved != nullptr || size == 0)
        g_held -= before;
    return Counted(moved);
}

void CountedFree(void* block)
{
    g_held -= SizeOf(block);
    g_heap.free(block);
}

} // namespace

std::size_t AllocationPeak(const std::function<void()>& work)
{
    const test::HeapPatch patch({CountedMalloc, CountedCalloc, CountedRealloc, CountedFree}, g_heap);
    g_held = 0;
    g_peak = 0;
    work();
    return static_cast<std::size_t>(g_peak);
}

} // namespace bench
