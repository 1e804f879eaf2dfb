#pragma once

#include "text/Processor.h"

#include <gtest/gtest.h>

#include <string>

namespace test
{

// Names the tests of a way to do something by the registers that it needs.
template <class Way>
std::string WayName(const testing::TestParamInfo<Way>& way)
{
    constexpr const char* kNames[] = {"Sse2", "Avx2", "Avx512", "Avx512Vbmi2"};
    return kNames[static_cast<int>(way.param.needed)];
}

} // namespace test
