#include "Kelpkit/XmlConfig.h"

#include "Kelpkit/XMLParser.h"

#include <cwchar>

namespace KELPKIT
{
namespace
{

CString Text(const std::wstring& text)
{
    return CString(text.data(), static_cast<int>(text.size()));
}

bool Load(const std::wstring& file, IXMLTreePtr& tree)
{
    return CXMLTreeCreator::Allocate(tree) && tree->LoadFile(file.c_str());
}

bool ReadText(IXMLTree& tree, std::wstring& value)
{
    CString text;
    const bool isRead = tree.GetText(text);
    value.assign(text.GetString(), static_cast<std::size_t>(text.GetLength()));
    return isRead;
}

// The text of a child, if it is there; the current element stays.
void ReadChild(IXMLTree& tree, const wchar_t* name, std::wstring& value)
{
    if (!tree.GoToChild(name, 0))
        return;
    ReadText(tree, value);
    tree.GoToParent();
}

bool AddLeaf(IXMLTree& tree, const wchar_t* name, const CString& text)
{
    const bool isAdded = tree.AddChild(name, text);
    if (isAdded)
        tree.GoToParent();
    return isAdded;
}

// The constants are written for readers of the file that expect them; they say nothing.
bool AddUser(IXMLTree& tree, const StUsrPwd& user)
{
    if (!tree.AddChild(L"user", L""))
        return false;
    const bool isWhole = AddLeaf(tree, L"name", Text(user.name)) && AddLeaf(tree, L"password", Text(user.password)) &&
                         AddLeaf(tree, L"pwdlength", L"6") && AddLeaf(tree, L"logintime", L"");
    tree.GoToParent();
    return isWhole;
}

} // namespace

// NOLINTNEXTLINE(modernize-pass-by-value): by contract
CXMLConfig::CXMLConfig(const std::wstring& file) : m_strFilePath(file) {}
CXMLConfig::CXMLConfig(const CXMLConfig&) = default;
CXMLConfig& CXMLConfig::operator=(const CXMLConfig&) = default;
CXMLConfig::~CXMLConfig() = default;

std::wstring CXMLConfig::GetXmlString(const wchar_t* key)
{
    std::wstring value;
    if (key != nullptr)
        GetXMLValue(key, value);
    return value;
}

int CXMLConfig::GetXmlInt(const wchar_t* key)
{
    // As _wtoi, and saturated on every runtime, which that is not.
    static_assert(sizeof(long) == sizeof(int));
    return static_cast<int>(std::wcstol(GetXmlString(key).c_str(), nullptr, 10));
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): by contract
bool CXMLConfig::WriteXmlString(std::wstring value, const wchar_t* key)
{
    return key != nullptr && SetXMLValue(key, value);
}

bool CXMLConfig::WriteXmlInt(int value, const wchar_t* key)
{
    return WriteXmlString(std::to_wstring(value), key);
}

bool CXMLConfig::GetXMLValue(const std::wstring& key, std::wstring& value)
{
    value.clear();
    IXMLTreePtr tree;
    return Load(m_strFilePath, tree) && tree->GoToPath(Text(key)) && ReadText(*tree, value);
}

bool CXMLConfig::SetXMLValue(const std::wstring& key, const std::wstring& value)
{
    const std::size_t slash = key.rfind(L'/');
    const std::wstring parent = slash == key.npos ? std::wstring() : key.substr(0, slash);
    const CString leaf = Text(slash == key.npos ? key : key.substr(slash + 1));
    IXMLTreePtr tree;
    if (!Load(m_strFilePath, tree) || !tree->GoToPath(Text(parent)))
        return false;
    // Always made anew, so it moves to the end and loses the attributes and children that it had.
    if (tree->GoToChild(leaf, 0))
        tree->RemoveCurrent();
    return tree->AddChild(leaf, Text(value)) && tree->SaveFile(m_strFilePath.c_str());
}

void CXMLConfig::GetShellXmlUsrs(std::vector<StUsrPwd>& users)
{
    IXMLTreePtr tree;
    if (!Load(m_strFilePath, tree) || !tree->GoToPath(L"usersloginfo"))
        return;
    int count = 0;
    tree->GetChildCount(count);
    for (int i = 0; i < count; ++i) {
        StUsrPwd user;
        tree->GoToChildAt(i);
        ReadChild(*tree, L"name", user.name);
        ReadChild(*tree, L"password", user.password);
        tree->GoToParent();
        users.push_back(std::move(user));
    }
}

void CXMLConfig::WriteShellXmlUsrs(const std::vector<StUsrPwd>& users)
{
    IXMLTreePtr tree;
    if (!Load(m_strFilePath, tree) || !tree->GoToPath(L"usersloginfo"))
        return;
    tree->RemoveAllChildren();
    for (const StUsrPwd& user : users) {
        if (!AddUser(*tree, user))
            return;
    }
    tree->SaveFile(m_strFilePath.c_str());
}

} // namespace KELPKIT
