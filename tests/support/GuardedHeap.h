#pragma once

#include <cstddef>

namespace test
{

// While it lives, what this thread allocates ends before a page that nobody may touch, `slack` bytes away: whoever reads
// or writes too far crashes. Blocks may outlive it. One at a time.
class GuardedHeap
{
public:
    // Slack gives the blocks other alignments than their sizes do.
    explicit GuardedHeap(std::size_t slack = 0);
    GuardedHeap(const GuardedHeap&) = delete;
    GuardedHeap& operator=(const GuardedHeap&) = delete;
    ~GuardedHeap();

    // How many of the blocks were guarded so far; the largest are not.
    static std::size_t Guarded();

    // How many of the blocks that were freed had been written before or behind.
    static std::size_t Damaged();
};

} // namespace test
