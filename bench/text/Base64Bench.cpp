#include "Bench.h"
#include "TextBench.h"
#include "Texts.h"

#include "Kelpkit/Text.h"

#include <boost/beast/core/detail/base64.hpp>

#include <windows.h>

#include <wincrypt.h>

#include <cstddef>
#include <memory>
#include <string>

namespace bench
{
namespace
{

namespace beast = boost::beast::detail::base64;

int Length(const std::string& text)
{
    return static_cast<int>(text.size());
}

std::string EncodeByBeast(const std::string& bytes)
{
    std::string text(beast::encoded_size(bytes.size()), '\0');
    text.resize(beast::encode(text.data(), bytes.data(), bytes.size()));
    return text;
}

std::string EncodeBySystem(const std::string& bytes)
{
    const auto* const data = reinterpret_cast<const BYTE*>(bytes.data());
    const auto length = static_cast<DWORD>(bytes.size());
    constexpr DWORD kFormat = CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF;
    DWORD size = 0;
    ::CryptBinaryToStringA(data, length, kFormat, nullptr, &size);
    std::string text(size, '\0');
    ::CryptBinaryToStringA(data, length, kFormat, text.data(), &size);
    text.resize(size);
    return text;
}

void Encode(const std::string& size, std::size_t bytes, double goal)
{
    const std::string& data = Keep(RandomBytes(bytes));
    Comparison("Base64 encode", size)
        .Kelpkit([&data] { return KELPKIT::CBase64::Encode(data.data(), Length(data)); })
        .Peer(
            "Boost.Beast", [&data] { return EncodeByBeast(data); }, goal)
        .Peer("CryptBinaryToString", [&data] { return EncodeBySystem(data); });
}

void Decode(const std::string& size, std::size_t bytes, double goal)
{
    const std::string& text = Keep(EncodeByBeast(RandomBytes(bytes)));
    const auto buffer = std::make_shared<std::string>(text.size(), '\0');
    Comparison("Base64 decode to buffer", size)
        .Kelpkit([&text, buffer] { return KELPKIT::CBase64::Decode(text.data(), buffer->data(), Length(text)); })
        .Peer(
            "Boost.Beast", [&text, buffer] { return beast::decode(buffer->data(), text.data(), text.size()).first; },
            goal)
        .Peer("CryptStringToBinary", [&text, buffer] {
            auto length = static_cast<DWORD>(buffer->size());
            ::CryptStringToBinaryA(text.data(), static_cast<DWORD>(text.size()), CRYPT_STRING_BASE64,
                                   reinterpret_cast<BYTE*>(buffer->data()), &length, nullptr, nullptr);
            return length;
        });
}

// With line ends as in mail. The peer knows none, and is given the same text without.
void DecodeLines(const std::string& size, std::size_t bytes, double goal)
{
    constexpr std::size_t kLine = 76;
    const std::string& plain = Keep(EncodeByBeast(RandomBytes(bytes)));
    std::string lines;
    for (std::size_t at = 0; at < plain.size(); at += kLine)
        lines += plain.substr(at, kLine) + "\r\n";
    const std::string& text = Keep(lines);
    const auto buffer = std::make_shared<std::string>(text.size(), '\0');
    Comparison("Base64 decode lines to buffer", size)
        .Kelpkit([&text, buffer] { return KELPKIT::CBase64::Decode(text.data(), buffer->data(), Length(text)); })
        .Peer(
            "Boost.Beast, without line ends",
            [&plain, buffer] { return beast::decode(buffer->data(), plain.data(), plain.size()).first; }, goal);
}

} // namespace

void RegisterBase64()
{
    Encode("64 B", 64, 0);
    Encode("1 KiB", 1024, 0.20);
    Encode("1 MiB", 1 << 20, 0);
    Decode("64 B", 64, 0);
    Decode("1 KiB", 1024, 0.05);
    Decode("1 MiB", 1 << 20, 0.03);
    DecodeLines("1 KiB", 1024, 0.11);
    DecodeLines("1 MiB", 1 << 20, 0.11);

    Growth("Base64 encode, bytes", [](std::size_t size) {
        const std::string& data = Keep(RandomBytes(size));
        return [&data] { return KELPKIT::CBase64::Encode(data.data(), Length(data)); };
    });
    Growth("Base64 decode to a string, characters", [](std::size_t size) {
        const std::string& text = Keep(EncodeByBeast(RandomBytes(size / 4 * 3)));
        return [&text] {
            std::string bytes;
            KELPKIT::CBase64::DecodeEx(text, bytes);
            return bytes;
        };
    });
}

} // namespace bench
