#include "TextBench.h"

#include "Bench.h"

void bench::Register()
{
    RegisterEncoding();
    RegisterStrings();
    RegisterBase64();
    RegisterMd5();
    RegisterVersionCompare();
}
