#include "text/Processor.h"

#if defined(_MSC_VER)
#include <immintrin.h>
#include <intrin.h>
#endif

namespace KELPKIT::processor
{
namespace
{

#if defined(_MSC_VER)
// Whether the system saves the registers of this mask of XCR0, and the processor has these features of leaf 7.
bool HasRegisters(unsigned long long registers, unsigned inEbx, unsigned inEcx = 0)
{
    int answer[4];
    __cpuid(answer, 0);
    if (answer[0] < 7) // a leaf that a processor does not have gives what another one has
        return false;
    __cpuid(answer, 1);
    const bool mayAsk = (answer[2] & 1 << 27) != 0;
    __cpuidex(answer, 7, 0);
    return mayAsk && (_xgetbv(0) & registers) == registers && (static_cast<unsigned>(answer[1]) & inEbx) == inEbx &&
           (static_cast<unsigned>(answer[2]) & inEcx) == inEcx;
}

bool HasAvx2()
{
    return HasRegisters(0x06, 1U << 5);
}

bool HasAvx512()
{
    return HasRegisters(0xE6, 1U << 16 | 1U << 30);
}

bool HasVbmi2()
{
    return HasRegisters(0xE6, 1U << 8 | 1U << 31, 1U << 1 | 1U << 6);
}
#else
bool HasAvx2()
{
    return __builtin_cpu_supports("avx2") != 0;
}

bool HasAvx512()
{
    return __builtin_cpu_supports("avx512bw") != 0;
}

bool HasVbmi2()
{
    return __builtin_cpu_supports("bmi2") != 0 && __builtin_cpu_supports("avx512vl") != 0 &&
           __builtin_cpu_supports("avx512vbmi") != 0 && __builtin_cpu_supports("avx512vbmi2") != 0;
}
#endif

} // namespace

Registers Best()
{
#if !defined(_MSC_VER)
    __builtin_cpu_init();
#endif
    if (!HasAvx2())
        return Registers::kSse2;
    if (!HasAvx512())
        return Registers::kAvx2;
    return HasVbmi2() ? Registers::kAvx512Vbmi2 : Registers::kAvx512;
}

} // namespace KELPKIT::processor
