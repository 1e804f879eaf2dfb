#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace
{

constexpr char32_t kReplacement = 0xFFFD;
constexpr UINT kDoubleByte = 936;
constexpr UINT kLatin1 = 28591;

// A character and what it takes of the text; kNone where the text starts with none that is valid.
struct Step {
    static constexpr char32_t kNone = 0xFFFFFFFF;

    char32_t character;
    std::size_t length;
};

unsigned Byte(std::string_view text, std::size_t place)
{
    return place < text.size() ? static_cast<unsigned char>(text[place]) : 0;
}

// The range that the second byte of a sequence must be in (the Unicode Standard, table 3-7).
bool IsSecond(unsigned lead, unsigned byte)
{
    const unsigned least = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned most = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    return byte >= least && byte <= most;
}

// An invalid sequence takes what could have been the start of a valid one.
Step FromUtf8(std::string_view text)
{
    const unsigned lead = Byte(text, 0);
    if (lead < 0x80)
        return {lead, 1};
    if (lead < 0xC2 || lead > 0xF4)
        return {Step::kNone, 1};
    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    char32_t character = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const unsigned byte = Byte(text, i);
        if (i == 1 ? !IsSecond(lead, byte) : (byte & 0xC0) != 0x80)
            return {Step::kNone, i};
        character = character << 6 | (byte & 0x3F);
    }
    return {character, length};
}

// Two bytes give a character from U+4E00 on, or a private one; the last rows are not defined.
constexpr unsigned kTrails = 0xFF - 0x40;
constexpr unsigned kPrivateRow = 0xF0 - 0x81;
constexpr unsigned kRows = 0xFA - 0x81;

Step FromDoubleByte(std::string_view text)
{
    const unsigned lead = Byte(text, 0);
    if (lead < 0x80)
        return {lead, 1};
    if (lead == 0x80)
        return {0x20AC, 1};
    const unsigned row = lead - 0x81;
    const unsigned trail = Byte(text, 1);
    if (row >= kRows || trail < 0x40 || trail == 0xFF)
        return {Step::kNone, row >= kRows || trail == 0 ? 1U : 2U};
    const unsigned column = trail - 0x40;
    const unsigned character =
        row < kPrivateRow ? 0x4E00 + row * kTrails + column : 0xE000 + (row - kPrivateRow) * kTrails + column;
    return {character, 2};
}

Step FromBytes(UINT codePage, std::string_view text)
{
    if (codePage == CP_UTF8)
        return FromUtf8(text);
    if (codePage == kLatin1)
        return {Byte(text, 0), 1};
    return FromDoubleByte(text);
}

Step FromUnits(std::wstring_view text)
{
    const unsigned unit = text[0];
    if ((unit & 0xF800) != 0xD800)
        return {unit, 1};
    const unsigned next = text.size() > 1 ? text[1] : 0;
    if (unit >= 0xDC00 || (next & 0xFC00) != 0xDC00)
        return {Step::kNone, 1};
    return {0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00), 2};
}

void AppendUnits(char32_t character, std::wstring& units)
{
    if (character >= 0x10000) {
        units += static_cast<wchar_t>(0xD7C0 + (character >> 10));
        character = 0xDC00 + (character & 0x3FF);
    }
    units += static_cast<wchar_t>(character);
}

void AppendUtf8(char32_t character, std::string& bytes)
{
    if (character < 0x80) {
        bytes += static_cast<char>(character);
        return;
    }
    int shift = character < 0x800 ? 6 : character < 0x10000 ? 12 : 18;
    const unsigned lead = shift == 6 ? 0xC0 : shift == 12 ? 0xE0 : 0xF0;
    bytes += static_cast<char>(lead | character >> shift);
    while ((shift -= 6) >= 0)
        bytes += static_cast<char>(0x80 | (character >> shift & 0x3F));
}

// False where the code page lacks the character.
bool AppendDoubleByte(char32_t character, std::string& bytes)
{
    if (character < 0x80 || character == 0x20AC) {
        bytes += static_cast<char>(character < 0x80 ? character : 0x80);
        return true;
    }
    const bool isPrivate = character >= 0xE000;
    const char32_t place = isPrivate ? character - 0xE000 + kPrivateRow * kTrails : character - 0x4E00;
    if (character < 0x4E00 || place / kTrails >= (isPrivate ? kRows : kPrivateRow))
        return false;
    bytes += static_cast<char>(0x81 + place / kTrails);
    bytes += static_cast<char>(0x40 + place % kTrails);
    return true;
}

// False where the code page lacks the character.
bool AppendBytes(UINT codePage, char32_t character, std::string& bytes)
{
    if (codePage == CP_UTF8) {
        AppendUtf8(character == Step::kNone ? kReplacement : character, bytes);
        return true;
    }
    if (character == Step::kNone)
        return false;
    if (codePage != kLatin1)
        return AppendDoubleByte(character, bytes);
    if (character < 0x100)
        bytes += static_cast<char>(character);
    return character < 0x100;
}

// Windows' way to hand over a result: its size, which is all where there is no room, or 0 where it does not fit.
template <class Char>
int HandOver(const std::basic_string<Char>& result, Char* out, int room)
{
    if (room == 0)
        return static_cast<int>(result.size());
    if (result.size() > static_cast<std::size_t>(room))
        return 0;
    std::copy(result.begin(), result.end(), out);
    return static_cast<int>(result.size());
}

} // namespace

BOOL IsValidCodePage(UINT codePage)
{
    return codePage == CP_UTF8 || codePage == kLatin1 || codePage == kDoubleByte;
}

BOOL GetCPInfo(UINT codePage, CPINFO* information)
{
    information->MaxCharSize = codePage == CP_UTF8 ? 4 : codePage == kLatin1 ? 1 : 2;
    return TRUE;
}

int MultiByteToWideChar(UINT codePage, DWORD flags, const char* bytes, int size, wchar_t* units, int room)
{
    if (codePage != CP_ACP && !IsValidCodePage(codePage))
        return 0;
    std::wstring result;
    result.reserve(static_cast<std::size_t>(size));
    for (std::string_view rest(bytes, static_cast<std::size_t>(size)); !rest.empty();) {
        const Step step = FromBytes(codePage, rest);
        if (step.character == Step::kNone && (flags & MB_ERR_INVALID_CHARS) != 0)
            return 0;
        AppendUnits(step.character == Step::kNone ? kReplacement : step.character, result);
        rest.remove_prefix(step.length);
    }
    return HandOver(result, units, room);
}

int WideCharToMultiByte(UINT codePage, DWORD flags, const wchar_t* units, int size, char* bytes, int room,
                        const char* /*defaultCharacter*/, BOOL* replaced)
{
    if (codePage != CP_ACP && !IsValidCodePage(codePage))
        return 0;
    std::string result;
    result.reserve(3 * static_cast<std::size_t>(size));
    for (std::wstring_view rest(units, static_cast<std::size_t>(size)); !rest.empty();) {
        const Step step = FromUnits(rest);
        if (step.character == Step::kNone && (flags & WC_ERR_INVALID_CHARS) != 0)
            return 0;
        if (!AppendBytes(codePage, step.character, result)) {
            result += '?';
            if (replaced != nullptr)
                *replaced = TRUE;
        }
        rest.remove_prefix(step.length);
    }
    return HandOver(result, bytes, room);
}
