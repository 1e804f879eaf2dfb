#pragma once

namespace test
{

// The sum, of which the linker keeps one file's copy for all. The copies give the same but use different registers, as
// copies do that are compiled with different options.
template <class T>
#if defined(__GNUC__)
__attribute__((noinline))
#else
__declspec(noinline)
#endif
T SharedSum(T a, T b)
{
#ifdef KELPKIT_USE_MANY_REGISTERS
    T values[] = {a * 3, a * 5 + b, (a * 7) ^ b, a * 11 + b, a * 13, b * 17, a * 19, b * 23};
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 8; ++j)
            values[j] += values[(j + 1) & 7] * values[(j + 3) & 7];
    }
    volatile T sink = values[0];
    static_cast<void>(sink);
#endif
    return a + b;
}

unsigned long long OtherSum(unsigned long long a, unsigned long long b);

} // namespace test
