#pragma once

// What is asked of the processor before functions use registers that not every one has.

// Every processor with AVX2 counts bits, too. clang-cl wants to be told, as clang does; Visual Studio's compiler does not.
#if defined(_MSC_VER) && !defined(__clang__)
#define KELPKIT_AVX2
#define KELPKIT_AVX512
#else
#define KELPKIT_AVX2 __attribute__((target("avx2,popcnt")))
#define KELPKIT_AVX512 __attribute__((target("avx512bw")))
#endif

namespace KELPKIT::processor
{

// Whether processor and system know AVX2: 256-bit registers for integers.
bool HasAvx2();

// Whether they know AVX-512 with BW: 512-bit registers for bytes, any of which may be left out.
bool HasAvx512();

} // namespace KELPKIT::processor
