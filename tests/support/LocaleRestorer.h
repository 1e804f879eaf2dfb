#pragma once

#include <clocale>
#include <locale>
#include <string>

namespace test
{

// The C and C++ locales of the process, put back at the end.
class LocaleRestorer
{
public:
    LocaleRestorer() : m_cLocale(std::setlocale(LC_ALL, nullptr)) {}
    LocaleRestorer(const LocaleRestorer&) = delete;
    LocaleRestorer& operator=(const LocaleRestorer&) = delete;
    ~LocaleRestorer()
    {
        std::locale::global(m_cppLocale);
        std::setlocale(LC_ALL, m_cLocale.c_str());
    }

private:
    std::string m_cLocale;
    std::locale m_cppLocale;
};

} // namespace test
