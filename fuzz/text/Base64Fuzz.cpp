#include "support/Fuzz.h"
#include "text/Base64Codec.h"
#include "text/Base64Model.h"
#include "text/Processor.h"

#include <Kelpkit/Text.h>

#include <algorithm>
#include <string_view>

using fuzz::Expect;
using KELPKIT::CBase64;

namespace
{

// What Decode writes to the least room that it asks for.
std::string Decoded(const std::string& text)
{
    const std::unique_ptr<char[]> out(new char[(text.size() + 3) / 4 * 3 + 1]);
    const int count = CBase64::Decode(fuzz::Exactly(text).get(), out.get(), static_cast<int>(text.size()));
    Expect(out[static_cast<std::size_t>(count)] == '\0', "a zero byte follows the data");
    return {out.get(), static_cast<std::size_t>(count)};
}

std::string DecodedToNewMemory(const std::string& text)
{
    char* buffer = nullptr;
    int length = 0;
    CBase64::DecodeEx(text, buffer, length);
    const std::unique_ptr<char[]> owner(buffer);
    return {buffer, static_cast<std::size_t>(length)};
}

// With the registers of each kind of processor.
void ExpectAlike(const std::string& bytes, const std::string& encoded, const std::string& decoded)
{
    namespace base64 = KELPKIT::base64;
    const std::unique_ptr<char[]> in = fuzz::Exactly(bytes);
    const std::size_t room = (bytes.size() + 3) / 4 * 3 + 1;
    const std::unique_ptr<char[]> out(new char[std::max(encoded.size(), room)]);
    for (const auto& [needed, blocks] : base64::kWays) {
        if (needed > KELPKIT::processor::Best())
            continue;
        std::fill_n(out.get(), encoded.size(), base64::kPadding);
        base64::Encode(blocks, {in.get(), bytes.size()}, out.get());
        Expect(std::string_view(out.get(), encoded.size()) == encoded, "every processor encodes alike");
        const std::size_t count = base64::Decode(blocks, {in.get(), bytes.size()}, out.get());
        Expect(std::string_view(out.get(), count) == decoded, "and decodes alike");
    }
}

} // namespace

// The bytes are both data to encode and text to decode.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(data, data + size);
    const std::string text = CBase64::Encode(fuzz::Exactly(bytes).get(), static_cast<int>(size));
    Expect(text == test::ModelEncode(bytes), "data is encoded as the model does");
    Expect(text == CBase64::Encode(bytes), "both forms of Encode agree");
    Expect(Decoded(text) == bytes, "encoded data is decoded to itself");

    const std::string decoded = test::ModelDecode(bytes);
    ExpectAlike(bytes, text, decoded);
    Expect(Decoded(bytes) == decoded, "text is decoded as the model does");
    Expect(DecodedToNewMemory(bytes) == decoded, "so it is to new memory");
    std::string upToZero;
    Expect(CBase64::DecodeEx(bytes, upToZero) == static_cast<int>(decoded.size()), "DecodeEx counts all bytes");
    Expect(upToZero == decoded.substr(0, decoded.find('\0')), "DecodeEx stores those before the first zero");
    return 0;
}
