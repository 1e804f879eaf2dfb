#pragma once

#include <cstdint>

namespace KELPKIT
{

struct CpuidRegisters {
    std::uint32_t eax;
    std::uint32_t ebx;
    std::uint32_t ecx;
    std::uint32_t edx;
};

// What the processor's CPUID instruction answers for a leaf.
CpuidRegisters Cpuid(int leaf);

} // namespace KELPKIT
