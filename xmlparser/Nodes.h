#pragma once

#include <pugixml.hpp>

#include <string>
#include <string_view>

namespace xmlparser
{

bool IsElement(pugi::xml_node node);

// Whether the node is a text of white space.
bool IsWhiteSpace(pugi::xml_node node);

pugi::xml_node FirstElement(pugi::xml_node parent);
pugi::xml_node NextElement(pugi::xml_node node);

// The node itself or the first of its next siblings that is an element with the name.
pugi::xml_node ElementNamed(std::string_view name, pugi::xml_node node);

// One document element; beside it no text, and no declaration but at the start.
bool IsDocument(const pugi::xml_document& document);

// Removes a node with all that is in it. Where memory runs out, the node stays behind empty: a text without characters
// or an element without a name, which none of these functions treats as an element and Write leaves out.
void Remove(pugi::xml_node node);

// Removes an element, with its line where it stands on one of its own and others are left to take the indentation from.
void RemoveElement(pugi::xml_node element);

// A new last child element with a text, which may be empty. Where the parent's children stand on lines of their own, so
// does it. Null if memory runs out; the parent is then as it was.
pugi::xml_node AppendElement(pugi::xml_node parent, const char* name, const char* text);

// The document as it stands in a file, in UTF-8.
void Write(const pugi::xml_document& document, std::string& text);

} // namespace xmlparser
