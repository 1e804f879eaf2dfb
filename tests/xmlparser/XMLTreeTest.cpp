#include <Kelpkit/XMLParser.h>

#include "support/FolderTree.h"
#include "support/Random.h"
#include "xmlparser/TreeFile.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace
{

using test::ChildCount;
using test::Edited;
using test::NewTree;
using test::TextOf;
using test::TreeFile;

} // namespace

TEST(XMLTree, IsMadeEmpty)
{
    const IXMLTreePtr tree = NewTree();
    CString text = L"x";
    EXPECT_FALSE(tree->GetText(text));
    EXPECT_EQ(text, L"");
    EXPECT_EQ(ChildCount(*tree), 0);
    EXPECT_FALSE(tree->GoToPath(L""));
    EXPECT_FALSE(tree->GoToChild(L"a", 0));
    tree->GoToChildAt(0);
    tree->GoToParent();
    tree->RemoveCurrent();
    tree->RemoveAllChildren();
}

TEST(XMLTree, ThatIsEmptyIsNotSaved)
{
    const test::TempFolder folder;
    EXPECT_FALSE(NewTree()->SaveFile((folder / L"new.xml").c_str()));
    EXPECT_FALSE(test::Exists(folder / L"new.xml"));
}

TEST(XMLTree, IsBuiltFromNothing)
{
    const test::TempFolder folder;
    const IXMLTreePtr tree = NewTree();
    EXPECT_TRUE(tree->AddChild(L"root", L""));
    EXPECT_TRUE(tree->AddChild(L"child", L"中"));
    EXPECT_TRUE(tree->SaveFile((folder / L"new.xml").c_str()));
    EXPECT_EQ(test::ReadFileBytes(folder / L"new.xml"), "<root><child>中</child></root>");
}

TEST(XMLTree, IsReplacedByAllocate)
{
    IXMLTreePtr tree = NewTree();
    EXPECT_TRUE(tree->AddChild(L"root", L""));
    EXPECT_TRUE(CXMLTreeCreator::Allocate(tree));
    EXPECT_FALSE(tree->GoToPath(L""));
}

TEST(XMLTree, FindsElementsByPath)
{
    const TreeFile file("<config><?server pi?><server id='1'><host>h</host></server><server><port>1</port></server>"
                        "<名>中</名></config>");
    EXPECT_EQ(file.Text(L"server/host"), L"h");
    EXPECT_EQ(file.Text(L"/server/host"), L"h");
    EXPECT_EQ(file.Text(L"//server/host"), L"h");
    EXPECT_EQ(file.Text(L"config/server/host"), L"h");
    EXPECT_EQ(file.Text(L"名"), L"中");
    const IXMLTreePtr tree = file.Tree();
    for (const wchar_t* path : {L"", L"/", L"config", L"/config"}) {
        EXPECT_TRUE(tree->GoToPath(L"server"));
        EXPECT_TRUE(tree->GoToPath(path)) << path;
        EXPECT_EQ(ChildCount(*tree), 3) << path;
    }
    EXPECT_TRUE(tree->GoToPath(L"server"));
    // The first of each name: the port stands in the second one.
    for (const wchar_t* path : {L"server/port", L"host", L"server/", L"server//host", L"/ server", L"Server",
                                L"config/config", L"#text", L"server/host/h", L"."})
        EXPECT_FALSE(tree->GoToPath(path)) << path;
    EXPECT_EQ(ChildCount(*tree), 1) << "a failed move leaves the current element";
}

TEST(XMLTree, PrefersAChildThatIsNamedLikeTheDocumentElement)
{
    const TreeFile file("<a>outer<a>inner<b>deep</b></a><b>flat</b></a>");
    EXPECT_EQ(file.Text(L"a"), L"inner");
    EXPECT_EQ(file.Text(L"a/b"), L"deep");
    EXPECT_EQ(file.Text(L""), L"outer");
}

