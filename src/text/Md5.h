#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <iosfwd>

namespace KELPKIT
{

// The MD5 message digest (RFC 1321).
class Md5
{
public:
    void Update(const char* bytes, std::size_t length);

    // Reads to the end and closes the stream. A stream that failed before adds nothing.
    void Update(std::ifstream& stream);

    // The digest of all bytes so far, in lower-case hexadecimal digits.
    std::array<char, 32> Digits() const;

private:
    static constexpr std::size_t kBlockSize = 64;

    void Transform(const char* block);

    std::uint32_t m_state[4] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
    std::uint64_t m_length = 0; // in bytes; what does not fill a block yet is in m_block
    char m_block[kBlockSize] = {};
};

} // namespace KELPKIT
