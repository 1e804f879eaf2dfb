#pragma once

#include "WindowsApi.h"

#include <memory>

struct HandleCloser {
    void operator()(HANDLE handle) const { ::CloseHandle(handle); }
};

// A handle that is closed at the end of its scope; null where there is none.
using Handle = std::unique_ptr<void, HandleCloser>;

// What CreateFileW gave, whose sign of failure is another.
inline Handle FileHandle(HANDLE handle)
{
    return Handle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}
