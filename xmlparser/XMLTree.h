#pragma once

#include "Encoding.h"
#include "Kelpkit/XMLParser.h"

#include <pugixml.hpp>

#include <string>

namespace xmlparser
{

// The tree holds texts and attributes as they stand in the file, references and all, so that a save gives them back.
class XMLTree final : public IXMLTree
{
public:
    bool LoadFile(const CString& path) override;
    bool SaveFile(const CString& path) override;
    bool AddChild(const CString& name, const CString& text) override;
    void RemoveCurrent() override;
    void RemoveAllChildren() override;
    void GoToChildAt(int index) override;
    bool GoToChild(const CString& name, int index) override;
    bool GoToPath(const CString& path) override;
    void GetChildCount(int& count) override;
    bool GetText(CString& text) override;
    void GoToParent() override;

private:
    void Clear();
    bool Parse(std::string file);

    pugi::xml_document m_document;
    // The parser works in it, and the tree points into it.
    std::string m_text;
    Encoding m_encoding;
    // The document itself while the tree is empty.
    pugi::xml_node m_current = m_document.root();

    // The child that GoToChildAt went to last, so that a walk over all children is linear.
    struct {
        pugi::xml_node child;
        int index;
    } m_last = {};
};

} // namespace xmlparser
