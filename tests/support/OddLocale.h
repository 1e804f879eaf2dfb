#pragma once

#include <clocale>
#include <locale>
#include <stdexcept>
#include <string>

namespace test
{

// While it lives, the locales of the process are odd ones. In C++, each digit is a group of its own ("2;5;5"), and
// characters are of no kind and have other lower-case forms; in C, a comma divides decimals. Throws std::runtime_error
// where the system does not have that one.
class OddLocale
{
public:
    OddLocale() : m_before(std::setlocale(LC_ALL, nullptr))
    {
        s_lowered = 0;
        const std::locale narrow(m_cppBefore, new Numbers<char>);
        const std::locale wide(narrow, new Numbers<wchar_t>);
        std::locale::global(std::locale(wide, new Characters));
        if (std::setlocale(LC_ALL, "German_Germany.1252") == nullptr || std::localeconv()->decimal_point[0] != ',') {
            Restore();
            throw std::runtime_error("no German locale");
        }
    }
    OddLocale(const OddLocale&) = delete;
    OddLocale& operator=(const OddLocale&) = delete;
    ~OddLocale() { Restore(); }

    // How often a lower-case form was asked for.
    static int Lowered() { return s_lowered; }

private:
    template <class Char>
    class Numbers : public std::numpunct<Char>
    {
        Char do_decimal_point() const override { return Char('_'); }
        Char do_thousands_sep() const override { return Char(';'); }
        std::string do_grouping() const override { return "\1"; }
    };

    class Characters : public std::ctype<wchar_t>
    {
        bool do_is(mask /*unused*/, wchar_t /*unused*/) const override { return false; }
        const wchar_t* do_is(const wchar_t* from, const wchar_t* to, mask* kinds) const override
        {
            for (; from != to; ++from)
                *kinds++ = {};
            return to;
        }
        wchar_t do_tolower(wchar_t c) const override
        {
            ++s_lowered;
            return static_cast<wchar_t>(c + 1);
        }
        const wchar_t* do_tolower(wchar_t* from, const wchar_t* to) const override
        {
            for (; from != to; ++from)
                *from = do_tolower(*from);
            return to;
        }
    };

    void Restore() const
    {
        std::locale::global(m_cppBefore);
        std::setlocale(LC_ALL, m_before.c_str());
    }

    static inline int s_lowered = 0;

    const std::locale m_cppBefore;
    const std::string m_before;
};

} // namespace test
