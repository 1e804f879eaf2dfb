#include "text/Processor.h"

#if defined(_MSC_VER)
#include <immintrin.h>
#include <intrin.h>
#endif

namespace KELPKIT::processor
{

#if defined(_MSC_VER)
namespace
{

// Whether the system saves the registers of this mask of XCR0, and the processor has these features of leaf 7.
bool HasRegisters(unsigned long long registers, unsigned features)
{
    int answer[4];
    __cpuid(answer, 0);
    if (answer[0] < 7) // a leaf that a processor does not have gives what another one has
        return false;
    __cpuid(answer, 1);
    const bool mayAsk = (answer[2] & 1 << 27) != 0;
    __cpuidex(answer, 7, 0);
    return mayAsk && (_xgetbv(0) & registers) == registers && (static_cast<unsigned>(answer[1]) & features) == features;
}

} // namespace
#endif

bool HasAvx2()
{
#if defined(_MSC_VER)
    return HasRegisters(0x06, 1U << 5);
#else
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") != 0;
#endif
}

bool HasAvx512()
{
#if defined(_MSC_VER)
    return HasRegisters(0xE6, 1U << 16 | 1U << 30);
#else
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx512bw") != 0;
#endif
}

} // namespace KELPKIT::processor
