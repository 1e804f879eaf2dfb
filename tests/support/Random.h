#pragma once

#include <random>

namespace test
{

// Numbers that look random and are the same in every run.
class Random
{
public:
    explicit Random(unsigned seed) : m_engine(seed) {}

    // 0 to limit - 1.
    unsigned Below(unsigned limit) { return std::uniform_int_distribution<unsigned>(0, limit - 1)(m_engine); }

private:
    std::mt19937 m_engine;
};

} // namespace test
