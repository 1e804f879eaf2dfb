#pragma once

#include "support/ImportPatch.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace test
{

// The functions of the C heap.
struct Heap {
    void* (*malloc)(std::size_t);
    void* (*calloc)(std::size_t, std::size_t);
    void* (*realloc)(void*, std::size_t);
    void (*free)(void*);
};

// Puts doubles in the place of the C heap while it lives, for Kelpkit, the XML parser, log4cplus, this program, and the
// C++ runtime on their behalf.
class HeapPatch
{
public:
    // original receives what was called before, for the doubles to call: this program's own imports are patched, too.
    HeapPatch(const Heap& doubles, Heap& original);

private:
    template <class Function>
    void Patch(const char* name, Function* replacement, Function*& original);

    std::vector<std::unique_ptr<ImportPatch>> m_patches;
};

} // namespace test
