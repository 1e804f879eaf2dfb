#pragma once

// Stand-in for MFC's wide CString, for toolchains without MFC: the same names with the same results. Where the real
// one checks for misuse and throws, negative counts and positions mean 0 here, and a place outside the text holds a
// zero character. Not to be passed to a function with variable arguments: hand over GetString().

#include <algorithm>
#include <cstddef>
#include <cwchar>
#include <string>
#include <utility>

class CString
{
public:
    CString() = default;
    CString(const wchar_t* text) // NOLINT(google-explicit-constructor): as the real one
        : m_text(text == nullptr ? L"" : text)
    {
    }
    CString(const wchar_t* text, int length)
    {
        if (text != nullptr)
            m_text.assign(text, Count(length));
    }
    explicit CString(wchar_t c, int count = 1) : m_text(Count(count), c) {}

    CString& operator+=(const CString& text)
    {
        m_text += text.m_text;
        return *this;
    }
    CString& operator+=(wchar_t c)
    {
        m_text += c;
        return *this;
    }

    // In UTF-16 units, without the terminator.
    int GetLength() const { return static_cast<int>(m_text.size()); }
    bool IsEmpty() const { return m_text.empty(); }
    void Empty() { m_text.clear(); }

    // Zero-terminated; valid until the object changes or ends.
    const wchar_t* GetString() const { return m_text.c_str(); }
    operator const wchar_t*() const { return GetString(); } // NOLINT(google-explicit-constructor): likewise

    wchar_t GetAt(int index) const { return Holds(index) ? m_text[Count(index)] : L'\0'; }
    wchar_t operator[](int index) const { return GetAt(index); }
    void SetAt(int index, wchar_t c)
    {
        if (Holds(index))
            m_text[Count(index)] = c;
    }

    // Room for at least minLength units and a terminator, to be written directly. ReleaseBuffer then sets the length:
    // the one given, or that up to the first zero.
    wchar_t* GetBuffer(int minLength = 0)
    {
        m_text.resize((std::max)(m_text.size(), Count(minLength)));
        return m_text.data();
    }
    void ReleaseBuffer(int length = -1) { m_text.resize(length < 0 ? std::wcslen(m_text.c_str()) : Count(length)); }

    CString Left(int count) const { return Part(0, Count(count)); }
    CString Mid(int first) const { return Part(Count(first), m_text.npos); }
    CString Mid(int first, int count) const { return Part(Count(first), Count(count)); }
    CString Right(int count) const
    {
        return Part(m_text.size() - (std::min)(Count(count), m_text.size()), m_text.npos);
    }

    // The position, or -1 where nothing is found.
    int Find(wchar_t c, int start = 0) const { return Position(m_text.find(c, Count(start))); }
    int Find(const wchar_t* text, int start = 0) const { return Position(m_text.find(text, Count(start))); }
    int ReverseFind(wchar_t c) const { return Position(m_text.rfind(c)); }

    // Remove white space, or the characters of a set, from the ends.
    CString& TrimLeft(const wchar_t* set = kWhiteSpace)
    {
        m_text.erase(0, m_text.find_first_not_of(set));
        return *this;
    }
    CString& TrimRight(const wchar_t* set = kWhiteSpace)
    {
        m_text.erase(m_text.find_last_not_of(set) + 1);
        return *this;
    }
    CString& Trim(const wchar_t* set = kWhiteSpace) { return TrimRight(set).TrimLeft(set); }
    CString& TrimLeft(wchar_t c) { return TrimLeft(CString(c)); }
    CString& TrimRight(wchar_t c) { return TrimRight(CString(c)); }
    CString& Trim(wchar_t c) { return Trim(CString(c)); }

    // Below, equal to or above 0, by the values of the units.
    int Compare(const wchar_t* other) const { return std::wcscmp(GetString(), other); }

    friend CString operator+(CString left, const CString& right) { return std::move(left += right); }
    friend CString operator+(CString left, const wchar_t* right) { return std::move(left += right); }
    friend CString operator+(const wchar_t* left, const CString& right) { return CString(left) += right; }
    friend CString operator+(CString left, wchar_t right) { return std::move(left += right); }

    friend bool operator==(const CString& left, const CString& right) { return left.m_text == right.m_text; }
    friend bool operator==(const CString& left, const wchar_t* right) { return left.Compare(right) == 0; }
    friend bool operator==(const wchar_t* left, const CString& right) { return right == left; }
    friend bool operator!=(const CString& left, const CString& right) { return !(left == right); }
    friend bool operator!=(const CString& left, const wchar_t* right) { return !(left == right); }
    friend bool operator!=(const wchar_t* left, const CString& right) { return !(left == right); }

    friend bool operator<(const CString& left, const CString& right) { return left.Compare(right) < 0; }
    friend bool operator<(const CString& left, const wchar_t* right) { return left.Compare(right) < 0; }
    friend bool operator<(const wchar_t* left, const CString& right) { return right.Compare(left) > 0; }
    friend bool operator>(const CString& left, const CString& right) { return right < left; }
    friend bool operator>(const CString& left, const wchar_t* right) { return right < left; }
    friend bool operator>(const wchar_t* left, const CString& right) { return right < left; }
    friend bool operator<=(const CString& left, const CString& right) { return !(right < left); }
    friend bool operator<=(const CString& left, const wchar_t* right) { return !(right < left); }
    friend bool operator<=(const wchar_t* left, const CString& right) { return !(right < left); }
    friend bool operator>=(const CString& left, const CString& right) { return !(left < right); }
    friend bool operator>=(const CString& left, const wchar_t* right) { return !(left < right); }
    friend bool operator>=(const wchar_t* left, const CString& right) { return !(left < right); }

private:
    static constexpr const wchar_t* kWhiteSpace = L" \t\n\v\f\r";

    static std::size_t Count(int number) { return static_cast<std::size_t>((std::max)(number, 0)); }
    static int Position(std::size_t found) { return found == std::wstring::npos ? -1 : static_cast<int>(found); }

    bool Holds(int index) const { return index >= 0 && index < GetLength(); }
    CString Part(std::size_t first, std::size_t count) const
    {
        CString part;
        part.m_text = m_text.substr((std::min)(first, m_text.size()), count);
        return part;
    }

    std::wstring m_text;
};
