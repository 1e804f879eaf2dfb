#pragma once

/// @file
/// Stand-in for MFC's wide CString, for toolchains without MFC: the same names with the same results.
///
/// It is a subset, and what is declared here is all of it. Among what it lacks are resources (LoadString,
/// FormatMessage, Format with an identifier), BSTR and VARIANT, Collate, MakeReverse, SpanIncluding and SpanExcluding,
/// comparison with single characters, and CStringA.
///
/// Lengths, counts and positions are in UTF-16 units. A text may hold zeros: then Compare and the operators, Find and
/// its relatives, Tokenize, Trim and the changes of case end at the first zero from where they start, as the functions
/// of the C runtime do; everything else goes by the length.
///
/// Where the real class checks for misuse and throws, a null text is empty here, counts and positions are clamped to
/// the text, and a character outside of the text is zero.

#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <cwchar>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

/// A wide text that owns its characters.
class CString
{
public:
    /// An empty text.
    CString() = default;
    /// A copy of a zero-terminated text.
    CString(const wchar_t* text) : m_text(Text(text)) {} // NOLINT(google-explicit-constructor): as the real one
    /// A copy of that many characters, which may include zeros.
    CString(const wchar_t* text, int length)
    {
        if (text != nullptr)
            m_text.assign(text, Count(length));
    }
    /// A character that many times.
    explicit CString(wchar_t c, int count = 1) : m_text(Count(count), c) {}

    /// The same of narrow text in the ANSI code page of the thread's locale. What is no character there becomes what
    /// Windows puts in its place.
    CString(const char* text); // NOLINT(google-explicit-constructor): as the real one
    CString(const char* text, int length);

    /// Takes a single character. A template, so that `text = {}` empties the text.
    template <typename Character, std::enable_if_t<std::is_same_v<Character, wchar_t>, int> = 0>
    CString& operator=(Character c)
    {
        m_text.assign(1, c);
        return *this;
    }

    /// Appends. A char counts as the wchar_t of the same value.
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
    void Append(const CString& text) { *this += text; }
    void AppendChar(wchar_t c) { *this += c; }

    /// The length without the terminator.
    int GetLength() const { return static_cast<int>(m_text.size()); }
    bool IsEmpty() const { return m_text.empty(); }
    void Empty() { m_text.clear(); }
    /// Shortens the text to a length; no effect if it is no longer than that.
    void Truncate(int length) { m_text.resize((std::min)(m_text.size(), Count(length))); }

    /// Zero-terminated; valid until the object changes or ends.
    const wchar_t* GetString() const { return m_text.c_str(); }
    operator const wchar_t*() const { return GetString(); } // NOLINT(google-explicit-constructor): as the real one

    /// The character at a position; zero outside of the text.
    wchar_t GetAt(int index) const { return Holds(index) ? m_text[Count(index)] : L'\0'; }
    wchar_t operator[](int index) const { return GetAt(index); }
    /// Changes the character at a position; no effect outside of the text.
    void SetAt(int index, wchar_t c)
    {
        if (Holds(index))
            m_text[Count(index)] = c;
    }

    /// Room for at least minLength units and a terminator, to be written directly. Until ReleaseBuffer, which sets the
    /// length to the one given or, for a negative one, to the first zero, nothing else of the object may be used.
    wchar_t* GetBuffer(int minLength = 0)
    {
        m_text.resize((std::max)(m_text.size(), Count(minLength)));
        return m_text.data();
    }
    void ReleaseBuffer(int length = -1) { m_text.resize(length < 0 ? std::wcslen(m_text.c_str()) : Count(length)); }
    /// Sets the length, and gives the characters to be written directly. ReleaseBuffer may, but need not follow.
    wchar_t* GetBufferSetLength(int length)
    {
        m_text.resize(Count(length));
        return m_text.data();
    }
    void ReleaseBufferSetLength(int length) { m_text.resize(Count(length)); }

    /// The first or last characters, or those from a position on; fewer where the text ends. Negative numbers count
    /// as 0.
    CString Left(int count) const { return Part(0, Count(count)); }
    CString Mid(int first) const { return Part(Count(first), m_text.npos); }
    CString Mid(int first, int count) const { return Part(Count(first), Count(count)); }
    CString Right(int count) const
    {
        return Part(m_text.size() - (std::min)(Count(count), m_text.size()), m_text.npos);
    }

