#include "support/SharedBody.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

// A caller must not rely on the registers that its own copy of an inline function leaves alone.
TEST(SharedBody, KeepsTheRegistersOfItsCaller)
{
    std::vector<unsigned long long> values(100, 1);
    unsigned long long sum = 0;
    for (std::size_t i = 0; i < values.size(); ++i)
        sum = test::SharedSum(values[i], sum) * 3 + i;
    unsigned long long expected = 0;
    for (std::size_t i = 0; i < values.size(); ++i)
        expected = (values[i] + expected) * 3 + i;
    EXPECT_EQ(sum, expected);
    EXPECT_EQ(test::OtherSum(2, 3), 5U);
}
