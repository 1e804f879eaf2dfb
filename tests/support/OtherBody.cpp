#define KELPKIT_USE_MANY_REGISTERS
#include "support/SharedBody.h"

unsigned long long test::OtherSum(unsigned long long a, unsigned long long b)
{
    return SharedSum(a, b);
}
