#pragma once

#include "Encoding.h"

#include <optional>
#include <string_view>

namespace xmlparser
{

// The encoding that a declaration means by a name; nothing if that is not known, or is one of UTF-16's.
std::optional<Encoding> EncodingNamed(std::string_view lowerCaseName);

} // namespace xmlparser
