#include "system/IdentifyBlock.h"

#include <cstddef>

namespace KELPKIT
{
namespace
{

// Words of two bytes.
std::string TextOfWords(const char* block, std::size_t first, std::size_t last)
{
    const std::string bytes(block + 2 * first, 2 * (last + 1 - first));
    return bytes.substr(0, bytes.find('\0'));
}

} // namespace

std::string IdentifySerial(const char* block)
{
    return TextOfWords(block, 10, 19);
}

std::string IdentifyModel(const char* block)
{
    return TextOfWords(block, 27, 46);
}

} // namespace KELPKIT