    /// The first place at or after start, or -1 where nothing is found or start is outside of the text. A zero is found
    /// at the end, unless start is there; an empty text is found at start, which may be the end.
    int Find(wchar_t c, int start = 0) const { return Holds(start) ? Position(WithZero(start).find(c), start) : -1; }
    int Find(const wchar_t* text, int start = 0) const
    {
        const bool canBegin = text != nullptr && start >= 0 && start <= GetLength();
        return canBegin ? Position(UpToZero(start).find(text), start) : -1;
    }
    /// The last place of a character, or the first of any character of a set; -1 where there is none.
    int ReverseFind(wchar_t c) const { return Position(WithZero(0).rfind(c)); }
    int FindOneOf(const wchar_t* set) const { return Position(UpToZero(0).find_first_of(Text(set))); }

    /// The next run of characters that are not in the set, from start on, which moves past the character after the run.
    /// Where there is none, an empty text, and start is -1. For an empty set the text from start on; start stays.
    CString Tokenize(const wchar_t* set, int& start) const;

    /// Put a character or text before the one at a position, which is clamped to the text. Return the new length.
    int Insert(int index, wchar_t c)
    {
        m_text.insert(Clamped(index), 1, c);
        return GetLength();
    }
    int Insert(int index, const wchar_t* text)
    {
        m_text.insert(Clamped(index), Text(text));
        return GetLength();
    }
    /// Removes characters from a position on, fewer where the text ends. Negative numbers count as 0. Returns the new
    /// length.
    int Delete(int index, int count = 1)
    {
        m_text.erase(Clamped(index), Count(count));
        return GetLength();
    }
    /// Removes a character wherever it is. Returns how often it was there.
    int Remove(wchar_t c)
    {
        const auto kept = std::remove(m_text.begin(), m_text.end(), c);
        const auto count = m_text.end() - kept;
        m_text.erase(kept, m_text.end());
        return static_cast<int>(count);
    }
    /// Replace a character, or a text from left to right, wherever it is. Return how often it was there; 0 for an empty
    /// text, or if the two characters are the same.
    int Replace(wchar_t from, wchar_t to)
    {
        const auto count = from == to ? 0 : std::count(m_text.begin(), m_text.end(), from);
        std::replace(m_text.begin(), m_text.end(), from, to);
        return static_cast<int>(count);
    }
    int Replace(const wchar_t* from, const wchar_t* to);

    /// Remove white space, a character, or the characters of a set, from the ends. White space is the same in every
    /// locale and with every runtime: Unicode's, to which U+00A0 and U+3000 belong, but U+200B and U+FEFF do not.
    CString& TrimLeft(const wchar_t* set = kWhiteSpace)
    {
        const std::wstring_view text = UpToZero(0);
        m_text.erase(0, (std::min)(text.find_first_not_of(Text(set)), text.size()));
        return *this;
    }
    CString& TrimRight(const wchar_t* set = kWhiteSpace)
    {
        const std::wstring_view text = UpToZero(0);
        const std::size_t end = text.find_last_not_of(Text(set)) + 1;
        if (end < text.size())
            m_text.resize(end);
        return *this;
    }
    CString& Trim(const wchar_t* set = kWhiteSpace) { return TrimRight(set).TrimLeft(set); }
    CString& TrimLeft(wchar_t c) { return TrimLeft(CString(c)); }
    CString& TrimRight(wchar_t c) { return TrimRight(CString(c)); }
    CString& Trim(wchar_t c) { return Trim(CString(c)); }

    /// Change the case of the letters A to Z, and of no others: what the real ones do in the locale "C", in which
    /// programs start.
    CString& MakeLower() { return Shift(L'A', L'Z', L'a' - L'A'); }
    CString& MakeUpper() { return Shift(L'a', L'z', L'A' - L'a'); }

    /// Below, equal to or above 0, by the values of the units; CompareNoCase treats A to Z as a to z.
    int Compare(const wchar_t* other) const { return std::wcscmp(GetString(), Text(other)); }
    int CompareNoCase(const wchar_t* other) const
    {
        return CString(*this).MakeLower().Compare(CString(other).MakeLower());
    }

