#pragma once

#include <cstddef>

namespace test
{

// How many handles this process has open.
std::size_t HandleCount();

} // namespace test
