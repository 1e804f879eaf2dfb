#pragma once

// What the targets share.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace fuzz
{

// Ends the program where something does not hold, which counts as a finding.
inline void Expect(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

// UTF-16 from UTF-8 of up to three bytes a unit, valid or not, so that every text of units can come about.
inline std::wstring Wide(const std::string& bytes)
{
    std::wstring text;
    for (std::size_t i = 0; i < bytes.size();) {
        const auto next = [&] { return i < bytes.size() ? static_cast<unsigned char>(bytes[i++]) : 0U; };
        const unsigned lead = next();
        unsigned unit = lead < 0xC0 ? lead : lead & (lead < 0xE0 ? 0x1F : 0xF);
        for (int trails = (lead >= 0xC0 ? 1 : 0) + (lead >= 0xE0 ? 1 : 0); trails > 0; --trails)
            unit = unit << 6 | (next() & 0x3F);
        text += static_cast<wchar_t>(unit);
    }
    return text;
}

// What C takes for the text.
template <class Text>
Text UpToZero(const Text& text)
{
    return text.substr(0, text.find(typename Text::value_type()));
}

// Bytes in memory of just their size, so that whoever goes beyond is caught.
inline std::unique_ptr<char[]> Exactly(const std::string& bytes)
{
    std::unique_ptr<char[]> exact(new char[bytes.size()]);
    std::memcpy(exact.get(), bytes.data(), bytes.size());
    return exact;
}

} // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
