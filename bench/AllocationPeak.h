#pragma once

#include <cstddef>
#include <functional>

namespace bench
{

// The most memory in bytes that the C heap holds for a piece of work at once, beyond what it held before: that of
// Kelpkit, the XML parser, this program, and the C++ runtime's on their behalf.
std::size_t AllocationPeak(const std::function<void()>& work);

} // namespace bench
