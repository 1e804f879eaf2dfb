#include "support/Fuzz.h"
#include "text/Processor.h"
#include "text/Utf8.h"

#include <Kelpkit/Text.h>

#include <windows.h>

#include <optional>

using fuzz::Expect;
namespace utf8 = KELPKIT::utf8;

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

// In one piece; nothing where the text is refused.
template <class Result, class Text, class Convert>
std::optional<Result> Converted(const utf8::Blocks& blocks, const Text& text, const Convert& convert)
{
    Result result(3 * text.size() + utf8::kLeastRoom, '\0');
    const auto* in = text.c_str();
    const auto* const end = convert(blocks, in, in + text.size(), result.data(), result.data() + result.size());
    if (end == nullptr)
        return {};
    Expect(in == text.c_str() + text.size(), "all of it is read");
    return result.substr(0, static_cast<std::size_t>(end - result.data()));
}

// With the registers of each kind of processor.
void ExpectAlike(const std::string& text, const std::wstring& wide)
{
    const auto units = Converted<std::wstring>(utf8::kNoBlocks, text, utf8::Decode);
    Expect(!units || *units == wide, "decoded as the system does");
    const auto bytes = Converted<std::string>(utf8::kNoBlocks, wide, utf8::Encode);
    Expect(!units || bytes == text, "and encoded to what was decoded");
    for (const auto& [needed, blocks] : utf8::kWays) {
        if (needed > KELPKIT::processor::Best())
            continue;
        Expect(Converted<std::wstring>(blocks, text, utf8::Decode) == units, "every processor decodes alike");
        Expect(Converted<std::string>(blocks, wide, utf8::Encode) == bytes, "and encodes alike");
    }
}

} // namespace

// The bytes are UTF-8, ANSI, and the units of UTF-16; a first byte over 224 repeats them.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string bytes(data + 1, data + size);
    std::string text = bytes;
    for (int times = data[0] - 224; times > 0 && text.size() < kEnough; --times)
        text += bytes;
    Expect(KELPKIT::UTF8ToUnicode(text) == SystemWide(CP_UTF8, text), "UTF-8 to UTF-16");
    Expect(KELPKIT::AnsiToUnicode(text) == SystemWide(CP_ACP, text), "ANSI to UTF-16");
    ExpectAlike(bytes, SystemWide(CP_UTF8, bytes));
    for (const std::wstring& wide : {fuzz::Wide(text), SystemWide(CP_UTF8, text)}) {
        Expect(KELPKIT::UnicodeToUTF8(wide) == SystemNarrow(CP_UTF8, wide), "UTF-16 to UTF-8");
        Expect(KELPKIT::UnicodeToAnsi(wide) == SystemNarrow(CP_ACP, wide), "UTF-16 to ANSI");
    }
    return 0;
}
