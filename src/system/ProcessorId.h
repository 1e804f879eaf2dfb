#pragma once

#include "system/Cpuid.h"

#include <string>

namespace KELPKIT
{

// What the processor says of itself.
struct ProcessorLeaves {
    CpuidRegisters leaf0;
    CpuidRegisters leaf1;
    CpuidRegisters leaf3;
};

// Vendor, signature, features and serial number, such as "GenuineIntel-000306C3-BFEBFBFF-0000000000000000".
std::string ProcessorText(const ProcessorLeaves& leaves);

// That of the processor that runs this, or an empty text where it faults.
std::string ReadProcessorId();

} // namespace KELPKIT
