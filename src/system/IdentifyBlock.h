#pragma once

#include <string>

namespace KELPKIT
{

// Texts of the 512 bytes by which an ATA or ATAPI drive identifies itself, up to their first zero and with the spaces
// that fill them up. By contract the bytes stay as they stand in the block: drives store two characters in each word
// with the second one first, so the model "ST1000DM003" reads "TS0100MD00 3".
std::string IdentifySerial(const char* block);
std::string IdentifyModel(const char* block);

} // namespace KELPKIT
