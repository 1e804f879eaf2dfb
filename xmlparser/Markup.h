#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace xmlparser
{

// Whether the text is a Name (XML 1.0, fifth edition, production 5).
bool IsName(std::wstring_view text);

// Whether a text is not empty and nothing but white space (production 3), and if so, whether it has a line end.
bool IsAllWhiteSpace(const char* text);
bool IsIndentingWhiteSpace(const char* text);

// A text as it stands in a file: "<", ">" and "&" as entities; as character references what a reader would change
// (carriage returns), what XML has no character for (most control characters, halves of a surrogate pair), and what
// canHold refuses of characters beyond ASCII.
std::wstring Escape(std::wstring_view text, const std::function<bool(std::wstring_view)>& canHold);

// The reverse, in place: line ends become "\n" and, outside of CDATA sections, entities and character references what
// they stand for; what is none stays. Returns the new length.
std::size_t Unescape(wchar_t* text, std::size_t length, bool isCData);

} // namespace xmlparser
