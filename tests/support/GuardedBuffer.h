#pragma once

#include "support/LastError.h"

#include <windows.h>

#include <cstddef>
#include <stdexcept>

namespace test
{

// Memory that ends where a page begins that nobody may touch: whoever reads or writes one byte too far crashes.
class GuardedBuffer
{
public:
    explicit GuardedBuffer(std::size_t capacity) : m_size((capacity + kPage - 1) / kPage * kPage)
    {
        m_start = static_cast<char*>(::VirtualAlloc(nullptr, m_size + kPage, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE));
        DWORD before = 0;
        if (m_start == nullptr || !::VirtualProtect(m_start + m_size, kPage, PAGE_NOACCESS, &before))
            throw std::runtime_error("no memory can be guarded: " + LastErrorText());
    }
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;
    ~GuardedBuffer() { ::VirtualFree(m_start, 0, MEM_RELEASE); }

    // The last `size` bytes before the guard; at most the capacity.
    char* Last(std::size_t size) const { return m_start + m_size - size; }

private:
    static constexpr std::size_t kPage = 4096;

    std::size_t m_size;
    char* m_start;
};

} // namespace test
