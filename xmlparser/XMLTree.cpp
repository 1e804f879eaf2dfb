#include "XMLTree.h"

#include "Conversion.h"
#include "File.h"
#include "Markup.h"
#include "Nodes.h"

#include "WindowsApi.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace xmlparser
{
namespace
{

// Keeps everything, and each thing as it is written. Fragments alone keep the white space outside of the document
// element; IsDocument sees to the rest.
constexpr unsigned kParseAll = pugi::parse_pi | pugi::parse_comments | pugi::parse_cdata | pugi::parse_doctype |
                               pugi::parse_declaration | pugi::parse_ws_pcdata | pugi::parse_fragment;

std::wstring_view View(const CString& text)
{
    return {text.GetString(), static_cast<std::size_t>(text.GetLength())};
}

std::vector<std::string_view> Names(std::string_view path)
{
    path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
    std::vector<std::string_view> names;
    if (path.empty())
        return names;
    std::size_t start = 0;
    for (std::size_t end = 0; (end = path.find('/', start)) != path.npos; start = end + 1)
        names.push_back(path.substr(start, end - start));
    names.push_back(path.substr(start));
    return names;
}

CString Text(std::string_view raw, bool isCData)
{
    const int size = static_cast<int>(raw.size());
    CString text;
    wchar_t* const units = text.GetBuffer(size);
    const int length = size == 0 ? 0 : ::MultiByteToWideChar(CP_UTF8, 0, raw.data(), size, units, size);
    text.ReleaseBuffer(static_cast<int>(Unescape(units, static_cast<std::size_t>(length), isCData)));
    return text;
}

} // namespace

void XMLTree::Clear()
{
    m_document.reset();
    m_encoding = {};
    m_current = m_document.root();
    m_last = {};
}

bool XMLTree::LoadFile(const CString& path)
{
    Clear();
    std::string file;
    if (!ReadWholeFile(path.GetString(), file) || !Parse(std::move(file))) {
        Clear();
        return false;
    }
    m_current = FirstElement(m_document.root());
    return true;
}

bool XMLTree::Parse(std::string file)
{
    const auto encoding = DetectEncoding(file);
    if (!encoding || !ToUtf8(*encoding, file))
        return false;
    m_encoding = *encoding;
    m_text = std::move(file);
    // The parser takes a zero byte for the end. Whether it came to the real one tells an empty comment behind it.
    m_text += "<!---->";
    if (!m_document.load_buffer_inplace(m_text.data(), m_text.size() + 1, kParseAll, pugi::encoding_utf8))
        return false;
    const pugi::xml_node end = m_document.last_child();
    if (end.type() != pugi::node_comment || *end.value() != '\0')
        return false;
    return m_document.remove_child(end) && IsDocument(m_document);
}

bool XMLTree::SaveFile(const CString& path)
{
    if (!FirstElement(m_document.root()))
        return false;
    std::string text;
    text.reserve(m_text.size() + m_text.size() / 8);
    Write(m_document, text);
    return FromUtf8(m_encoding, text) && WriteWholeFile(path.GetString(), text);
}

bool XMLTree::AddChild(const CString& name, const CString& text)
{
    const auto canHold = [this](std::wstring_view character) { return CanHold(m_encoding, character); };
    // A name has no place for references.
    if (!IsName(View(name)) || Escape(View(name), canHold) != View(name))
        return false;
    const std::string raw = ToUtf8(Escape(View(text), canHold));
    const pugi::xml_node child = AppendElement(m_current, ToUtf8(View(name)).c_str(), raw.c_str());
    if (!child)
        return false;
    m_current = child;
    m_last = {};
    return true;
}

void XMLTree::RemoveCurrent()
{
    const pugi::xml_node removed = m_current;
    if (!IsElement(removed))
        return;
    m_current = removed.parent();
    m_last = {};
    RemoveElement(removed);
}

void XMLTree::RemoveAllChildren()
{
    m_last = {};
    if (!IsElement(m_current))
        return;
    for (pugi::xml_node child = m_current.first_child(); child;) {
        const pugi::xml_node next = child.next_sibling();
        if (IsElement(child) || IsWhiteSpace(child))
            Remove(child);
        child = next;
    }
}

void XMLTree::GoToChildAt(int index)
{
    if (index < 0)
        return;
    if (!m_last.child || m_last.child.parent() != m_current || m_last.index > index)
        m_last = {FirstElement(m_current), 0};
    while (m_last.child && m_last.index < index)
        m_last = {NextElement(m_last.child), m_last.index + 1};
    if (m_last.child)
        m_current = m_last.child;
}

bool XMLTree::GoToChild(const CString& name, int index)
{
    const std::string wanted = ToUtf8(View(name));
    pugi::xml_node child = ElementNamed(wanted, m_current.first_child());
    for (; child && index > 0; --index)
        child = ElementNamed(wanted, child.next_sibling());
    if (child)
        m_current = child;
    return !child.empty();
}

bool XMLTree::GoToPath(const CString& path)
{
    const std::string text = ToUtf8(View(path));
    std::vector<std::string_view> names = Names(text);
    pugi::xml_node element = FirstElement(m_document.root());
    if (!names.empty() && names.front() == element.name() && !ElementNamed(names.front(), element.first_child()))
        names.erase(names.begin());
    for (const std::string_view name : names)
        element = ElementNamed(name, element.first_child());
    if (element)
        m_current = element;
    return !element.empty();
}

void XMLTree::GetChildCount(int& count)
{
    count = static_cast<int>(std::count_if(m_current.begin(), m_current.end(), IsElement));
}

bool XMLTree::GetText(CString& text)
{
    text.Empty();
    std::string raw;
    for (const pugi::xml_node child : m_current) {
        if (child.type() == pugi::node_cdata)
            text += Text(child.value(), true);
        if (child.type() != pugi::node_pcdata)
            continue;
        // Texts are side by side where an element between them was removed. The file will hold them as one.
        raw += child.value();
        if (child.next_sibling().type() == pugi::node_pcdata)
            continue;
        text += Text(raw, false);
        raw.clear();
    }
    return IsElement(m_current);
}

void XMLTree::GoToParent()
{
    if (IsElement(m_current.parent()))
        m_current = m_current.parent();
}

} // namespace xmlparser
