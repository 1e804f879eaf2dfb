#include <Kelpkit/XMLParser.h>

#include "support/FolderTree.h"
#include "support/Random.h"
#include "xmlparser/TreeFile.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using test::NewTree;
using test::TreeFile;

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

std::string Saved(const std::string& bytes)
{
    return Edited(bytes, [](IXMLTree&) {});
}

int ChildCount(IXMLTree& tree)
{
    int count = -1;
    tree.GetChildCount(count);
    return count;
}

std::wstring TextOf(IXMLTree& tree)
{
    CString text = L"left from before";
    tree.GetText(text);
    return {text.GetString(), static_cast<std::size_t>(text.GetLength())};
}

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

TEST(XMLTree, IsEmptyAfterAFailedLoad)
{
    const TreeFile file("<a><b/></a>");
    const IXMLTreePtr tree = file.Tree();
    file.Write("<a>");
    EXPECT_FALSE(tree->LoadFile(file.Path()));
    EXPECT_FALSE(tree->GoToPath(L""));
    EXPECT_FALSE(tree->SaveFile(file.Path()));
    EXPECT_EQ(file.Bytes(), "<a>");
}

TEST(XMLTree, FindsElementsByPath)
{
    const TreeFile file("<config><?server pi?><server id='1'><host>h</host></server><server><port>1</port></server>"
                        "<名>中</名></config>");
    EXPECT_EQ(file.Text(L"server/host"), L"h");
    EXPECT_EQ(file.Text(L"/server/host"), L"h");
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
    for (const wchar_t* path : {L"server/port", L"host", L"server/", L"server//host", L"//server", L"/ server",
                                L"Server", L"config/config", L"#text", L"server/host/h", L"."})
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
    EXPECT_FALSE(tree->GoToChild(L"", 0));
    EXPECT_FALSE(tree->GoToChild(L"c", 0));
    tree->GoToParent();
    EXPECT_EQ(ChildCount(*tree), 3) << "the document element has no parent";
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
}

TEST(XMLTree, LeavesWhatIsNotNamed)
{
    const std::string file = "<?xml version=\"1.0\" encoding=\"utf-8\" standalone=\"yes\"?>\r\n"
                             "<!DOCTYPE r SYSTEM \"r.dtd\" [\r\n  <!ENTITY e \"x\"> <!-- in here -->\r\n]>\r\n"
                             "<!-- before -->\r\n<?pi some data ?>\r\n"
                             "<r a=\"&lt;&quot;&#10;&e;'\" b=\" two  \tblanks \">\r\n"
                             "  text &e; &#x41; &gt; > ' \"\r\n  <![CDATA[ <raw> & ]]>\r\n  <empty/>\r\n"
                             "  <p:q xmlns:p=\"u\">中 \xF0\x9F\x98\x80</p:q>\r\n"
                             "</r>\r\n<!-- behind -->\r\n<?last?>\r\n\r\n";
    EXPECT_EQ(Saved(file), file);
    std::string added = file;
    added.insert(added.find("\r\n</r>"), "<n>1</n>");
    EXPECT_EQ(Edited(file, [](IXMLTree& tree) { EXPECT_TRUE(tree.AddChild(L"n", L"1")); }), added);
}

TEST(XMLTree, MakesTagsUniform)
{
    EXPECT_EQ(Saved("<r  a='1'\n b = \"it's\" c='say \"x\"'><e></e><f />\n</r >"),
              "<r a=\"1\" b=\"it's\" c=\"say &quot;x&quot;\"><e/><f/>\n</r>");
}

TEST(XMLTree, TakesAnAttributeOfManyQuotes)
{
    const std::size_t count = 1 << 20;
    std::string escaped;
    escaped.reserve(count * 6);
    for (std::size_t i = 0; i < count; ++i)
        escaped += "&quot;";
    EXPECT_TRUE(Saved("<r a='" + std::string(count, '"') + "'/>") == "<r a=\"" + escaped + "\"/>");
}

TEST(XMLTree, LeavesErrorsInUtf8AsTheyAre)
{
    const TreeFile file("<r>\xC4\xE3\xFF<a/></r>");
    EXPECT_EQ(file.Text(L"").empty(), false);
    EXPECT_TRUE(file.Add(L"b", L"1"));
    EXPECT_EQ(file.Bytes(), "<r>\xC4\xE3\xFF<a/><b>1</b></r>");
}

