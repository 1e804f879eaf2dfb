#pragma once

#include "Kelpkit/Mfc.h"

#include <string>
#include <vector>

namespace KELPKIT
{

// Whether a model that WMI names is matched with no drive: one that ends in " ATA Device". By contract so is one of
// exactly 10 characters, in which the suffix is "found" at -1, its length less 11; and a model that holds the suffix
// twice is not.
bool IsLeftOut(const CString& model);

// The model that belongs to a drive's name: an entry equal to it, else the first that contains it, else the name
// itself. The entry is removed, so that two drives of one name take one each. An empty name is in every entry.
CString TakeModel(std::vector<CString>& models, const CString& name);

// The name with its characters exchanged in pairs, as in an identify block. By contract the bytes of the wide characters
// are exchanged, and of these only as many as there are characters. A name of two or more ASCII characters gives an empty
// text, as the first byte is then a zero.
std::string SwappedName(const CString& name);

// Exchanges each byte with the next, an odd last one with a space, up to the first zero of the result: "abc" gives
// "ba c".
std::string SwapPairs(std::string bytes);

// Model and serial number, without spaces around them, joined by a hyphen.
CString JoinDiskId(CString model, CString serial);

} // namespace KELPKIT
