#pragma once

#include <cstddef>
#include <thread>
#include <vector>

namespace test
{

// Calls action(number) in as many threads at once, numbered from 0, and waits for them all.
template <class Action>
void InThreads(std::size_t count, const Action& action)
{
    std::vector<std::thread> threads;
    threads.reserve(count);
    for (std::size_t number = 0; number < count; ++number)
        threads.emplace_back([&action, number] { action(number); });
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace test
