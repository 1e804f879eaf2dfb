#include "system/Cpuid.h"

#include <intrin.h>

namespace KELPKIT
{

CpuidRegisters Cpuid(int leaf)
{
    int registers[4] = {};
    ::__cpuid(registers, leaf);
    return {static_cast<std::uint32_t>(registers[0]), static_cast<std::uint32_t>(registers[1]),
            static_cast<std::uint32_t>(registers[2]), static_cast<std::uint32_t>(registers[3])};
}

} // namespace KELPKIT
