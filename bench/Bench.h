#pragma once

#include "AllocationPeak.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <deque>
#include <string>
#include <utility>

namespace bench
{

// Defined by each program: adds its comparisons and growths.
void Register();

// Keeps data for as long as the program runs, for work that refers to it.
template <class Type>
const Type& Keep(Type data)
{
    static std::deque<Type> kept;
    return kept.emplace_back(std::move(data));
}

// One operation at one size. Kelpkit and its peers do it with the same data, as benchmarks that are named
// "operation|size|who". Work is a callable that returns what it made, so that the compiler cannot leave it out.
class Comparison
{
public:
    Comparison(const std::string& operation, const std::string& size) : m_group(operation + '|' + size) {}

    template <class Work>
    Comparison& Kelpkit(Work work)
    {
        return Add("Kelpkit", work, 0);
    }

    // goal: the most that Kelpkit's time may be of this peer's; 0 where there is none.
    template <class Work>
    Comparison& Peer(const std::string& name, Work work, double goal = 0)
    {
        return Add(name, work, goal);
    }

    // For work that needs something done before each time, which is not timed.
    template <class Prepare, class Work>
    Comparison& KelpkitAfter(Prepare prepare, Work work)
    {
        return AddAfter("Kelpkit", prepare, work, 0);
    }

    template <class Prepare, class Work>
    Comparison& PeerAfter(Prepare prepare, const std::string& name, Work work, double goal = 0)
    {
        return AddAfter(name, prepare, work, goal);
    }

    // For work that returns the seconds that count.
    template <class Work>
    Comparison& KelpkitMeasured(Work work)
    {
        return AddMeasured("Kelpkit", work, 0);
    }

    template <class Work>
    Comparison& PeerMeasured(const std::string& name, Work work, double goal = 0)
    {
        return AddMeasured(name, work, goal);
    }

private:
    template <class Work>
    Comparison& Add(const std::string& who, Work work, double goal)
    {
        Run(who, goal, [work](benchmark::State& state) {
            for ([[maybe_unused]] auto round : state)
                benchmark::DoNotOptimize(work());
        })->UseRealTime();
        return *this;
    }

    template <class Prepare, class Work>
    Comparison& AddAfter(const std::string& who, Prepare prepare, Work work, double goal)
    {
        Run(who, goal, [prepare, work](benchmark::State& state) {
            for ([[maybe_unused]] auto round : state) {
                state.PauseTiming();
                prepare();
                state.ResumeTiming();
                benchmark::DoNotOptimize(work());
            }
        })->UseRealTime();
        return *this;
    }

    template <class Work>
    Comparison& AddMeasured(const std::string& who, Work work, double goal)
    {
        Run(who, goal, [work](benchmark::State& state) {
            for ([[maybe_unused]] auto round : state)
                state.SetIterationTime(work());
        })->UseManualTime();
        return *this;
    }

    template <class Loop>
    benchmark::internal::Benchmark* Run(const std::string& who, double goal, Loop loop)
    {
        const auto run = [loop, goal](benchmark::State& state) {
            loop(state);
            state.counters["goal"] = goal;
        };
        return benchmark::RegisterBenchmark((m_group + '|' + who).c_str(), run);
    }

    std::string m_group;
};

// Kelpkit's time for one operation over three decades of size, and the most memory that it takes. makeWork is given a
// size and returns the work.
template <class MakeWork>
void Growth(const std::string& operation, MakeWork makeWork, std::size_t first = 1000)
{
    for (const std::size_t size : {first, 10 * first, 100 * first, 1000 * first}) {
        const std::string group = operation + '|' + std::to_string(size);
        const auto run = [work = makeWork(size), size](benchmark::State& state) {
            state.counters["size"] = static_cast<double>(size);
            state.counters["peak"] = static_cast<double>(AllocationPeak([&work] { benchmark::DoNotOptimize(work()); }));
            for ([[maybe_unused]] auto round : state)
                benchmark::DoNotOptimize(work());
        };
        benchmark::RegisterBenchmark((group + "|growth").c_str(), run)->UseRealTime();
    }
}

} // namespace bench
