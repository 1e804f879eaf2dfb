#pragma once

#include "support/HeapPatch.h"

#include <cstddef>

namespace test
{

// A C heap that runs out of memory where it is told to, while it lives. Counts and fails only what the thread that made
// it asks for.
class FailingHeap
{
public:
    // What is allocated on behalf of the spared module, if any, does not count as an allocation and does not fail.
    explicit FailingHeap(const wchar_t* spared = nullptr);

    // The number of blocks that were allocated and not freed since it lives.
    static std::ptrdiff_t Held();

    // From now on, the allocation of this number fails, counted from 1, and that alone.
    static void FailAt(std::size_t number);

    // No allocation fails any longer. Whether one did.
    static bool Stop();

private:
    HeapPatch m_patch;
};

} // namespace test