TEST(XMLTree, GoesToChildrenByIndexAndName)
{
    const TreeFile file("<r> text <!-- c --><a>0</a><b>1</b><?a pi?><a>2</a><![CDATA[x]]></r>");
    const IXMLTreePtr tree = file.Tree();
    ASSERT_EQ(ChildCount(*tree), 3);
    for (const int index : {0, 1, 2, 1, 0, 2}) {
        tree->GoToChildAt(index);
        EXPECT_EQ(TextOf(*tree), std::to_wstring(index));
        tree->GoToParent();
    }
    for (const int index : {-1, 3, INT_MAX, INT_MIN}) {
        tree->GoToChildAt(index);
        EXPECT_EQ(ChildCount(*tree), 3) << index;
    }
    EXPECT_TRUE(tree->GoToChild(L"a", 0));
    EXPECT_EQ(TextOf(*tree), L"0");
    tree->GoToParent();
    EXPECT_TRUE(tree->GoToChild(L"a", 1));
    EXPECT_EQ(TextOf(*tree), L"2");
    tree->GoToParent();
    EXPECT_FALSE(tree->GoToChild(L"a", 2));
    EXPECT_TRUE(tree->GoToChild(L"b", -1));
    tree->GoToParent();
    EXPECT_FALSE(tree->GoToChild(L"", 0));
    EXPECT_FALSE(tree->GoToChild(L"c", 0));
    tree->GoToParent();
    EXPECT_EQ(ChildCount(*tree), 3) << "the document element has no parent";
}

TEST(XMLTree, GoesToChildrenOfAChildByIndex)
{
    const TreeFile file("<r><a>0</a><b><c>1</c><d>2</d><e>3</e></b><f>4</f></r>");
    const IXMLTreePtr tree = file.Tree();
    tree->GoToChildAt(1);
    tree->GoToChildAt(1);
    EXPECT_EQ(TextOf(*tree), L"2");
    tree->GoToParent();
    tree->GoToChildAt(2);
    EXPECT_EQ(TextOf(*tree), L"3");
    tree->GoToParent();
    tree->GoToParent();
    tree->GoToChildAt(2);
    EXPECT_EQ(TextOf(*tree), L"4");
}

TEST(XMLTree, GoesToTheRightChildAfterEdits)
{
    const TreeFile file("<r><a/><b/><c/><d/></r>");
    const IXMLTreePtr tree = file.Tree();
    tree->GoToChildAt(2);
    tree->RemoveCurrent();
    tree->GoToChildAt(2);
    EXPECT_TRUE(tree->AddChild(L"in_d", L"")) << "d is the third now";
    tree->GoToParent();
    tree->GoToParent();
    tree->GoToChildAt(1);
    EXPECT_TRUE(tree->AddChild(L"in_b", L""));
    tree->GoToParent();
    tree->RemoveAllChildren();
    tree->GoToParent();
    EXPECT_TRUE(tree->SaveFile(file.Path()));
    EXPECT_EQ(file.Bytes(), "<r><a/><b/><d><in_d/></d></r>");
}

TEST(XMLTree, ReadsAnElementsOwnText)
{
    const TreeFile file("<r> a<b>not this</b>b<!-- nor this --><![CDATA[<c> &amp; ]]>d </r>");
    EXPECT_EQ(file.Text(L""), L" ab<c> &amp; d ");
}

TEST(XMLTree, ReadsAnEmptyTextAndAMissingOneAlike)
{
    const TreeFile file("<r><a/><b></b><c><d/></c><e><![CDATA[]]></e></r>");
    for (const wchar_t* path : {L"", L"a", L"b", L"c", L"e"})
        EXPECT_EQ(file.Text(path), L"") << path;
}

TEST(XMLTree, ResolvesReferences)
{
    const TreeFile file("<r><a>&lt;&gt;&amp;&quot;&apos;</a><b>&#65;&#x41;&#x4e2D;&#128512;&#13;&#10;&#9;</b>"
                        "<c>&unknown; &; & &#; &#x; &#xG; &#X41; &#65 &#1114112; &#99999999999999999999; &lt</c>"
                        "<d>&amp;lt;</d></r>");
    EXPECT_EQ(file.Text(L"a"), L"<>&\"'");
    EXPECT_EQ(file.Text(L"b"), L"AA中😀\r\n\t");
    EXPECT_EQ(file.Text(L"c"), L"&unknown; &; & &#; &#x; &#xG; &#X41; &#65 &#1114112; &#99999999999999999999; &lt");
    EXPECT_EQ(file.Text(L"d"), L"&lt;");
}

TEST(XMLTree, ReadsLineEndsOfTheFileAsLineFeeds)
{
    const TreeFile file("<r>1\r\n2\r3\n4\r\r\n<![CDATA[5\r\n]]>\r</r>");
    EXPECT_EQ(file.Text(L""), L"1\n2\n3\n4\n\n5\n\n");
}

