#include "system/ProcessorId.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

using namespace KELPKIT;

namespace
{

std::uint32_t Word(const char* characters)
{
    std::uint32_t word = 0;
    std::memcpy(&word, characters, sizeof word);
    return word;
}

ProcessorLeaves Leaves()
{
    ProcessorLeaves leaves = {};
    leaves.leaf0 = {0x16, Word("Genu"), Word("ntel"), Word("ineI")};
    leaves.leaf1 = {0x000306C3, 0x11111111, 0x22222222, 0xBFEBFBFF};
    return leaves;
}

} // namespace

TEST(ProcessorText, HasVendorSignatureFeaturesAndSerialNumber)
{
    EXPECT_EQ(ProcessorText(Leaves()), "GenuineIntel-000306C3-BFEBFBFF-0000000000000000");
}

TEST(ProcessorText, HasTheSerialNumberFromEdxThenEcx)
{
    ProcessorLeaves leaves = Leaves();
    leaves.leaf3 = {0xAAAAAAAA, 0xBBBBBBBB, 0x89ABCDEF, 0x01234567};
    EXPECT_EQ(ProcessorText(leaves), "GenuineIntel-000306C3-BFEBFBFF-0123456789ABCDEF");
}

TEST(ProcessorText, HoldsTheLargestValues)
{
    ProcessorLeaves leaves = Leaves();
    leaves.leaf1.eax = leaves.leaf1.edx = leaves.leaf3.edx = leaves.leaf3.ecx = 0xFFFFFFFF;
    EXPECT_EQ(ProcessorText(leaves), "GenuineIntel-FFFFFFFF-FFFFFFFF-FFFFFFFFFFFFFFFF");
}

TEST(ProcessorText, EndsTheVendorAtItsFirstZero)
{
    ProcessorLeaves leaves = Leaves();
    leaves.leaf0.edx = 0;
    EXPECT_EQ(ProcessorText(leaves), "Genu-000306C3-BFEBFBFF-0000000000000000");
    leaves.leaf0.ebx = 0;
    EXPECT_EQ(ProcessorText(leaves), "-000306C3-BFEBFBFF-0000000000000000");
}
