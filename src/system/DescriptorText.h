#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace KELPKIT
{

// The text at an offset of a storage device descriptor, decoded. Empty where the offset is 0 or outside the descriptor,
// as negative ones are, or where the text does not end in it.
std::string DescriptorText(const char* descriptor, std::size_t size, std::uint32_t offset);

// Some drivers give a text in hexadecimal digits. What reads as such is decoded, "414243" to "ABC": white space counts
// as 0, an unpaired last digit is dropped, and each byte must be zero or printable ASCII. Any other text stays as it is,
// or is empty where it is not all printable.
std::string DecodeDescriptorText(const std::string& text);

} // namespace KELPKIT