TEST(XMLTree, RefusesMalformedFiles)
{
    using namespace std::string_literals;
    for (const std::string& bytes : {""s,
                                     " "s,
                                     "\n"s,
                                     "x"s,
                                     "<"s,
                                     "<a"s,
                                     "<a>"s,
                                     "<a></b>"s,
                                     "<a/><b/>"s,
                                     "<a/>x"s,
                                     "x<a/>"s,
                                     "<a/>&"s,
                                     "<a b></a>"s,
                                     "<a b=c/>"s,
                                     "<a b='1'c='2'/>"s,
                                     "</a>"s,
                                     "<a/></a>"s,
                                     "<!-- <a/>"s,
                                     "<a><![CDATA[</a>"s,
                                     "<?xml version='1.0'?>"s,
                                     "<a/><?xml version='1.0'?>"s,
                                     " <?xml version='1.0'?><a/>"s,
                                     "<a/>\0"s,
                                     "<a>\0</a>"s,
                                     "<a/><![CDATA[x]]>"s,
                                     "\xEF\xBB\xBF"s,
                                     "\xFF\xFE"s,
                                     "<!DOCTYPE a"s,
                                     "<!DOCTYPE a><!-- only -->"s,
                                     "<?"s,
                                     "<!"s,
                                     "<a><"s}) {
        EXPECT_FALSE(TreeFile(bytes).Loads()) << bytes;
    }
}

TEST(XMLTree, RefusesEveryCutOfAFile)
{
    const std::string bytes =
        R"(<?xml version="1.0"?><!DOCTYPE r []><r a="1"><!-- c --><b>t&lt;</b><![CDATA[x]]><?p i?></r>)";
    const TreeFile file;
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        file.Write(bytes.substr(0, size));
        EXPECT_FALSE(file.Loads()) << bytes.substr(0, size);
    }
    file.Write(bytes);
    EXPECT_TRUE(file.Loads());
}

TEST(XMLTree, RefusesWhatIsNoFile)
{
    const test::TempFolder folder;
    const IXMLTreePtr tree = NewTree();
    EXPECT_FALSE(tree->LoadFile(folder.Path().c_str()));
    EXPECT_FALSE(tree->LoadFile((folder / L"missing.xml").c_str()));
    EXPECT_FALSE(tree->LoadFile((folder / L"missing\\a.xml").c_str()));
    EXPECT_FALSE(tree->LoadFile(L""));
    EXPECT_FALSE(tree->LoadFile(L"NUL"));
    EXPECT_FALSE(tree->LoadFile(L"?*"));
}

TEST(XMLTree, DoesNotExpandEntities)
{
    std::string bytes = "<!DOCTYPE r [<!ENTITY l0 \"lol\">";
    for (int i = 1; i < 10; ++i) {
        bytes += "<!ENTITY l" + std::to_string(i) + " \"";
        for (int n = 0; n < 10; ++n)
            bytes += "&l" + std::to_string(i - 1) + ";";
        bytes += "\">";
    }
    bytes += "<!ENTITY f SYSTEM \"file:///c:/windows/win.ini\">]><r><a>&l9;</a><b>&f;</b></r>";
    const TreeFile file(bytes);
    EXPECT_EQ(file.Text(L"a"), L"&l9;");
    EXPECT_EQ(file.Text(L"b"), L"&f;");
    EXPECT_EQ(Saved(bytes), bytes);
}

TEST(XMLTree, TakesDeepTrees)
{
    constexpr int kDepth = 100000;
    std::string bytes = "<r>";
    for (int i = 0; i < kDepth; ++i)
        bytes += "<a>";
    bytes += "x";
    for (int i = 0; i < kDepth; ++i)
        bytes += "</a>";
    bytes += "</r>";
    EXPECT_EQ(Saved(bytes), bytes);
    EXPECT_EQ(Edited(bytes,
                     [](IXMLTree& tree) {
                         EXPECT_TRUE(tree.GoToPath(L"a/a/a"));
                         tree.RemoveCurrent();
                     }),
              "<r><a><a/></a></r>");
    EXPECT_EQ(Edited(bytes, [](IXMLTree& tree) { tree.RemoveAllChildren(); }), "<r/>");
}

TEST(XMLTree, TakesALargeFile)
{
    constexpr std::size_t kSize = 200 << 20;
    std::string bytes = "<r><first>1</first>";
    const std::string row = "<row id=\"1\">" + std::string(1000, 'x') + "</row>\n";
    bytes.reserve(kSize + row.size() + 100);
    while (bytes.size() < kSize)
        bytes += row;
    bytes += "<last>2</last></r>";
    const TreeFile file(bytes);
    EXPECT_EQ(file.Text(L"first"), L"1");
    EXPECT_EQ(file.Text(L"last"), L"2");
}

TEST(XMLTree, TakesManyChildrenInLinearTime)
{
    constexpr int kCount = 100000;
    const IXMLTreePtr tree = NewTree();
    EXPECT_TRUE(tree->AddChild(L"r", L""));
    for (int i = 0; i < kCount; ++i) {
        EXPECT_TRUE(tree->AddChild(L"a", CString(std::to_wstring(i).c_str())));
        tree->GoToParent();
    }
    for (int i = 0; i < kCount; ++i) {
        tree->GoToChildAt(i);
        ASSERT_EQ(TextOf(*tree), std::to_wstring(i));
        tree->GoToParent();
    }
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