TEST(XMLTree, GivesTextsBackCharacterForCharacter)
{
    const std::vector<std::wstring> texts = {
        L" ",
        L"  both ends  ",
        L"\t",
        L"\n",
        L"\r",
        L"\r\n",
        L"a\rb\nc\r\nd\te",
        L"\"'",
        L"& < > ]]>",
        L"&amp;",
        L"&#65;",
        L"<![CDATA[x]]>",
        L"<!-- x -->",
        L"中文 ü é €",
        L"😀\U0010FFFF",
        std::wstring(L"a\0b", 3),
        L"\x1\x1F\x7F\x85\x2028",
        L"\xD800",
        L"\xDC00\xD800",
        L"\xFFFE\xFFFF\xFEFF",
        L"\xFEFF",
        std::wstring(1 << 20, L'x'),
        std::wstring(1 << 20, L'中'),
        std::wstring(1 << 20, L'&'),
    };
    for (const std::string& declaration :
         {std::string(), std::string(R"(<?xml version="1.0" encoding="GB2312"?>)"), std::string("\xEF\xBB\xBF")}) {
        const TreeFile file(declaration + "<r/>");
        for (const std::wstring& text : texts) {
            ASSERT_TRUE(file.Add(L"a", text));
            EXPECT_EQ(file.Text(L"a") == text, true) << text.substr(0, 40);
            file.Write(declaration + "<r/>");
        }
    }
}

TEST(XMLTree, GivesRandomTextsBack)
{
    test::Random random(4711);
    const TreeFile file;
    for (int round = 0; round < 200; ++round) {
        std::wstring text(random.Below(50), L'\0');
        for (wchar_t& unit : text)
            unit = static_cast<wchar_t>(random.Below(random.Below(2) == 0 ? 0x80 : 0x10000));
        file.Write(round % 2 == 0 ? "<r/>" : "<?xml version='1.0' encoding='Big5'?><r/>");
        ASSERT_TRUE(file.Add(L"a", text));
        ASSERT_EQ(file.Text(L"a"), text);
    }
}

TEST(XMLTree, WritesReferencesWhereAReaderWouldChangeTheText)
{
    const TreeFile file("<r/>");
    EXPECT_TRUE(file.Add(L"a", L"<&>\"'\t\r\n\x1 ]]>"));
    EXPECT_EQ(file.Bytes(), "<r><a>&lt;&amp;&gt;\"'\t&#xD;\n&#x1; ]]&gt;</a></r>");
}

TEST(XMLTree, AddsChildrenBehindTheOthers)
{
    EXPECT_EQ(Edited("<r><a/>text<!-- c --></r>", [](IXMLTree& tree) { EXPECT_TRUE(tree.AddChild(L"b", L"1")); }),
              "<r><a/>text<!-- c --><b>1</b></r>");
}

TEST(XMLTree, TakesOnlyNamesForNames)
{
    const TreeFile file("<r/>");
    const IXMLTreePtr tree = file.Tree();
    for (const wchar_t* name :
         {L"",    L" ", L"a b", L"1a", L"-a",     L".a",      L"a<",     L"a>",  L"a/b", L"a&b",
          L"a\"", L"×", L"a×",  L"　", L"\xD800", L"a\xDC00", L"\xFFFF", L"!--", L"?pi", L"\u0300a"})
        EXPECT_FALSE(tree->AddChild(name, L"text")) << name;
    for (const wchar_t* name : {L"a", L"_", L":", L"a-b.c1", L"名前", L"é", L"a·b", L"𠀀"}) {
        EXPECT_TRUE(tree->AddChild(name, L"text")) << name;
        tree->GoToParent();
    }
    EXPECT_TRUE(tree->SaveFile(file.Path()));
    EXPECT_EQ(ChildCount(*file.Tree()), 8);
}

TEST(XMLTree, RemovesTheCurrentElement)
{
    EXPECT_EQ(Edited("<r><a><b/>x</a>y<c/></r>",
                     [](IXMLTree& tree) {
                         EXPECT_TRUE(tree.GoToPath(L"a"));
                         tree.RemoveCurrent();
                         EXPECT_EQ(TextOf(tree), L"y");
                     }),
              "<r>y<c/></r>");
}

TEST(XMLTree, ReadsTextsBesideARemovedElementAsTheyAreSaved)
{
    const std::pair<const char*, const wchar_t*> cases[] = {
        {"<r>1\r<a/>\n2</r>", L"1\n2"},
        {"<r>&lt<a/>;</r>", L"<"},
        {"<r>\xE4<a/>\xB8\xAD</r>", L"中"},
        {"<r>1<a/>2<![CDATA[&lt]]>;</r>", L"12&lt;"},
    };
    for (const auto& [bytes, text] : cases) {
        const std::string saved = Edited(bytes, [expected = text](IXMLTree& tree) {
            EXPECT_TRUE(tree.GoToPath(L"a"));
            tree.RemoveCurrent();
            EXPECT_EQ(TextOf(tree), expected);
        });
        EXPECT_EQ(TreeFile(saved).Text(L""), text) << bytes;
    }
}

