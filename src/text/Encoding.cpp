#include "Kelpkit/Text.h"

#include "WindowsApi.h"
#include "text/Blocks.h"
#include "text/Utf8.h"

#include <algorithm>
#include <climits>
#include <iterator>

namespace KELPKIT
{
namespace
{

// Texts are converted piece by piece on the stack, up to this many UTF-16 units at a time, which spares the result's
// being filled with zeros first.
constexpr std::size_t kPieceUnits = 1024;

// No code page that can be the ANSI one, UTF-8 among them, writes more bytes than this for one UTF-16 unit.
constexpr std::size_t kMostBytesPerUnit = 3;

const utf8::Blocks& g_utf8Blocks = processor::Fastest(utf8::kWays).blocks;

// The platform counts in int, with the terminator: a result that it cannot count is refused.
template <class Text>
void RefuseUncountable(Text& result)
{
    if (result.size() >= INT_MAX)
        result = Text();
}

// The number of units that most texts make; `length` are the most that any can. In a double-byte code page, two bytes
// beyond ASCII make one.
std::size_t LikelyUnits(UINT codePage, const char* text, std::size_t length)
{
    CPINFO information = {};
    ::GetCPInfo(codePage, &information);
    if (information.MaxCharSize > 2)
        return utf8::DecodedLength(text, length);
    return information.MaxCharSize == 2 ? length - blocks::CountHigh(text, length) / 2 : length;
}

// The platform's conversion in one call. The terminator is converted with the text, as it is when the length is
// given as -1: it matters to a double-byte character cut short at the end.
std::wstring BySystem(UINT codePage, const std::string& text)
{
    const std::size_t length = blocks::LengthToZero(text.data(), text.size());
    if (length >= INT_MAX)
        return {};
    const auto convert = [codePage, &text, length](wchar_t* units, std::size_t room) {
        const int count = ::MultiByteToWideChar(codePage, 0, text.c_str(), static_cast<int>(length) + 1, units,
                                                static_cast<int>(room) + 1);
        return blocks::LengthToZero(units, static_cast<std::size_t>(std::max(count, 0)));
    };
    if (length <= 2 * kPieceUnits) {
        wchar_t units[2 * kPieceUnits + 1];
        return {units, convert(units, 2 * kPieceUnits)};
    }
    std::wstring result(LikelyUnits(codePage, text.data(), length), L'\0');
    std::size_t count = convert(result.data(), result.size());
    if (count == 0) {
        result.resize(length);
        count = convert(result.data(), length);
    }
    result.resize(count);
    return result;
}

// The same piece by piece, since no unit depends on another, save the halves of a surrogate pair.
std::string BySystem(UINT codePage, const std::wstring& text)
{
    std::string result;
    char piece[kMostBytesPerUnit * kPieceUnits];
    const wchar_t* in = text.c_str();
    for (const wchar_t* const end = in + blocks::LengthToZero(text.data(), text.size()); in != end;) {
        std::size_t size = std::min<std::size_t>(static_cast<std::size_t>(end - in), kPieceUnits);
        if (size == kPieceUnits && IS_HIGH_SURROGATE(in[size - 1]))
            --size;
        const int count =
            ::WideCharToMultiByte(codePage, 0, in, static_cast<int>(size), piece, sizeof piece, nullptr, nullptr);
        in += size;
        if (result.empty()) {
            if (in == end)
                return {piece, static_cast<std::size_t>(count)};
            // The rest is taken to be like the first piece, and an eighth longer at most.
            const std::size_t pieces = 2 + static_cast<std::size_t>(end - in) / size;
            result.reserve(pieces * static_cast<std::size_t>(count) / 8 * 9);
        }
        result.append(piece, static_cast<std::size_t>(count));
    }
    RefuseUncountable(result);
    return result;
}

// Converts piece by piece with `convert`, which is like utf8::Decode; what that refuses is asked of the platform.
// `count` gives the length of the whole result, which most texts do without.
template <class Result, class Text, class Convert, class Count>
Result ByPieces(UINT codePage, const Text& text, const Convert& convert, const Count& count)
{
    using Char = typename Result::value_type;
    Char piece[kPieceUnits * (sizeof(Char) == 1 ? kMostBytesPerUnit : 1) + utf8::kLeastRoom];
    Result result;
    const auto* in = text.c_str();
    for (const auto* const end = in + text.size(); in != end;) {
        const Char* const pieceEnd = convert(in, end, piece, std::end(piece));
        if (pieceEnd == nullptr)
            return BySystem(codePage, text);
        const auto size = static_cast<std::size_t>(pieceEnd - piece);
        if (result.empty()) {
            if (in == end)
                return {piece, size};
            result.reserve(count(text.data(), text.size()));
        }
        result.append(piece, size);
    }
    RefuseUncountable(result);
    return result;
}

// ASCII, which every ANSI code page writes alike.
template <class From, class To>
To* CopyAscii(const From*& in, const From* end, To* out, const To* outEnd)
{
    blocks::CopyPlain(in, end, out, outEnd);
    while (in != end && out != outEnd && *in > 0 && *in < 0x80)
        *out++ = static_cast<To>(*in++);
    return in == end || out == outEnd ? out : nullptr;
}

} // namespace

std::wstring AnsiToUnicode(const std::string& text)
{
    return ByPieces<std::wstring>(CP_ACP, text, CopyAscii<char, wchar_t>, blocks::LengthToZero<char>);
}

std::string UnicodeToAnsi(const std::wstring& text)
{
    return ByPieces<std::string>(CP_ACP, text, CopyAscii<wchar_t, char>, blocks::LengthToZero<wchar_t>);
}

// Well-formed text has one conversion only, and it is made here.
std::wstring UTF8ToUnicode(const std::string& text)
{
    const auto decode = [](const char*& in, const char* end, wchar_t* out, const wchar_t* outEnd) {
        return utf8::Decode(g_utf8Blocks, in, end, out, outEnd);
    };
    return ByPieces<std::wstring>(CP_UTF8, text, decode, utf8::DecodedLength);
}

std::string UnicodeToUTF8(const std::wstring& text)
{
    const auto encode = [](const wchar_t*& in, const wchar_t* end, char* out, const char* outEnd) {
        return utf8::Encode(g_utf8Blocks, in, end, out, outEnd);
    };
    return ByPieces<std::string>(CP_UTF8, text, encode, utf8::EncodedLength);
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

// One function under two names.
#if defined(_MSC_VER)
#define KELPKIT_WSTRING "V?$basic_string@_WU?$char_traits@_W@std@@V?$allocator@_W@2@@std@@"
#pragma comment(linker, "/export:?ConvertUnicodeToGBK@KELPKIT@@YA?A" KELPKIT_WSTRING "AEBV23@@Z="                      \
                        "?ConvertGBKToUnicode@KELPKIT@@YA?A" KELPKIT_WSTRING "AEBV23@@Z")
#else
std::wstring ConvertUnicodeToGBK(const std::wstring& text)
    __attribute__((alias("_ZN7KELPKIT19ConvertGBKToUnicodeERKNSt7__cxx1112basic_stringIwSt11char_traitsIwESaIwEEE")));
#endif

std::wstring ConvertAnsiToGBK(const std::string& text)
{
    return AnsiToUnicode(text);
}

} // namespace KELPKIT
