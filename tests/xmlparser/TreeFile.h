#pragma once

#include <Kelpkit/XMLParser.h>

#include "support/FileContents.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace test
{

inline IXMLTreePtr NewTree()
{
    IXMLTreePtr tree;
    if (!CXMLTreeCreator::Allocate(tree))
        throw std::runtime_error("no tree");
    return tree;
}

// A file in a folder of its own, and trees made from it.
class TreeFile
{
public:
    explicit TreeFile(const std::string& bytes = "") { Write(bytes); }

    CString Path() const { return (m_folder / L"file.xml").c_str(); }
    const TempFolder& Folder() const { return m_folder; }

    void Write(const std::string& bytes) const { WriteFileBytes(m_folder / L"file.xml", bytes); }
    std::string Bytes() const { return ReadFileBytes(m_folder / L"file.xml"); }

    bool Loads() const { return NewTree()->LoadFile(Path()); }

    // The tree of the file, which must be sound.
    IXMLTreePtr Tree() const
    {
        IXMLTreePtr tree = NewTree();
        if (!tree->LoadFile(Path()))
            throw std::runtime_error("the file does not load");
        return tree;
    }

    // The text of the element at the path, which must be there.
    std::wstring Text(const wchar_t* path) const
    {
        const IXMLTreePtr tree = Tree();
        CString text;
        if (!tree->GoToPath(path) || !tree->GetText(text))
            throw std::runtime_error("no such element");
        return {text.GetString(), static_cast<std::size_t>(text.GetLength())};
    }

    // Adds a last child below the document element and saves.
    bool Add(const wchar_t* name, const std::wstring& text) const
    {
        const IXMLTreePtr tree = Tree();
        return tree->AddChild(name, CString(text.data(), static_cast<int>(text.size()))) && tree->SaveFile(Path());
    }

private:
    TempFolder m_folder;
};

// What the file holds after the tree made from it was edited and saved.
template <class Edit>
std::string Edited(const std::string& bytes, const Edit& edit)
{
    const TreeFile file(bytes);
    const IXMLTreePtr tree = file.Tree();
    edit(*tree);
    EXPECT_TRUE(tree->SaveFile(file.Path()));
    return file.Bytes();
}

inline std::string Saved(const std::string& bytes)
{
    return Edited(bytes, [](IXMLTree&) {});
}

inline int ChildCount(IXMLTree& tree)
{
    int count = -1;
    tree.GetChildCount(count);
    return count;
}

inline std::wstring TextOf(IXMLTree& tree)
{
    CString text = L"left from before";
    tree.GetText(text);
    return {text.GetString(), static_cast<std::size_t>(text.GetLength())};
}

} // namespace test
