#include "system/ProcessorId.h"

#include "system/FaultGuard.h"

#include <cstdio>
#include <cstring>

namespace KELPKIT
{
namespace
{

void ReadLeaves(void* result)
{
    auto* const leaves = static_cast<ProcessorLeaves*>(result);
    leaves->leaf0 = Cpuid(0);
    leaves->leaf1 = Cpuid(1);
    leaves->leaf3 = Cpuid(3);
}

} // namespace

std::string ProcessorText(const ProcessorLeaves& leaves)
{
    char vendor[13] = {};
    std::memcpy(vendor, &leaves.leaf0.ebx, 4);
    std::memcpy(vendor + 4, &leaves.leaf0.edx, 4);
    std::memcpy(vendor + 8, &leaves.leaf0.ecx, 4);
    char text[64];
    std::snprintf(text, sizeof text, "%s-%08X-%08X-%08X%08X", vendor, leaves.leaf1.eax, leaves.leaf1.edx,
                  leaves.leaf3.edx, leaves.leaf3.ecx);
    return text;
}

std::string ReadProcessorId()
{
    ProcessorLeaves leaves = {};
    return RunGuarded(ReadLeaves, &leaves) ? ProcessorText(leaves) : std::string();
}

} // namespace KELPKIT
