#include "Kelpkit/Text.h"

#include "WindowsApi.h"
#include "text/Blocks.h"
#include "text/Utf8.h"

#include <algorithm>
#include <climits>
#include <memory>

namespace KELPKIT
{
namespace
{

// Up to this many units are converted on the stack; longer texts pass through it piece by piece, which spares the
// result's being filled with zeros first.
constexpr std::size_t kStackUnits = 1024;

// No code page that can be the ANSI one, UTF-8 among them, writes more bytes than this for one UTF-16 unit.
constexpr std::size_t kMostBytesPerUnit = 3;

// The platform counts in int, with the terminator: a result that it cannot count is refused.
template <class Text>
void RefuseUncountable(Text& result)
{
    if (result.size() >= INT_MAX)
        result = Text();
}

// The platform's conversion in one call. The terminator is converted with the text, as it is when the length is
// given as -1: it matters to a double-byte character cut short at the end.
std::wstring SystemToWide(UINT codePage, const char* text, std::size_t length)
{
    if (length >= INT_MAX)
        return {};
    const int size = static_cast<int>(length) + 1;
    wchar_t stack[kStackUnits];
    std::unique_ptr<wchar_t[]> heap;
    wchar_t* units = stack;
    if (length >= kStackUnits) {
        heap.reset(new wchar_t[length + 1]);
        units = heap.get();
    }
    const int count = ::MultiByteToWideChar(codePage, 0, text, size, units, size);
    return {units, blocks::LengthToZero(units, static_cast<std::size_t>(std::max(count, 0)))};
}

// The same piece by piece, since no unit depends on another, save the halves of a surrogate pair.
std::string SystemToNarrow(UINT codePage, const wchar_t* text, std::size_t length)
{
    std::string result;
    char piece[kMostBytesPerUnit * kStackUnits];
    for (const wchar_t* const end = text + length; text != end;) {
        std::size_t size = std::min<std::size_t>(static_cast<std::size_t>(end - text), kStackUnits);
        if (size == kStackUnits && IS_HIGH_SURROGATE(text[size - 1]))
            --size;
        const int count =
            ::WideCharToMultiByte(codePage, 0, text, static_cast<int>(size), piece, sizeof piece, nullptr, nullptr);
        text += size;
        if (result.empty() && text != end) {
            // The rest is taken to be like the first piece.
            const std::size_t pieces = 2 + static_cast<std::size_t>(end - text) / size;
            result.reserve(pieces * static_cast<std::size_t>(count));
        }
        result.append(piece, static_cast<std::size_t>(count));
    }
    RefuseUncountable(result);
    return result;
}

} // namespace

std::wstring AnsiToUnicode(const std::string& text)
{
    if (blocks::IsAscii(text.data(), text.size()))
        return UTF8ToUnicode(text);
    return SystemToWide(CP_ACP, text.c_str(), blocks::LengthToZero(text.data(), text.size()));
}

std::string UnicodeToAnsi(const std::wstring& text)
{
    if (blocks::IsAscii(text.data(), text.size()))
        return UnicodeToUTF8(text);
    return SystemToNarrow(CP_ACP, text.c_str(), blocks::LengthToZero(text.data(), text.size()));
}

// Well-formed text has one conversion only, and it is made here; what the platform makes of anything else is asked
// of the platform.
std::wstring UTF8ToUnicode(const std::string& text)
{
    const std::size_t length = blocks::LengthToZero(text.data(), text.size());
    const char* in = text.c_str();
    const char* const end = in + length;
    std::wstring result;
    wchar_t piece[kStackUnits];
    while (in != end) {
        const wchar_t* const pieceEnd = utf8::Decode(in, end, piece, piece + kStackUnits);
        if (pieceEnd == nullptr)
            return SystemToWide(CP_UTF8, text.c_str(), length);
        if (in != end && result.empty())
            result.reserve(utf8::DecodedLength(text.data(), length));
        result.append(piece, static_cast<std::size_t>(pieceEnd - piece));
    }
    RefuseUncountable(result);
    return result;
}

std::string UnicodeToUTF8(const std::wstring& text)
{
    const std::size_t length = blocks::LengthToZero(text.data(), text.size());
    const wchar_t* in = text.c_str();
    const wchar_t* const end = in + length;
    std::string result;
    char piece[kMostBytesPerUnit * kStackUnits];
    while (in != end) {
        const char* const pieceEnd = utf8::Encode(in, end, piece, piece + sizeof piece);
        if (pieceEnd == nullptr)
            return SystemToNarrow(CP_UTF8, text.c_str(), length);
        if (in != end && result.empty())
            result.reserve(utf8::EncodedLength(text.data(), length));
        result.append(piece, static_cast<std::size_t>(pieceEnd - piece));
    }
    RefuseUncountable(result);
    return result;
}

std::wstring ConvertUtf8ToGBK(const std::string& text)
{
    return UTF8ToUnicode(text);
}

std::string ConvertGBKToUtf8(const std::wstring& text)
{
    return UnicodeToUTF8(text);
}

std::string ConvertTStringToString(const std::wstring& text)
{
    return UnicodeToAnsi(text);
}

// UTF-8 whatever the name says: callers rely on it.
std::string ConvertGBKToAnsi(const std::wstring& text)
{
    return ConvertGBKToUtf8(text);
}

std::wstring ConvertGBKToUnicode(const std::wstring& text)
{
    return text;
}

// One function under two names. Visual Studio's linker folds the two; for GCC the second is declared an alias.
#if defined(__GNUC__)
std::wstring ConvertUnicodeToGBK(const std::wstring& text)
    __attribute__((alias("_ZN7KELPKIT19ConvertGBKToUnicodeERKNSt7__cxx1112basic_stringIwSt11char_traitsIwESaIwEEE")));
#else
std::wstring ConvertUnicodeToGBK(const std::wstring& text)
{
    return ConvertGBKToUnicode(text);
}
#endif

std::wstring ConvertAnsiToGBK(const std::string& text)
{
    return AnsiToUnicode(text);
}

} // namespace KELPKIT
