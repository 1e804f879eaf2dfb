#include "support/FailingHeap.h"

#include "support/Callers.h"

#include <windows.h>

#include <cstddef>

namespace test
{
namespace
{

Heap g_original = {};

// Not thread_local, which allocates.
DWORD g_thread = 0;
std::ptrdiff_t g_held = 0;
std::size_t g_left = 0; // to the allocation that fails; 0 where none does
bool g_hasFailed = false;
HMODULE g_spared = nullptr;

bool IsWatched()
{
    return ::GetCurrentThreadId() == g_thread;
}

bool Fails()
{
    if (!IsWatched() || g_left == 0 || IsCalledBy(g_spared) || --g_left != 0)
        return false;
    g_hasFailed = true;
    return true;
}

void* Counted(void* block)
{
    if (block != nullptr && IsWatched())
        ++g_held;
    return block;
}

void* Malloc(std::size_t size)
{
    return Fails() ? nullptr : Counted(g_original.malloc(size));
}

void* Calloc(std::size_t count, std::size_t size)
{
    return Fails() ? nullptr : Counted(g_original.calloc(count, size));
}

// Nobody shrinks a block to nothing.
void* Realloc(void* block, std::size_t size)
{
    if (Fails())
        return nullptr;
    void* const moved = g_original.realloc(block, size);
    return block == nullptr ? Counted(moved) : moved;
}

void Free(void* block)
{
    if (block != nullptr && IsWatched())
        --g_held;
    g_original.free(block);
}

} // namespace

FailingHeap::FailingHeap(const wchar_t* spared) : m_patch({Malloc, Calloc, Realloc, Free}, g_original)
{
    g_spared = spared == nullptr ? nullptr : ::GetModuleHandleW(spared);
    g_thread = ::GetCurrentThreadId();
    g_held = 0;
    Stop();
}

std::ptrdiff_t FailingHeap::Held()
{
    return g_held;
}

void FailingHeap::FailAt(std::size_t number)
{
    g_hasFailed = false;
    g_left = number;
}

bool FailingHeap::Stop()
{
    g_left = 0;
    return g_hasFailed;
}

} // namespace test
