#pragma once

#include <cstddef>

namespace test
{

// How many handles this process has open; throws std::runtime_error where the system does not tell.
std::size_t HandleCount();

} // namespace test
