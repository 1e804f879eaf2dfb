#include "support/PageTouches.h"

#include "support/LastError.h"

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace test
{
namespace
{

constexpr std::size_t kPage = 4096;
constexpr std::size_t kRoom = 64 << 20;
constexpr std::size_t kLarge = 4 * kPage;
constexpr std::size_t kOpen = 8; // an instruction that copies needs four

Heap g_original = {};
DWORD g_thread = 0;
char* g_room = nullptr;
std::size_t g_used = 0;
std::size_t g_touches = 0;
char* g_open[kOpen] = {};

bool Holds(const void* at)
{
    return reinterpret_cast<std::uintptr_t>(at) - reinterpret_cast<std::uintptr_t>(g_room) < kRoom;
}

void Protect(char* start, std::size_t size, DWORD protection)
{
    DWORD before = 0;
    ::VirtualProtect(start, size, protection, &before);
}

void Open(char* page)
{
    if (++g_touches == PageTouches::kMost) {
        Protect(g_room, kRoom, PAGE_READWRITE);
        return;
    }
    char*& oldest = g_open[g_touches % kOpen];
    if (oldest != nullptr)
        Protect(oldest, kPage, PAGE_NOACCESS);
    Protect(page, kPage, PAGE_READWRITE);
    oldest = page;
}

LONG CALLBACK OpenWhatIsTouched(EXCEPTION_POINTERS* pointers)
{
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    if (record.ExceptionCode != EXCEPTION_ACCESS_VIOLATION)
        return EXCEPTION_CONTINUE_SEARCH;
    const std::uintptr_t address = record.ExceptionInformation[1];
    if (!Holds(reinterpret_cast<const void*>(address)))
        return EXCEPTION_CONTINUE_SEARCH;
    Open(reinterpret_cast<char*>(address & ~(kPage - 1)));
    return EXCEPTION_CONTINUE_EXECUTION;
}

// Each block has pages of its own, which nobody gets again.
void* Malloc(std::size_t size)
{
    if (size < kLarge || ::GetCurrentThreadId() != g_thread || size > kRoom - kPage - g_used)
        return g_original.malloc(size);
    char* const block = g_room + g_used;
    g_used += (size + kPage - 1) / kPage * kPage;
    return block;
}

void* Calloc(std::size_t count, std::size_t size)
{
    return g_original.calloc(count, size);
}

void Free(void* block)
{
    if (!Holds(block))
        g_original.free(block);
}

void* Realloc(void* block, std::size_t size)
{
    if (!Holds(block))
        return g_original.realloc(block, size);
    // How long the block was is not known; what follows it comes along.
    void* const moved = g_original.malloc(size);
    return moved == nullptr ? nullptr : std::memcpy(moved, block, size);
}

} // namespace

PageTouches::PageTouches()
    : m_handler(::AddVectoredExceptionHandler(1, OpenWhatIsTouched)),
      m_patch({Malloc, Calloc, Realloc, Free}, g_original)
{
    g_room = static_cast<char*>(::VirtualAlloc(nullptr, kRoom, MEM_COMMIT | MEM_RESERVE, PAGE_NOACCESS));
    if (g_room == nullptr)
        throw std::runtime_error("no memory can be watched: " + LastErrorText());
    g_used = 0;
    g_touches = 0;
    for (char*& page : g_open)
        page = nullptr;
    g_thread = ::GetCurrentThreadId();
}

PageTouches::~PageTouches()
{
    g_thread = 0;
    ::VirtualFree(g_room, 0, MEM_RELEASE);
    g_room = nullptr;
    ::RemoveVectoredExceptionHandler(m_handler);
}

std::size_t PageTouches::Count()
{
    return g_touches;
}

} // namespace test
