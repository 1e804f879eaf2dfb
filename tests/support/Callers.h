#pragma once

#include <windows.h>

#include <algorithm>

namespace test
{

// Whether a function of the module is among the callers; false for null. Takes no memory.
inline bool IsCalledBy(HMODULE module)
{
    if (module == nullptr)
        return false;
    constexpr DWORD kMost = 60;
    void* callers[kMost];
    const WORD count = ::RtlCaptureStackBackTrace(0, kMost, callers, nullptr);
    return std::any_of(callers, callers + count, [module](const void* caller) {
        HMODULE found = nullptr;
        return ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                        GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                                    static_cast<const wchar_t*>(caller), &found) &&
               found == module;
    });
}

} // namespace test
