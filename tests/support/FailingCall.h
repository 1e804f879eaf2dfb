#pragma once

#include "support/HandleCount.h"
#include "support/ImportPatch.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace test
{

template <class Function>
class FailingCall;

// While it lives, a function that a DLL imports does nothing but fail: with this result, and the last error
// "device not functioning". At the end it must have been called, and no more handles may be open than at the start.
// One of each type at a time.
//
//     const FailingCall<decltype(::CopyFileW)> failing("CopyFileW", FALSE);
template <class Result, class... Arguments>
class FailingCall<Result(Arguments...)>
{
public:
    FailingCall(const char* name, std::intptr_t result) : FailingCall(L"Kelpkit.dll", name, result) {}
    FailingCall(const wchar_t* module, const char* name, std::intptr_t result) : m_patch(module, name, &Fail)
    {
        s_calls = 0;
        if constexpr (std::is_pointer_v<Result>)
            s_result = reinterpret_cast<Result>(result);
        else
            s_result = static_cast<Result>(result);
    }
    FailingCall(const FailingCall&) = delete;
    FailingCall& operator=(const FailingCall&) = delete;
    ~FailingCall()
    {
        EXPECT_GT(s_calls, 0);
        EXPECT_LE(HandleCount(), m_handles);
    }

private:
    static Result WINAPI Fail(Arguments... /*unused*/)
    {
        ++s_calls;
        ::SetLastError(ERROR_GEN_FAILURE);
        return s_result;
    }

    static inline int s_calls;
    static inline Result s_result;

    const std::size_t m_handles = HandleCount();
    const ImportPatch m_patch;
};

} // namespace test
