#include "Nodes.h"

#include "Markup.h"

#include <string>

namespace xmlparser
{
namespace
{

bool IsElementNamed(std::string_view name, pugi::xml_node node)
{
    const char* own = node.name();
    for (const char c : name) {
        if (*own == '\0' || *own++ != c)
            return false;
    }
    return *own == '\0' && IsElement(node);
}

// The node behind it in document order.
pugi::xml_node Next(pugi::xml_node node)
{
    if (node.first_child())
        return node.first_child();
    while (node && !node.next_sibling())
        node = node.parent();
    return node.next_sibling();
}

} // namespace

bool IsElement(pugi::xml_node node)
{
    return node.type() == pugi::node_element;
}

bool IsWhiteSpace(pugi::xml_node node)
{
    return node.type() == pugi::node_pcdata && IsAllWhiteSpace(node.value());
}

pugi::xml_node FirstElement(pugi::xml_node parent)
{
    return parent.find_child(IsElement);
}

pugi::xml_node NextElement(pugi::xml_node node)
{
    do {
        node = node.next_sibling();
    } while (node && !IsElement(node));
    return node;
}

pugi::xml_node ElementNamed(std::string_view name, pugi::xml_node node)
{
    while (node && !IsElementNamed(name, node))
        node = node.next_sibling();
    return node;
}

bool IsDocument(const pugi::xml_document& document)
{
    int elements = 0;
    for (const pugi::xml_node node : document) {
        if (IsElement(node))
            ++elements;
        else if (node.type() == pugi::node_cdata || (node.type() == pugi::node_pcdata && !IsWhiteSpace(node)) ||
                 (node.type() == pugi::node_declaration && node.previous_sibling()))
            return false;
    }
    return elements == 1;
}

bool EscapeQuotes(const pugi::xml_document& document)
{
    for (pugi::xml_node node = document.first_child(); node; node = Next(node)) {
        for (pugi::xml_attribute attribute : node.attributes()) {
            const std::string_view value = attribute.value();
            if (value.find('"') == value.npos)
                continue;
            std::string escaped;
            for (const char c : value)
                c == '"' ? escaped.append("&quot;") : escaped.append(1, c);
            if (!attribute.set_value(escaped.c_str()))
                return false;
        }
    }
    return true;
}

// From the leaves upward: the parser's own removal recurses, which deep trees would make overflow the stack.
void Remove(pugi::xml_node node)
{
    for (pugi::xml_node leaf = node; true;) {
        while (leaf.first_child())
            leaf = leaf.first_child();
        pugi::xml_node parent = leaf.parent();
        parent.remove_child(leaf);
        if (leaf == node)
            return;
        leaf = parent;
    }
}

pugi::xml_node AppendElement(pugi::xml_node parent, const char* name)
{
    const pugi::xml_node end = parent.last_child();
    pugi::xml_node child = IsWhiteSpace(end) ? parent.insert_child_before(pugi::node_element, end)
                                             : parent.append_child(pugi::node_element);
    if (!child.set_name(name)) {
        parent.remove_child(child);
        return {};
    }
    const pugi::xml_node indentation = parent.first_child();
    if (child.next_sibling() && IsWhiteSpace(indentation) && !IsWhiteSpace(child.previous_sibling()))
        parent.insert_copy_before(indentation, child);
    else if (child.next_sibling() && indentation == child)
        parent.insert_copy_before(end, child);
    return child;
}

} // namespace xmlparser
