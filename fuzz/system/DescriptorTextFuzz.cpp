#include "support/Fuzz.h"
#include "system/DescriptorText.h"

#include <fuzzer/FuzzedDataProvider.h>

using fuzz::Expect;

namespace
{

int ModelDigit(char c)
{
    const std::string digits = "0123456789ABCDEF";
    if (std::string(" \t\n\v\f\r").find(c) != std::string::npos)
        return 0;
    if (c >= 'a' && c <= 'f')
        c = static_cast<char>(c - 'a' + 'A');
    const std::size_t value = digits.find(c);
    return value == std::string::npos ? -1 : static_cast<int>(value);
}

bool IsPrintable(int c)
{
    return c >= 32 && c < 127;
}

std::string ModelDecoded(const std::string& text)
{
    bool isHex = true;
    bool isPrintable = true;
    for (const char c : text) {
        isHex = isHex && ModelDigit(c) >= 0;
        isPrintable = isPrintable && IsPrintable(c);
    }
    std::string bytes;
    for (std::size_t i = 0; isHex && i + 1 < text.size(); i += 2) {
        const int byte = ModelDigit(text[i]) * 16 + ModelDigit(text[i + 1]);
        isHex = byte == 0 || IsPrintable(byte);
        bytes += static_cast<char>(byte);
    }
    return isHex ? bytes : isPrintable ? text : "";
}

} // namespace

// The descriptor; the last four bytes are the offset.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const auto anyOffset = input.ConsumeIntegral<std::uint32_t>();
    const std::string descriptor = input.ConsumeRemainingBytesAsString();
    const std::unique_ptr<char[]> bytes = fuzz::Exactly(descriptor);
    for (const std::uint32_t offset : {anyOffset, anyOffset % 64}) {
        const std::size_t end = descriptor.find('\0', offset);
        const std::string text = offset == 0 || end == std::string::npos
                                     ? std::string()
                                     : ModelDecoded(descriptor.substr(offset, end - offset));
        Expect(KELPKIT::DescriptorText(bytes.get(), descriptor.size(), offset) == text, "read as the model does");
    }
    Expect(KELPKIT::DecodeDescriptorText(descriptor) == ModelDecoded(descriptor), "decoded as the model does");
    return 0;
}
