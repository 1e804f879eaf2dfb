// Runs a program's benchmarks, with the options of Google Benchmark.

#include "Bench.h"

int main(int argc, char** argv) // NOLINT(bugprone-exception-escape): it ends the program, which is right
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    bench::Register();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
