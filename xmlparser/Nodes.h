#pragma once

#include <pugixml.hpp>

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

// Makes attributes fit for double quotes, in which they are written; those that stood in single ones may hold such.
// False if memory runs out.
bool EscapeQuotes(const pugi::xml_document& document);

// Removes a node with all that is in it.
void Remove(pugi::xml_node node);

// A new last child element. Where the parent's children stand on lines of their own, so does it. Null if memory runs
// out.
pugi::xml_node AppendElement(pugi::xml_node parent, const char* name);

} // namespace xmlparser
