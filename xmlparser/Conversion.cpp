#include "Conversion.h"

#include "WindowsApi.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace xmlparser
{
namespace
{

int Length(std::size_t size)
{
    return static_cast<int>(size);
}

// Windows' conversions take a length of 0 for an error.
bool ToUnits(unsigned codePage, std::string_view bytes, std::wstring& units)
{
    units.resize(bytes.size());
    if (bytes.empty())
        return true;
    const int count = ::MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, bytes.data(), Length(bytes.size()),
                                            units.data(), Length(units.size()));
    units.resize(static_cast<std::size_t>(count));
    return count > 0;
}

void SwapBytes(wchar_t* units, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        units[i] = static_cast<wchar_t>(units[i] << 8 | units[i] >> 8);
}

// With WC_ERR_INVALID_CHARS, half a surrogate pair is an error; with 0 it becomes U+FFFD.
bool UnitsToUtf8(std::wstring_view units, DWORD flags, std::string& utf8)
{
    constexpr std::size_t kMostBytesOfAUnit = 3;
    if (units.size() > static_cast<std::size_t>(MAXINT) / kMostBytesOfAUnit)
        return false;
    utf8.resize(units.size() * kMostBytesOfAUnit);
    if (units.empty())
        return true;
    const int size = ::WideCharToMultiByte(CP_UTF8, flags, units.data(), Length(units.size()), utf8.data(),
                                           Length(utf8.size()), nullptr, nullptr);
    utf8.resize(static_cast<std::size_t>(size));
    return size > 0;
}

// GB 18030 holds GBK, whose table Windows has where it lacks that one (Wine does).
unsigned KnownCodePage(unsigned codePage)
{
    static const bool s_hasGb18030 = ::IsValidCodePage(Encoding::kGb18030) != FALSE;
    return codePage == Encoding::kGb18030 && !s_hasGb18030 ? Encoding::kGbk : codePage;
}

// GBK has places of its users' own where GB 18030 has characters.
bool HasPrivateUse(std::wstring_view text)
{
    return std::any_of(text.begin(), text.end(), [](wchar_t unit) { return unit >= 0xE000 && unit <= 0xF8FF; });
}

// Whether the code page can tell what it cannot hold: GB 18030 holds everything, and refuses to be asked.
bool HasGaps(unsigned codePage)
{
    return codePage != Encoding::kGb18030;
}

} // namespace

std::string ToUtf8(std::wstring_view text)
{
    std::string utf8;
    UnitsToUtf8(text, 0, utf8);
    return utf8;
}

// Strict, so that a save cannot change what it does not name.
bool ToUtf8(const Encoding& encoding, std::string& file)
{
    if (encoding.hasByteOrderMark)
        file.erase(0, ByteOrderMark(encoding.codePage).size());
    if (encoding.codePage == Encoding::kUtf8)
        return true;
    if (!encoding.IsUtf16()) {
        const unsigned codePage = KnownCodePage(encoding.codePage);
        std::wstring units;
        return ToUnits(codePage, file, units) && (codePage == encoding.codePage || !HasPrivateUse(units)) &&
               UnitsToUtf8(units, WC_ERR_INVALID_CHARS, file);
    }
    if (file.size() % sizeof(wchar_t) != 0)
        return false;
    std::string bytes = std::move(file);
    auto* const units = reinterpret_cast<wchar_t*>(bytes.data());
    const std::size_t count = bytes.size() / sizeof(wchar_t);
    if (encoding.codePage == Encoding::kUtf16BigEndian)
        SwapBytes(units, count);
    return UnitsToUtf8({units, count}, WC_ERR_INVALID_CHARS, file);
}

bool FromUtf8(const Encoding& encoding, std::string& text)
{
    const std::string_view mark = encoding.hasByteOrderMark ? ByteOrderMark(encoding.codePage) : std::string_view();
    if (encoding.codePage == Encoding::kUtf8) {
        text.insert(0, mark);
        return true;
    }
    std::wstring units;
    if (!ToUnits(CP_UTF8, text, units))
        return false;
    if (encoding.IsUtf16()) {
        if (encoding.codePage == Encoding::kUtf16BigEndian)
            SwapBytes(units.data(), units.size());
        text.assign(mark).append(reinterpret_cast<const char*>(units.data()), units.size() * sizeof(wchar_t));
        return true;
    }
    constexpr std::size_t kMostBytesOfAUnit = 4;
    if (units.size() > static_cast<std::size_t>(MAXINT) / kMostBytesOfAUnit)
        return false;
    const unsigned codePage = KnownCodePage(encoding.codePage);
    text.resize(units.size() * kMostBytesOfAUnit);
    BOOL replaced = FALSE;
    const int size = ::WideCharToMultiByte(codePage, HasGaps(codePage) ? WC_NO_BEST_FIT_CHARS : 0, units.data(),
                                           Length(units.size()), text.data(), Length(text.size()), nullptr,
                                           HasGaps(codePage) ? &replaced : nullptr);
    text.resize(static_cast<std::size_t>(size));
    return size > 0 && replaced == FALSE;
}

bool CanHold(const Encoding& encoding, std::wstring_view character)
{
    const unsigned codePage = KnownCodePage(encoding.codePage);
    if (character[0] < 0x80)
        return true;
    if (codePage == Encoding::kUtf8)
        return encoding.part != Encoding::Part::kAscii;
    if (encoding.IsUtf16() || !HasGaps(codePage))
        return true;
    if (codePage != encoding.codePage && HasPrivateUse(character))
        return false;
    char bytes[4];
    const int size = ::WideCharToMultiByte(codePage, WC_NO_BEST_FIT_CHARS, character.data(), Length(character.size()),
                                           bytes, sizeof bytes, nullptr, nullptr);
    // Windows writes some characters as bytes that it refuses to read.
    std::wstring back;
    if (!ToUnits(codePage, {bytes, static_cast<std::size_t>(size)}, back) || back != character)
        return false;
    const auto byte = [&](int index) { return static_cast<unsigned char>(bytes[index]); };
    if (encoding.part == Encoding::Part::kGb2312)
        return size == 2 && byte(0) >= 0xA1 && byte(0) <= 0xF7 && byte(1) >= 0xA1;
    // Windows' GBK has the euro sign as the byte 80, which is no part of the standards.
    return codePage != Encoding::kGbk || size == 2;
}

} // namespace xmlparser
