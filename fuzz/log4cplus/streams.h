#pragma once

// In place of log4cplus's header of this name, for its reader of property files: the C++ library's own wide streams have
// characters of 32 bits.

#include <log4cplus/config.hxx>
#include <log4cplus/tchar.h>

#include <cstddef>
#include <ios>
#include <sstream>
#include <string>

namespace log4cplus
{

using tostream = std::basic_ostream<tchar>;
using tostringstream = std::basic_ostringstream<tchar>;

// Lines of a text.
class tistream
{
public:
    tistream() = default;
    explicit tistream(std::wstring text) : m_text(std::move(text)) {}

    explicit operator bool() const { return m_isGood; }
    bool operator!() const { return !m_isGood; }

    // As std::getline: a line without an end is the last one.
    tistream& Line(std::wstring& line)
    {
        m_isGood = m_isGood && m_at < m_text.size();
        if (!m_isGood)
            return *this;
        const std::size_t end = m_text.find(L'\n', m_at);
        line = m_text.substr(m_at, end - m_at);
        m_at = end == m_text.npos ? m_text.size() : end + 1;
        return *this;
    }

    // For numbers, which the reader of files reads none of.
    template <class Value>
    tistream& operator>>(Value& /*value*/)
    {
        m_isGood = false;
        return *this;
    }

private:
    std::wstring m_text;
    std::size_t m_at = 0;
    bool m_isGood = true;
};

using tistringstream = tistream;

} // namespace log4cplus

// NOLINTNEXTLINE(cert-dcl58-cpp): log4cplus calls it by this name
namespace std
{

inline log4cplus::tistream& getline(log4cplus::tistream& text, wstring& line)
{
    return text.Line(line);
}

} // namespace std
