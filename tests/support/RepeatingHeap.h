#pragma once

#include "support/HeapPatch.h"

namespace test
{

// While it lives, this thread's blocks of 256 MiB and more take little memory: but for their first and last part, the same
// 12 MiB come again and again. Such a block holds what it seems to hold if that repeats itself every 2, 3 or 4 bytes up to its end.
// Blocks must not outlive it. One at a time.
class RepeatingHeap
{
public:
    RepeatingHeap();
    RepeatingHeap(const RepeatingHeap&) = delete;
    RepeatingHeap& operator=(const RepeatingHeap&) = delete;
    ~RepeatingHeap();

private:
    HeapPatch m_patch;
};

} // namespace test
