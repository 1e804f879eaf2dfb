#include "support/RepeatingHeap.h"

#include <windows.h>

#include <cstddef>

namespace test
{
namespace
{

constexpr std::size_t kLarge = 256 << 20;
constexpr DWORD kLap = 12 << 20; // what all alignments and the repetitions divide
constexpr std::size_t kMostBlocks = 8;

struct Block {
    char* start;
    std::size_t laps;
};

Heap g_original = {};
DWORD g_thread = 0;
Block g_blocks[kMostBlocks] = {};

HANDLE NewSection()
{
    return ::CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, kLap, nullptr);
}

bool Map(HANDLE section, char* place)
{
    return ::MapViewOfFileEx(section, FILE_MAP_ALL_ACCESS, 0, 0, kLap, place) == place;
}

// Of the memory of three sections; their views keep them.
bool MapLaps(const Block& block)
{
    const HANDLE first = NewSection();
    const HANDLE repeated = NewSection();
    const HANDLE last = NewSection();
    bool done = Map(first, block.start);
    for (std::size_t lap = 1; lap + 1 < block.laps; ++lap)
        done = done && Map(repeated, block.start + lap * kLap);
    done = done && Map(last, block.start + (block.laps - 1) * kLap);
    ::CloseHandle(first);
    ::CloseHandle(repeated);
    ::CloseHandle(last);
    return done;
}

void* Malloc(std::size_t size)
{
    if (size < kLarge || ::GetCurrentThreadId() != g_thread)
        return g_original.malloc(size);
    for (Block& block : g_blocks) {
        if (block.start != nullptr)
            continue;
        block.laps = (size + kLap - 1) / kLap;
        // Where there is room for it.
        block.start = static_cast<char*>(::VirtualAlloc(nullptr, block.laps * kLap, MEM_RESERVE, PAGE_NOACCESS));
        ::VirtualFree(block.start, 0, MEM_RELEASE);
        return MapLaps(block) ? block.start : nullptr;
    }
    return nullptr;
}

void* Calloc(std::size_t count, std::size_t size)
{
    return g_original.calloc(count, size);
}

void* Realloc(void* block, std::size_t size)
{
    return g_original.realloc(block, size);
}

void Free(void* memory)
{
    for (Block& block : g_blocks) {
        if (memory == nullptr || block.start != memory)
            continue;
        for (std::size_t lap = 0; lap < block.laps; ++lap)
            ::UnmapViewOfFile(block.start + lap * kLap);
        block.start = nullptr;
        return;
    }
    g_original.free(memory);
}

} // namespace

RepeatingHeap::RepeatingHeap() : m_patch({Malloc, Calloc, Realloc, Free}, g_original)
{
    g_thread = ::GetCurrentThreadId();
}

RepeatingHeap::~RepeatingHeap()
{
    g_thread = 0;
}

} // namespace test
