#include "support/Fuzz.h"

#include "File.h"
#include "XMLTree.h"

#include <fuzzer/FuzzedDataProvider.h>

using fuzz::Expect;
using xmlparser::XMLTree;

namespace
{

// More of them take longer and reach nothing new.
constexpr std::size_t kMostEdits = 24;

// The only file that there is.
std::string g_file;

} // namespace

namespace xmlparser
{

bool ReadWholeFile(const wchar_t* /*path*/, std::string& bytes)
{
    bytes = g_file;
    return true;
}

bool WriteWholeFile(const std::wstring& /*path*/, std::string_view bytes)
{
    g_file = bytes;
    return true;
}

} // namespace xmlparser

namespace
{

CString ToCString(const std::wstring& text)
{
    return CString(text.data(), static_cast<int>(text.size()));
}

std::wstring TextOf(IXMLTree& tree)
{
    CString text;
    tree.GetText(text);
    return {text.GetString(), static_cast<std::size_t>(text.GetLength())};
}

int ChildCount(IXMLTree& tree)
{
    int count = 0;
    tree.GetChildCount(count);
    return count;
}

// Appends everything that the interface tells of the current element.
void Tell(IXMLTree& tree, std::wstring& told)
{
    const int count = ChildCount(tree);
    told += TextOf(tree) + L'\0';
    told.append(static_cast<std::size_t>(count), L'+') += L'\0';
    for (int i = 0; i < count; ++i) {
        tree.GoToChildAt(i);
        Tell(tree, told);
        tree.GoToParent();
    }
}

std::wstring Told(IXMLTree& tree)
{
    std::wstring told;
    if (tree.GoToPath(L""))
        Tell(tree, told);
    return told;
}

// Loads what was saved, and says whether it is the same tree, which saves to the same bytes.
void ExpectRoundTrip(const std::wstring& told)
{
    const std::string saved = g_file;
    XMLTree tree;
    Expect(tree.LoadFile(L""), "what was saved loads");
    Expect(Told(tree) == told, "as the same tree");
    Expect(tree.SaveFile(L""), "it saves again");
    Expect(g_file == saved, "to the same bytes");
}

void Add(IXMLTree& tree, const std::wstring& name, const std::wstring& text)
{
    CString own;
    const bool isEmpty = !tree.GetText(own);
    const int before = ChildCount(tree);
    if (!tree.AddChild(ToCString(name), ToCString(text)))
        return;
    Expect(TextOf(tree) == text, "a text reads back as it is");
    if (isEmpty)
        return;
    tree.GoToParent();
    Expect(ChildCount(tree) == before + 1, "there is one more child");
    tree.GoToChildAt(before);
    Expect(TextOf(tree) == text, "it is the last one");
}

void Edit(IXMLTree& tree, unsigned edit, const std::wstring& name, const std::wstring& text)
{
    switch (edit % 8) {
    case 0:
        Add(tree, name, text);
        break;
    case 1:
        Add(tree, L"a", text);
        break;
    case 2:
        tree.RemoveCurrent();
        break;
    case 3:
        tree.RemoveAllChildren();
        Expect(ChildCount(tree) == 0, "no child is left");
        break;
    case 4:
        tree.GoToChild(ToCString(name), static_cast<int>(edit / 8));
        break;
    case 5:
        tree.GoToPath(ToCString(text));
        break;
    case 6:
        tree.GoToParent();
        break;
    default:
        tree.GoToChildAt(static_cast<int>(edit / 8));
    }
}

} // namespace

// Edits, a name and a text, each ended by a backslash with anything behind it but another one, and the file.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const std::string edits = input.ConsumeRandomLengthString();
    const std::wstring name = fuzz::Wide(input.ConsumeRandomLengthString());
    const std::wstring text = fuzz::Wide(input.ConsumeRandomLengthString());
    g_file = input.ConsumeRemainingBytesAsString();

    XMLTree tree;
    if (tree.LoadFile(L"")) {
        Expect(tree.SaveFile(L""), "what was loaded saves");
        ExpectRoundTrip(Told(tree));
    } else {
        Expect(Told(tree).empty() && !tree.SaveFile(L""), "what does not load leaves an empty tree");
    }
    for (const char edit : edits.substr(0, kMostEdits))
        Edit(tree, static_cast<unsigned char>(edit), name, text);
    if (tree.SaveFile(L""))
        ExpectRoundTrip(Told(tree));
    return 0;
}
