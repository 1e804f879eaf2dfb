#include "support/Fuzz.h"

#include <Kelpkit/Text.h>

#include <windows.h>

using fuzz::Expect;

namespace
{

// More bytes than the buffers behind the conversions hold.
constexpr std::size_t kEnough = 4096;

// The conversions in one call of the system's each.
std::wstring SystemWide(UINT codePage, const std::string& text)
{
    const std::string upToZero = fuzz::UpToZero(text);
    std::wstring units(upToZero.size(), L'\0');
    const int count = ::MultiByteToWideChar(codePage, 0, upToZero.data(), static_cast<int>(upToZero.size()),
                                            units.data(), static_cast<int>(units.size()));
    return units.substr(0, static_cast<std::size_t>(count));
}

std::string SystemNarrow(UINT codePage, const std::wstring& text)
{
    const std::wstring upToZero = fuzz::UpToZero(text);
    std::string bytes(3 * upToZero.size(), '\0');
    const int count = ::WideCharToMultiByte(codePage, 0, upToZero.data(), static_cast<int>(upToZero.size()),
                                            bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr);
    return bytes.substr(0, static_cast<std::size_t>(count));
}

} // namespace

// The bytes are UTF-8, ANSI, and the units of UTF-16, repeated.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string bytes(data + 1, data + size);
    std::string text;
    for (int times = data[0] % 32; times >= 0 && text.size() < kEnough; --times)
        text += bytes;
    Expect(KELPKIT::UTF8ToUnicode(text) == SystemWide(CP_UTF8, text), "UTF-8 to UTF-16");
    Expect(KELPKIT::AnsiToUnicode(text) == SystemWide(CP_ACP, text), "ANSI to UTF-16");
    for (const std::wstring& wide : {fuzz::Wide(text), SystemWide(CP_UTF8, text)}) {
        Expect(KELPKIT::UnicodeToUTF8(wide) == SystemNarrow(CP_UTF8, wide), "UTF-16 to UTF-8");
        Expect(KELPKIT::UnicodeToAnsi(wide) == SystemNarrow(CP_ACP, wide), "UTF-16 to ANSI");
    }
    return 0;
}
