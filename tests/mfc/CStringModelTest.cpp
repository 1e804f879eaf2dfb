#include <Kelpkit/Mfc.h>

#include "support/Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cwchar>
#include <string>

// CString beside what the C runtime and plain loops make of the same random texts, which are short and of few
// characters, so that they often contain each other.

namespace
{

constexpr int kRounds = 20000;

class CStringModel : public testing::Test
{
protected:
    // A text, with zeros in one of three.
    std::wstring Next(unsigned longest = 9)
    {
        const unsigned kinds = m_random.Below(3) == 0 ? 5 : 4;
        std::wstring text;
        for (unsigned left = m_random.Below(longest + 1); left > 0; --left)
            text += L"ab \x3000\0"[m_random.Below(kinds)];
        return text;
    }
    std::wstring NextWithoutZeros(unsigned longest)
    {
        const std::wstring text = Next(longest);
        return text.substr(0, text.find(L'\0'));
    }
    // A position or count, also out of bounds.
    int NextNumber() { return static_cast<int>(m_random.Below(15)) - 3; }
    wchar_t NextCharacter() { return L"ab \x3000"[m_random.Below(4)]; }

    static CString ToCString(const std::wstring& text) { return CString(text.data(), static_cast<int>(text.size())); }
    static std::wstring Plain(const CString& text)
    {
        return std::wstring(text.GetString(), static_cast<std::size_t>(text.GetLength()));
    }

    test::Random m_random{20};
};

int Place(const wchar_t* found, const std::wstring& text)
{
    return found == nullptr ? -1 : static_cast<int>(found - text.c_str());
}

bool IsWhite(wchar_t c)
{
    return c == L' ' || c == L'\x3000';
}

} // namespace

TEST_F(CStringModel, FindsWhatTheRuntimeFinds)
{
    for (int round = 0; round < kRounds; ++round) {
        const std::wstring text = Next();
        const std::wstring part = NextWithoutZeros(3);
        const wchar_t c = m_random.Below(9) == 0 ? L'\0' : NextCharacter();
        const int start = static_cast<int>(m_random.Below(12));
        const int length = static_cast<int>(text.size());
        const CString made = ToCString(text);
        SCOPED_TRACE(testing::PrintToString(text) + testing::PrintToString(part) + std::to_string(start));
        // Wine's wcsstr does not find an empty text at the end, as Microsoft's does.
        const int place =
            part.empty() || start > length ? start : Place(std::wcsstr(text.c_str() + start, part.c_str()), text);
        ASSERT_EQ(made.Find(part.c_str(), start), start > length ? -1 : place);
        ASSERT_EQ(made.Find(c, start), start >= length ? -1 : Place(std::wcschr(text.c_str() + start, c), text));
        ASSERT_EQ(made.ReverseFind(c), Place(std::wcsrchr(text.c_str(), c), text));
        ASSERT_EQ(made.FindOneOf(part.c_str()), Place(std::wcspbrk(text.c_str(), part.c_str()), text));
    }
}

TEST_F(CStringModel, ComparesAsTheRuntimeDoes)
{
    const auto sign = [](int number) { return (number > 0) - (number < 0); };
    for (int round = 0; round < kRounds; ++round) {
        const std::wstring a = Next(4);
        const std::wstring b = Next(4);
        const int expected = sign(std::wcscmp(a.c_str(), b.c_str()));
        ASSERT_EQ(sign(ToCString(a).Compare(ToCString(b))), expected);
        ASSERT_EQ(ToCString(a) == ToCString(b), expected == 0);
        ASSERT_EQ(ToCString(a) < ToCString(b), expected < 0);
    }
}

TEST_F(CStringModel, TakesPartsAsALoopDoes)
{
    for (int round = 0; round < kRounds; ++round) {
        const std::wstring text = Next();
        const int first = NextNumber();
        const int count = NextNumber();
        std::wstring middle;
        std::wstring left;
        std::wstring right;
        for (int i = 0; i < static_cast<int>(text.size()); ++i) {
            const wchar_t c = text[static_cast<std::size_t>(i)];
            if (i >= (std::max)(first, 0) && i < (std::max)(first, 0) + count)
                middle += c;
            if (i < count)
                left += c;
            if (i >= static_cast<int>(text.size()) - count)
                right += c;
        }
        SCOPED_TRACE(testing::PrintToString(text) + ' ' + std::to_string(first) + ' ' + std::to_string(count));
        ASSERT_EQ(Plain(ToCString(text).Mid(first, count)), middle);
        ASSERT_EQ(Plain(ToCString(text).Left(count)), left);
        ASSERT_EQ(Plain(ToCString(text).Right(count)), right);
    }
}