    /// Write the arguments as the C runtime's wprintf does, in its locale, to any length; AppendFormat appends. %s and
    /// %c are wide, %S, %hs and %hc are narrow. A CString may be an argument, also the object itself. Runtimes differ:
    /// the exponent of %e has three digits with msvcrt and two with later ones. A format that the runtime refuses gives
    /// an empty text.
    template <typename... Arguments>
    void Format(const wchar_t* format, Arguments... arguments)
    {
        *this = Formatted(format, Passed(arguments)...);
    }
    template <typename... Arguments>
    void AppendFormat(const wchar_t* format, Arguments... arguments)
    {
        *this += Formatted(format, Passed(arguments)...);
    }
    void FormatV(const wchar_t* format, std::va_list arguments);

    /// Join texts and characters.
    friend CString operator+(CString left, const CString& right) { return std::move(left += right); }
    friend CString operator+(CString left, const wchar_t* right) { return std::move(left += right); }
    friend CString operator+(const wchar_t* left, const CString& right) { return CString(left) += right; }
    friend CString operator+(CString left, wchar_t right) { return std::move(left += right); }
    friend CString operator+(wchar_t left, const CString& right) { return CString(left) += right; }

    /// Compare as Compare does.
    friend bool operator==(const CString& left, const CString& right) { return left.Compare(right) == 0; }
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
    static constexpr const wchar_t* kWhiteSpace =
        L"\t\n\v\f\r \x85\xA0\x1680\x2000\x2001\x2002\x2003\x2004\x2005\x2006\x2007\x2008\x2009\x200A\x2028\x2029\x202F"
        L"\x205F\x3000";

    static const wchar_t* Text(const wchar_t* text) { return text == nullptr ? L"" : text; }
    static std::size_t Count(int number) { return static_cast<std::size_t>((std::max)(number, 0)); }
    static int Position(std::size_t found, int start = 0)
    {
        return found == std::wstring::npos ? -1 : start + static_cast<int>(found);
    }

    bool Holds(int index) const { return index >= 0 && index < GetLength(); }
    std::size_t Clamped(int index) const { return (std::min)(Count(index), m_text.size()); }
    std::wstring_view UpToZero(int start) const { return m_text.c_str() + Count(start); }
    std::wstring_view WithZero(int start) const { return {m_text.c_str() + Count(start), UpToZero(start).size() + 1}; }
    CString Part(std::size_t first, std::size_t count) const
    {
        CString part;
        part.m_text = m_text.substr((std::min)(first, m_text.size()), count);
        return part;
    }
    CString& Shift(wchar_t first, wchar_t last, int distance)
    {
        for (wchar_t* c = m_text.data(); *c != L'\0'; ++c) {
            if (*c >= first && *c <= last)
                *c = static_cast<wchar_t>(*c + distance);
        }
        return *this;
    }

    // What stands for an argument behind an ellipsis, which takes no objects.
    static const wchar_t* Passed(const CString& text) { return text.GetString(); }
    template <typename Argument>
    static Argument Passed(Argument argument)
    {
        return argument;
    }
    static CString Formatted(const wchar_t* format, ...); // NOLINT(cert-dcl50-cpp): as the runtime's

    std::wstring m_text;
};

inline CString CString::Tokenize(const wchar_t* set, int& start) const
{
    if (Holds(start) && *Text(set) == L'\0')
        return Mid(start);
    if (Holds(start)) {
        const std::wstring_view text = UpToZero(start);
        const int first = start + static_cast<int>((std::min)(text.find_first_not_of(set), text.size()));
        if (first < GetLength()) {
            const std::wstring_view rest = UpToZero(first);
            const int length = static_cast<int>((std::min)(rest.find_first_of(set), rest.size()));
            start = first + length + 1;
            return Mid(first, length);
        }
    }
    start = -1;
    return {};
}

inline int CString::Replace(const wchar_t* from, const wchar_t* to)
{
    const std::wstring_view sought = Text(from);
    int count = 0;
    if (sought.empty())
        return count;
    std::wstring result;
    std::size_t done = 0;
    for (std::size_t found = 0; (found = m_text.find(sought, done)) != m_text.npos; done = found + sought.size()) {
        result.append(m_text, done, found - done).append(Text(to));
        ++count;
    }
    m_text = std::move(result.append(m_text, done));
    return count;
}

/// The wide text by its other name.
using CStringW = CString;
