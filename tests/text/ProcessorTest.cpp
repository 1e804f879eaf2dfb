#include "text/Processor.h"

#include <gtest/gtest.h>

#if defined(_MSC_VER)
#include <immintrin.h>
#include <intrin.h>
#else
#include <cpuid.h>
#include <immintrin.h>
#endif

using namespace KELPKIT::processor;

namespace
{

struct Leaf {
    unsigned eax, ebx, ecx, edx;
};

Leaf Ask(unsigned number)
{
    Leaf leaf = {};
#if defined(_MSC_VER)
    int answer[4];
    __cpuidex(answer, static_cast<int>(number), 0);
    leaf = {static_cast<unsigned>(answer[0]), static_cast<unsigned>(answer[1]), static_cast<unsigned>(answer[2]),
            static_cast<unsigned>(answer[3])};
#else
    __cpuid_count(number, 0, leaf.eax, leaf.ebx, leaf.ecx, leaf.edx);
#endif
    return leaf;
}

// The registers that the system saves, as XCR0 has them.
#if !defined(_MSC_VER)
__attribute__((target("xsave")))
#endif
unsigned long long
Saved()
{
    return (Ask(1).ecx >> 27 & 1) != 0 ? static_cast<unsigned long long>(_xgetbv(0)) : 0;
}

bool Has(unsigned leaf, unsigned bit)
{
    return (leaf >> bit & 1) != 0;
}

Registers WhatTheProcessorSays()
{
    const Leaf seven = Ask(0).eax >= 7 ? Ask(7) : Leaf{};
    if ((Saved() & 0x06) != 0x06 || !Has(seven.ebx, 5))
        return Registers::kSse2;
    if ((Saved() & 0xE0) != 0xE0 || !Has(seven.ebx, 16) || !Has(seven.ebx, 30))
        return Registers::kAvx2;
    const bool hasVbmi2 = Has(seven.ebx, 8) && Has(seven.ebx, 31) && Has(seven.ecx, 1) && Has(seven.ecx, 6);
    return hasVbmi2 ? Registers::kAvx512Vbmi2 : Registers::kAvx512;
}

} // namespace

// Otherwise the tests of the ways that need more would be left out.
TEST(Processor, HasTheRegistersThatItNames)
{
    EXPECT_EQ(Best(), WhatTheProcessorSays());
}
