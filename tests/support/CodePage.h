#pragma once

#include <gtest/gtest.h>

#include <windows.h>

namespace test
{

// For what holds under one ANSI code page only. The suites derived from these say so by their names. Each test runs
// under every code page: once in earnest, otherwise skipped.
template <UINT codePage>
class UnderCodePage : public testing::Test
{
protected:
    void SetUp() override
    {
        if (::GetACP() != codePage)
            GTEST_SKIP() << "needs ANSI code page " << codePage << "; this run has " << ::GetACP();
    }
};

using UnderCodePage936 = UnderCodePage<936>;
using UnderCodePage1252 = UnderCodePage<1252>;
using UnderUtf8 = UnderCodePage<CP_UTF8>;

} // namespace test
