#include <Kelpkit/XMLParser.h>

#include "support/FailingCall.h"
#include "support/TempFolder.h"
#include "xmlparser/Sharing.h"
#include "xmlparser/TreeFile.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstddef>
#include <string>

using test::Edited;
using test::FailingCall;
using test::ImportPatch;
using test::NewTree;
using test::Saved;
using test::TextOf;
using test::TreeFile;

TEST(XMLTreeLoad, IsEmptyAfterAFailedLoad)
{
    const TreeFile file("<a><b/></a>");
    const IXMLTreePtr tree = file.Tree();
    file.Write("<a>");
    EXPECT_FALSE(tree->LoadFile(file.Path()));
    EXPECT_FALSE(tree->GoToPath(L""));
    EXPECT_FALSE(tree->SaveFile(file.Path()));
    EXPECT_EQ(file.Bytes(), "<a>");
}

TEST(XMLTreeLoad, ForgetsTheEncodingWhereItFails)
{
    const TreeFile file(R"(<?xml version="1.0" encoding="GBK"?><a/>)");
    const IXMLTreePtr tree = file.Tree();
    file.Write("<a>");
    EXPECT_FALSE(tree->LoadFile(file.Path()));
    EXPECT_TRUE(tree->AddChild(L"b", L"\x20AC"));
    EXPECT_TRUE(tree->SaveFile(file.Path()));
    EXPECT_EQ(file.Bytes(), "<b>\xE2\x82\xAC</b>");
}

TEST(XMLTreeLoad, LeavesErrorsInUtf8AsTheyAre)
{
    const TreeFile file("<r>\xC4\xE3x\xFFy<a/></r>");
    EXPECT_EQ(file.Text(L""), L"\xFFFD\xFFFDx\xFFFDy");
    EXPECT_TRUE(file.Add(L"b", L"1"));
    EXPECT_EQ(file.Bytes(), "<r>\xC4\xE3x\xFFy<a/><b>1</b></r>");
    EXPECT_EQ(file.Text(L""), L"\xFFFD\xFFFDx\xFFFDy");
}

TEST(XMLTreeLoad, RefusesMalformedFiles)
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

TEST(XMLTreeLoad, RefusesEveryCutOfAFile)
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

TEST(XMLTreeLoad, RefusesWhatIsNoFile)
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

TEST(XMLTreeLoad, ReadsAFileThatOthersHaveOpen)
{
    const TreeFile file("<r/>");
    for (const DWORD access : test::kAccesses) {
        const test::FileHolder other(file.Path().GetString(), access, test::kShareAll);
        EXPECT_TRUE(file.Loads()) << access;
    }
    const test::FileHolder reader(file.Path().GetString(), GENERIC_READ, FILE_SHARE_READ);
    EXPECT_TRUE(file.Loads());
}

TEST(XMLTreeLoad, FailsWhereTheFileCannotBeRead)
{
    const TreeFile file("<r/>");
    for (const std::size_t size : {1U, 100000U}) {
        file.Write("<r>" + std::string(size, 'x') + "</r>");
        const FailingCall<decltype(::ReadFile)> failing(L"XMLParser.dll", "ReadFile", FALSE);
        EXPECT_FALSE(file.Loads());
    }
    static int s_reads;
    s_reads = 0;
    const ImportPatch patch(
        L"XMLParser.dll", "ReadFile", +[](HANDLE handle, void* bytes, DWORD size, DWORD* read, OVERLAPPED*) -> BOOL {
            return ++s_reads == 1 && ::ReadFile(handle, bytes, size, read, nullptr);
        });
    EXPECT_FALSE(file.Loads());
    EXPECT_EQ(s_reads, 2);
}

TEST(XMLTreeLoad, FailsWhereTheSizeOfALargeFileIsNotToBeHad)
{
    const TreeFile file("<r>" + std::string(100000, 'x') + "</r>");
    const FailingCall<decltype(::GetFileSizeEx)> failing(L"XMLParser.dll", "GetFileSizeEx", FALSE);
    EXPECT_FALSE(file.Loads());
}

TEST(XMLTreeLoad, FailsWhereTheTextCannotBeConverted)
{
    const TreeFile file("<?xml version=\"1.0\" encoding=\"GBK\"?><r>\xD6\xD0</r>");
    for (const char* const name : {"MultiByteToWideChar", "WideCharToMultiByte"}) {
        const FailingCall<int()> failing(L"XMLParser.dll", name, 0);
        EXPECT_FALSE(file.Loads()) << name;
    }
}

TEST(XMLTreeLoad, DoesNotExpandEntities)
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

TEST(XMLTreeLoad, TakesDeepTrees)
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

TEST(XMLTreeLoad, TakesALargeFile)
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

TEST(XMLTreeLoad, TakesManyChildrenInLinearTime)
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

TEST(XMLTreeLoad, LeavesWhatIsNotNamed)
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

TEST(XMLTreeLoad, LeavesWhatItTakesThoughItIsMalformed)
{
    for (const char* bytes : {"<r><!-- a -- b --><!----><!-- a ---><!--->--></r>",
                              "<r a=\"<\" b=\"&\" b=\"2\">& ]]> &x \x1</r>", "<!DOCTYPE r><r><?p?></r><!DOCTYPE s>"})
        EXPECT_EQ(Saved(bytes), bytes);
}

TEST(XMLTreeLoad, MakesTagsUniform)
{
    EXPECT_EQ(Saved("<r  a='1'\n b = \"it's\" c='say \"x\"'><e></e><f />\n</r >"),
              "<r a=\"1\" b=\"it's\" c='say \"x\"'><e/><f/>\n</r>");
}
