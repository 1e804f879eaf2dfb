#include "Nodes.h"

#include "Markup.h"

#include <cstring>

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

// Whether the element's white space is there to be looked at, and not its author's.
bool MayIndent(pugi::xml_node element)
{
    while (element && element.attribute("xml:space").empty())
        element = element.parent();
    return std::strcmp(element.attribute("xml:space").value(), "preserve") != 0;
}

bool IsIndentation(pugi::xml_node node)
{
    return node.type() == pugi::node_pcdata && IsIndentingWhiteSpace(node.value()) && MayIndent(node.parent());
}

// Gathers many short texts into one; much faster than the string itself.
class Output
{
public:
    explicit Output(std::string& text) : m_text(text) {}

    void Put(char c)
    {
        if (m_used == sizeof m_chunk)
            Flush();
        m_chunk[m_used++] = c;
    }
    void Put(const char* text)
    {
        while (*text != '\0')
            Put(*text++);
    }
    void Flush()
    {
        m_text.append(m_chunk, m_used);
        m_used = 0;
    }

private:
    std::string& m_text;
    std::size_t m_used = 0;
    char m_chunk[4096];
};

template <class... Pieces>
void Put(Output& output, const Pieces&... pieces)
{
    (output.Put(pieces), ...);
}

void WriteAttributes(pugi::xml_node node, Output& output)
{
    for (const pugi::xml_attribute attribute : node.attributes()) {
        // They are held as they stood in the file: a double quote can only come from between single ones.
        const char quote = std::strchr(attribute.value(), '"') == nullptr ? '"' : '\'';
        Put(output, ' ', attribute.name(), '=', quote, attribute.value(), quote);
    }
}

void WriteStart(pugi::xml_node node, Output& output)
{
    switch (node.type()) {
    case pugi::node_element:
        if (!IsElement(node))
            break;
        Put(output, '<', node.name());
        WriteAttributes(node, output);
        Put(output, node.first_child() ? ">" : "/>");
        break;
    case pugi::node_cdata:
        Put(output, "<![CDATA[", node.value(), "]]>");
        break;
    case pugi::node_comment:
        Put(output, "<!--", node.value(), "-->");
        break;
    case pugi::node_pi:
        Put(output, "<?", node.name(), *node.value() == '\0' ? "" : " ", node.value(), "?>");
        break;
    case pugi::node_declaration:
        Put(output, "<?", node.name());
        WriteAttributes(node, output);
        Put(output, "?>");
        break;
    case pugi::node_doctype:
        Put(output, "<!DOCTYPE ", node.value(), '>');
        break;
    default:
        Put(output, node.value());
    }
}

} // namespace

bool IsElement(pugi::xml_node node)
{
    // One without a name was removed.
    return node.type() == pugi::node_element && *node.name() != '\0';
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

// From the leaves upward: the parser's own removal recurses, which deep trees would make overflow the stack.
void Remove(pugi::xml_node node)
{
    for (pugi::xml_node leaf = node; true;) {
        while (leaf.first_child())
            leaf = leaf.first_child();
        pugi::xml_node parent = leaf.parent();
        if (!parent.remove_child(leaf)) {
            // The parser's removal may need memory, which ran out; to empty a node needs none.
            node.set_name("");
            node.set_value("");
            return;
        }
        if (leaf == node)
            return;
        leaf = parent;
    }
}

void RemoveElement(pugi::xml_node element)
{
    const pugi::xml_node parent = element.parent();
    const pugi::xml_node before = element.previous_sibling();
    if (IsIndentation(before) && (FirstElement(parent) != element || NextElement(element)))
        Remove(before);
    Remove(element);
}

pugi::xml_node AppendElement(pugi::xml_node parent, const char* name, const char* text)
{
    const pugi::xml_node end = parent.last_child();
    const bool isIndented = IsIndentation(end);
    const pugi::xml_node first = parent.first_child();
    pugi::xml_node child =
        isIndented ? parent.insert_child_before(pugi::node_element, end) : parent.append_child(pugi::node_element);
    const bool needsLine = isIndented && IsIndentation(first) && !IsIndentation(child.previous_sibling());
    const pugi::xml_node line = needsLine ? parent.insert_copy_before(first, child) : pugi::xml_node();
    // Any of these may find no memory. Null nodes do nothing.
    if (child.set_name(name) && (!needsLine || IsIndentation(line)) &&
        (*text == '\0' || child.append_child(pugi::node_pcdata).set_value(text)))
        return child;
    Remove(line);
    Remove(child);
    return {};
}

void Write(const pugi::xml_document& document, std::string& text)
{
    Output output(text);
    for (pugi::xml_node node = document.first_child(); node; node = node.next_sibling()) {
        WriteStart(node, output);
        while (IsElement(node) && node.first_child()) {
            node = node.first_child();
            WriteStart(node, output);
        }
        while (!node.next_sibling() && IsElement(node.parent())) {
            node = node.parent();
            Put(output, "</", node.name(), '>');
        }
    }
    output.Flush();
}

} // namespace xmlparser
