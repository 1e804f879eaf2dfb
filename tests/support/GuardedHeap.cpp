#include "support/GuardedHeap.h"

#include "support/HeapPatch.h"
#include "support/LastError.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <stdexcept>

namespace test
{
namespace
{

constexpr std::size_t kPage = 4096;
constexpr std::size_t kRoom = 4 * kPage; // of a block, with what is watched around it
constexpr std::size_t kSlot = kRoom + kPage;
constexpr std::size_t kSlots = 1024;
constexpr std::size_t kWatched = 64; // before a block
constexpr unsigned char kUntouched = 0xFD;
constexpr unsigned char kNew = 0xCD;
constexpr unsigned char kFreed = 0xDD;

struct Block {
    std::size_t size;
    std::size_t slack;
};

Heap g_original = {};
DWORD g_thread = 0; // none where it is 0
std::size_t g_slack = 0;

// Slots in a row, each with its guard behind it, and a stack of those that are free.
class Slots
{
public:
    Slots()
    {
        m_start = static_cast<unsigned char*>(
            ::VirtualAlloc(nullptr, kSlots * kSlot, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE));
        if (m_start == nullptr)
            throw std::runtime_error("no memory can be guarded: " + LastErrorText());
        for (std::size_t slot = 0; slot < kSlots; ++slot) {
            DWORD before = 0;
            if (!::VirtualProtect(End(slot), kPage, PAGE_NOACCESS, &before))
                throw std::runtime_error("no memory can be guarded: " + LastErrorText());
            m_free[m_freeCount++] = slot;
        }
    }

    // Null where there is no slot for it.
    void* Take(Block block)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (block.size > kRoom - kWatched - block.slack || m_freeCount == 0)
            return nullptr;
        const std::size_t slot = m_free[--m_freeCount];
        m_blocks[slot] = block;
        unsigned char* const at = At(slot);
        std::memset(at - kWatched, kUntouched, kWatched);
        std::memset(at, kNew, block.size);
        std::memset(at + block.size, kUntouched, block.slack);
        ++guarded;
        return at;
    }

    bool Holds(const void* block) const
    {
        return reinterpret_cast<std::uintptr_t>(block) - reinterpret_cast<std::uintptr_t>(m_start) < kSlots * kSlot;
    }

    std::size_t SizeOf(const void* block) const { return m_blocks[SlotOf(block)].size; }

    void GiveBack(const void* block)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const std::size_t slot = SlotOf(block);
        unsigned char* const at = At(slot);
        const Block& held = m_blocks[slot];
        if (at != block || !IsUntouched(at - kWatched, kWatched) || !IsUntouched(at + held.size, held.slack))
            ++damaged;
        std::memset(at, kFreed, held.size);
        m_free[m_freeCount++] = slot;
    }

    std::size_t guarded = 0;
    std::size_t damaged = 0;

private:
    static bool IsUntouched(const unsigned char* bytes, std::size_t size)
    {
        return std::all_of(bytes, bytes + size, [](unsigned char byte) { return byte == kUntouched; });
    }

    unsigned char* End(std::size_t slot) const { return m_start + slot * kSlot + kRoom; }
    unsigned char* At(std::size_t slot) const { return End(slot) - m_blocks[slot].slack - m_blocks[slot].size; }
    std::size_t SlotOf(const void* block) const
    {
        return static_cast<std::size_t>(static_cast<const unsigned char*>(block) - m_start) / kSlot;
    }

    unsigned char* m_start = nullptr;
    std::size_t m_free[kSlots] = {};
    std::size_t m_freeCount = 0;
    Block m_blocks[kSlots] = {};
    std::mutex m_mutex;
};

Slots* g_slots = nullptr;

void* Malloc(std::size_t size)
{
    void* const block = ::GetCurrentThreadId() == g_thread ? g_slots->Take({size, g_slack}) : nullptr;
    return block == nullptr ? g_original.malloc(size) : block;
}

// These two are for those who want zeros, and for blocks that grow.
void* Calloc(std::size_t count, std::size_t size)
{
    void* const block = Malloc(count * size);
    return block == nullptr ? nullptr : std::memset(block, 0, count * size);
}

void Free(void* block)
{
    if (g_slots->Holds(block))
        g_slots->GiveBack(block);
    else
        g_original.free(block);
}

void* Realloc(void* block, std::size_t size)
{
    if (!g_slots->Holds(block))
        return g_original.realloc(block, size);
    void* const moved = Malloc(size);
    if (moved != nullptr) {
        std::memcpy(moved, block, std::min(size, g_slots->SizeOf(block)));
        Free(block);
    }
    return moved;
}

// For good, as blocks outlive the object and are freed at the process's very end.
void Install()
{
    static const bool s_isInstalled = [] {
        g_slots = new Slots;
        new HeapPatch({Malloc, Calloc, Realloc, Free}, g_original);
        return true;
    }();
    static_cast<void>(s_isInstalled);
}

} // namespace

GuardedHeap::GuardedHeap(std::size_t slack)
{
    Install();
    g_slack = slack;
    g_thread = ::GetCurrentThreadId();
}

GuardedHeap::~GuardedHeap()
{
    g_thread = 0;
}

std::size_t GuardedHeap::Guarded()
{
    return g_slots->guarded;
}

std::size_t GuardedHeap::Damaged()
{
    return g_slots->damaged;
}

} // namespace test
