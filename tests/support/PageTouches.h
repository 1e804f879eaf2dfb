#pragma once

#include "support/HeapPatch.h"

#include <cstddef>

namespace test
{

// Measures work on memory without a clock. While it lives, the pages of this thread's large blocks are closed except for
// the last few that were touched, and each touch of a closed page counts. Work in proportion to the blocks touches each
// page a few times; work in proportion to their square touches it again and again. Blocks must not outlive it. One at a
// time.
class PageTouches
{
public:
    PageTouches();
    PageTouches(const PageTouches&) = delete;
    PageTouches& operator=(const PageTouches&) = delete;
    ~PageTouches();

    // Since it lives; never more than kMost: from there on no page is closed, so that the work comes to its end.
    static std::size_t Count();

    static constexpr std::size_t kMost = 50000;

private:
    void* m_handler;
    HeapPatch m_patch;
};

} // namespace test
