#pragma once

// What is asked of the processor before functions use registers that not every one has.

#include <cstddef>

// Every processor with AVX2 counts bits, too. clang-cl wants to be told, as clang does; Visual Studio's compiler does not.
#if defined(_MSC_VER) && !defined(__clang__)
#define KELPKIT_AVX2
#define KELPKIT_AVX512
#define KELPKIT_AVX512_VBMI2
#else
#define KELPKIT_AVX2 __attribute__((target("avx2,popcnt")))
#define KELPKIT_AVX512 __attribute__((target("avx512bw")))
#define KELPKIT_AVX512_VBMI2 __attribute__((target("avx512bw,avx512vl,avx512vbmi,avx512vbmi2,bmi2,popcnt")))
#endif

namespace KELPKIT::processor
{

// What functions need of processor and system, the least first; each has what stands before it, too.
enum class Registers {
    kSse2,        // belongs to every 64-bit x86 processor
    kAvx2,        // 256-bit registers for integers
    kAvx512,      // 512-bit registers for bytes, any of which may be left out (AVX-512 F and BW)
    kAvx512Vbmi2, // these moved together, too (VL, VBMI, and VBMI2; BMI2 beside it)
};

// The most that is there.
Registers Best();

// The last of some ways to do the same, in the order of what they need, for which all is there.
template <class Way, std::size_t count>
const Way& Fastest(const Way (&ways)[count])
{
    const Registers best = Best();
    const Way* fastest = ways;
    for (const Way& way : ways) {
        if (way.needed <= best)
            fastest = &way;
    }
    return *fastest;
}

} // namespace KELPKIT::processor