TEST_F(CStringModel, InsertsAndDeletesAsALoopDoes)
{
    for (int round = 0; round < kRounds; ++round) {
        const std::wstring text = Next();
        const std::wstring part = NextWithoutZeros(3);
        const int length = static_cast<int>(text.size());
        const int place = NextNumber();
        const int count = NextNumber();
        const int from = (std::min)((std::max)(place, 0), length);
        std::wstring with;
        std::wstring without;
        for (int i = 0; i <= length; ++i) {
            if (i == from)
                with += part;
            if (i == length)
                break;
            with += text[static_cast<std::size_t>(i)];
            if (i < from || i >= from + count)
                without += text[static_cast<std::size_t>(i)];
        }
        SCOPED_TRACE(testing::PrintToString(text) + ' ' + std::to_string(place) + ' ' + std::to_string(count));
        CString made = ToCString(text);
        ASSERT_EQ(made.Insert(place, part.c_str()), static_cast<int>(with.size()));
        ASSERT_EQ(Plain(made), with);
        made = ToCString(text);
        ASSERT_EQ(made.Delete(place, count), static_cast<int>(without.size()));
        ASSERT_EQ(Plain(made), without);
    }
}

TEST_F(CStringModel, ReplacesAndRemovesAsALoopDoes)
{
    for (int round = 0; round < kRounds; ++round) {
        const std::wstring text = Next();
        const std::wstring from = NextWithoutZeros(2);
        const std::wstring to = NextWithoutZeros(3);
        std::wstring expected;
        int count = 0;
        for (std::size_t i = 0; i < text.size();) {
            if (!from.empty() && text.compare(i, from.size(), from) == 0) {
                expected += to;
                i += from.size();
                ++count;
            } else {
                expected += text[i++];
            }
        }
        SCOPED_TRACE(testing::PrintToString(text) + testing::PrintToString(from) + testing::PrintToString(to));
        CString made = ToCString(text);
        ASSERT_EQ(made.Replace(from.c_str(), to.c_str()), count);
        ASSERT_EQ(Plain(made), expected);

        const wchar_t c = NextCharacter();
        const auto times = static_cast<int>(std::count(text.begin(), text.end(), c));
        made = ToCString(text);
        ASSERT_EQ(made.Replace(c, L'x'), times);
        ASSERT_EQ(made.Remove(L'x'), times);
        CString removed = ToCString(text);
        ASSERT_EQ(removed.Remove(c), times);
        ASSERT_EQ(Plain(removed), Plain(made));
    }
}

TEST_F(CStringModel, TrimsAsALoopDoes)
{
    for (int round = 0; round < kRounds; ++round) {
        const std::wstring text = Next();
        std::wstring left = text;
        while (!left.empty() && IsWhite(left[0]))
            left.erase(0, 1);
        // White space before the first zero, or before the end, goes with all that follows.
        std::wstring right = text;
        const std::size_t end = (std::min)(text.find(L'\0'), text.size());
        std::size_t kept = end;
        while (kept > 0 && IsWhite(text[kept - 1]))
            --kept;
        if (kept < end)
            right.resize(kept);
        SCOPED_TRACE(testing::PrintToString(text));
        CString made = ToCString(text);
        ASSERT_EQ(Plain(made.TrimLeft()), left);
        made = ToCString(text);
        ASSERT_EQ(Plain(made.TrimRight()), right);
        made = ToCString(text);
        ASSERT_EQ(Plain(made.Trim(L" \x3000")), Plain(ToCString(text).TrimRight().TrimLeft()));
    }
}

TEST_F(CStringModel, TokensAreTheRunsBetweenTheSet)
{
    for (int round = 0; round < kRounds; ++round) {
        const std::wstring text = NextWithoutZeros(9);
        std::wstring expected;
        for (const wchar_t c : text) {
            if (!IsWhite(c))
                expected += c;
            else if (!expected.empty() && expected.back() != L'|')
                expected += L'|';
        }
        if (!expected.empty() && expected.back() != L'|')
            expected += L'|';
        std::wstring tokens;
        int start = 0;
        const CString made = ToCString(text);
        for (CString token = made.Tokenize(L"\x3000 ", start); start >= 0; token = made.Tokenize(L"\x3000 ", start))
            tokens += Plain(token) + L"|";
        ASSERT_EQ(tokens, expected) << testing::PrintToString(text);
    }
}