TEST(XMLTree, MayLoseItsDocumentElementAndGetAnother)
{
    EXPECT_EQ(Edited("<?xml version=\"1.0\"?>\n<r><a/></r>\n",
                     [](IXMLTree& tree) {
                         tree.RemoveCurrent();
                         EXPECT_FALSE(tree.GoToPath(L""));
                         EXPECT_TRUE(tree.AddChild(L"s", L"1"));
                         EXPECT_TRUE(tree.GoToPath(L""));
                         EXPECT_EQ(TextOf(tree), L"1");
                     }),
              "<?xml version=\"1.0\"?>\n<s>1</s>\n");
}

TEST(XMLTree, RemovesAllChildElementsAndTheWhiteSpaceBetween)
{
    const auto removeAll = [](IXMLTree& tree) { tree.RemoveAllChildren(); };
    EXPECT_EQ(Edited("<r>\n  <a/>\n  <b><c/></b>\n</r>", removeAll), "<r/>");
    EXPECT_EQ(Edited("<r x=\"1\">text<a/><!-- stays --><b/></r>", removeAll), "<r x=\"1\">text<!-- stays --></r>");
}

TEST(XMLTree, KeepsElementsOnLinesOfTheirOwn)
{
    const auto anew = [](const wchar_t* name) {
        return [name](IXMLTree& tree) {
            if (tree.GoToChild(name, 0))
                tree.RemoveCurrent();
            EXPECT_TRUE(tree.AddChild(name, L"1"));
        };
    };
    EXPECT_EQ(Edited("<r>\r\n\t<a/>\r\n\t<b/>\r\n</r>\r\n", anew(L"a")), "<r>\r\n\t<b/>\r\n\t<a>1</a>\r\n</r>\r\n");
    EXPECT_EQ(Edited("<r>\n  <a/>\n  <b/>\n</r>", anew(L"b")), "<r>\n  <a/>\n  <b>1</b>\n</r>");
    EXPECT_EQ(Edited("<r>\n  <a/>\n</r>", anew(L"a")), "<r>\n  <a>1</a>\n</r>");
    EXPECT_EQ(Edited("<r>\n  <a/>\n</r>", anew(L"n")), "<r>\n  <a/>\n  <n>1</n>\n</r>");
    EXPECT_EQ(Edited("<r>\n</r>", anew(L"n")), "<r>\n<n>1</n>\n</r>");
    EXPECT_EQ(Edited("<r><a/></r>", anew(L"n")), "<r><a/><n>1</n></r>");
    EXPECT_EQ(Edited("<r/>", anew(L"n")), "<r><n>1</n></r>");
    // What is no line of its own is the author's text.
    EXPECT_EQ(Edited("<r>  </r>", anew(L"n")), "<r>  <n>1</n></r>");
    EXPECT_EQ(Edited("<r> <a/> <b/> </r>", anew(L"a")), "<r>  <b/> <a>1</a></r>");
    EXPECT_EQ(Edited("<r xml:space=\"preserve\">\n<a/>\n<b/>\n</r>", anew(L"a")),
              "<r xml:space=\"preserve\">\n\n<b/>\n<a>1</a></r>");
    EXPECT_EQ(Edited("<r xml:space=\"preserve\" x=\"1\">\n<s xml:space=\"default\">\n<a/>\n</s></r>",
                     [](IXMLTree& tree) {
                         EXPECT_TRUE(tree.GoToPath(L"s"));
                         EXPECT_TRUE(tree.AddChild(L"n", L""));
                     }),
              "<r xml:space=\"preserve\" x=\"1\">\n<s xml:space=\"default\">\n<a/>\n<n/>\n</s></r>");
}

TEST(XMLTreeCreator, HasNoData)
{
    static_assert(std::is_polymorphic_v<CXMLTreeCreator> && std::has_virtual_destructor_v<CXMLTreeCreator>);
    static_assert(sizeof(CXMLTreeCreator) == sizeof(void*));
    const CXMLTreeCreator creator;
    CXMLTreeCreator copy(creator); // NOLINT(performance-unnecessary-copy-initialization): it is exported
    EXPECT_EQ(&(copy = creator), &copy);
    IXMLTreePtr tree;
    EXPECT_TRUE(CXMLTreeCreator::Allocate(tree));
}
