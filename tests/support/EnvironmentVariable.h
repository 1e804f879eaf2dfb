#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace test
{

// Sets a variable of this process's environment, for the programs that it starts, until the object ends.
class EnvironmentVariable
{
public:
    EnvironmentVariable(const wchar_t* name, const std::wstring& value) : m_name(name), m_before(Value(name))
    {
        ::SetEnvironmentVariableW(name, value.c_str());
    }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
    ~EnvironmentVariable() { ::SetEnvironmentVariableW(m_name, m_before ? m_before->c_str() : nullptr); }

    // Nothing where the variable is not set.
    static std::optional<std::wstring> Value(const wchar_t* name)
    {
        std::wstring value(32768, L'\0');
        ::SetLastError(ERROR_SUCCESS);
        value.resize(::GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())));
        if (value.empty() && ::GetLastError() == ERROR_ENVVAR_NOT_FOUND)
            return std::nullopt;
        return value;
    }

private:
    const wchar_t* m_name;
    std::optional<std::wstring> m_before;
};

} // namespace test
