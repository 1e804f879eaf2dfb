#include "Nodes.h"

#include <gtest/gtest.h>

#include <pugixml.hpp>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

using namespace std::string_literals;
using namespace std::string_view_literals;
using namespace xmlparser;

namespace
{

// As the tree reads files.
constexpr unsigned kParseAll = pugi::parse_pi | pugi::parse_comments | pugi::parse_cdata | pugi::parse_doctype |
                               pugi::parse_declaration | pugi::parse_ws_pcdata | pugi::parse_fragment;

class Document : public pugi::xml_document
{
public:
    explicit Document(const std::string& text)
    {
        if (!load_buffer(text.data(), text.size(), kParseAll, pugi::encoding_utf8))
            throw std::runtime_error("the text is no XML");
    }

    std::string Written() const
    {
        std::string text;
        Write(*this, text);
        return text;
    }
};

// The document after an element was removed that stands below the document element.
std::string WithoutElement(const std::string& text, const char* name)
{
    const Document document(text);
    RemoveElement(document.document_element().child(name));
    return document.Written();
}

// The document after an element "n" was added below the document element.
std::string WithElement(const std::string& text, const char* content = "")
{
    const Document document(text);
    const pugi::xml_node child = AppendElement(document.document_element(), "n", content);
    EXPECT_STREQ(child.name(), "n");
    EXPECT_EQ(child.parent(), document.document_element());
    EXPECT_EQ(NextElement(child), pugi::xml_node());
    return document.Written();
}

// While it lives, the nodes have only the memory that they have already.
class NoMoreMemory
{
public:
    NoMoreMemory()
    {
        pugi::set_memory_management_functions(
            +[](std::size_t) -> void* { return nullptr; }, m_free);
    }
    NoMoreMemory(const NoMoreMemory&) = delete;
    NoMoreMemory& operator=(const NoMoreMemory&) = delete;
    ~NoMoreMemory() { pugi::set_memory_management_functions(m_allocate, m_free); }

private:
    const pugi::allocation_function m_allocate = pugi::get_memory_allocation_function();
    const pugi::deallocation_function m_free = pugi::get_memory_deallocation_function();
};

} // namespace

TEST(Nodes, TellElementsAndWhiteSpaceFromTheRest)
{
    const Document document("<r> <e/>x<![CDATA[ ]]>\n<!-- --><?p ?>&#32;</r>");
    std::string kinds;
    for (const pugi::xml_node node : document.document_element())
        kinds += IsElement(node) ? 'e' : IsWhiteSpace(node) ? 'w' : '-';
    EXPECT_EQ(kinds, "we--w---");
    EXPECT_FALSE(IsElement(document));
    EXPECT_FALSE(IsElement({}));
    EXPECT_FALSE(IsWhiteSpace({}));
}

TEST(Nodes, WalkOverElementsOnly)
{
    const Document document("<r>x<!--c--><a/> <?p?><b/><![CDATA[x]]></r>");
    const pugi::xml_node first = FirstElement(document.document_element());
    EXPECT_STREQ(first.name(), "a");
    EXPECT_STREQ(NextElement(first).name(), "b");
    EXPECT_TRUE(NextElement(NextElement(first)).empty());
    EXPECT_TRUE(FirstElement(first).empty());
    EXPECT_TRUE(FirstElement({}).empty());
    EXPECT_TRUE(NextElement({}).empty());
}

TEST(Nodes, FindAnElementByItsWholeName)
{
    const Document document("<r>a<?a?><ab/><a id=\"1\"/><b/><a id=\"2\"/></r>");
    const pugi::xml_node start = document.document_element().first_child();
    const pugi::xml_node found = ElementNamed("a", start);
    EXPECT_STREQ(found.attribute("id").value(), "1");
    EXPECT_EQ(ElementNamed("a", found), found) << "the node itself counts";
    EXPECT_STREQ(ElementNamed("a", found.next_sibling()).attribute("id").value(), "2");
    EXPECT_STREQ(ElementNamed("ab", start).name(), "ab");
    for (const std::string_view name : {"abc"sv, "A"sv, ""sv, "a\0"sv, "a\0b"sv, "\0"sv, "r"sv})
        EXPECT_TRUE(ElementNamed(name, start).empty()) << name;
    EXPECT_TRUE(ElementNamed("a", {}).empty());
}

TEST(Nodes, AreADocumentWithOneElementAndNoTextBesideIt)
{
    for (const char* const text :
         {"<r/>", "\n<r/>\n", "<?xml version='1.0'?><!DOCTYPE r><!--c--><?p?><r>x</r> <!---->"})
        EXPECT_TRUE(IsDocument(Document(text))) << text;
    for (const char* const text : {"<!--c-->", "<r/><s/>", "x<r/>", "<r/>x", "<r/><![CDATA[x]]>", "<![CDATA[ ]]><r/>",
                                   "<r/><?xml version='1.0'?>", " <?xml version='1.0'?><r/>",
                                   "<?xml version='1.0'?><?xml version='1.0'?><r/>", "<r/>&#32;"})
        EXPECT_FALSE(IsDocument(Document(text))) << text;
    EXPECT_FALSE(IsDocument(pugi::xml_document()));
}

TEST(Nodes, AreRemovedWithAllThatIsInThem)
{
    const Document document("<r> <a/><b>x<c><d/></c><!--c--></b>\n<b/></r>");
    Remove(document.document_element().child("b"));
    EXPECT_EQ(document.Written(), "<r> <a/>\n<b/></r>");
    Remove(document.document_element().first_child());
    EXPECT_EQ(document.Written(), "<r><a/>\n<b/></r>");
    Remove(document.document_element());
    EXPECT_EQ(document.Written(), "");
}

TEST(Nodes, AreRemovedAndWrittenAtAnyDepth)
{
    constexpr int kDepth = 100000;
    std::string text;
    for (int i = 0; i < kDepth; ++i)
        text += "<a>";
    text += "x";
    for (int i = 0; i < kDepth; ++i)
        text += "</a>";
    const Document document("<r><b/>" + text + "</r>");
    EXPECT_EQ(document.Written(), "<r><b/>" + text + "</r>");
    Remove(document.document_element().last_child());
    EXPECT_EQ(document.Written(), "<r><b/></r>");
}

TEST(Nodes, AreRemovedAlsoWhereMemoryRunsOut)
{
    for (int count = 0; count < 40; ++count) {
        const Document document("<r>\n <a><b>x</b>y</a>\n <c/>\n</r>");
        const pugi::xml_node root = document.document_element();
        for (int i = 0; i < count; ++i)
            AppendElement(root, "n", "x");
        const NoMoreMemory noMoreMemory;
        while (AppendElement(root, "n", "")) {
        }
        std::string expected = document.Written();
        expected.erase(expected.find("\n <a>"), std::string("\n <a><b>x</b>y</a>").size());
        RemoveElement(FirstElement(root));
        ASSERT_EQ(document.Written(), expected) << count;
        EXPECT_TRUE(ElementNamed("a", root.first_child()).empty()) << count;
        EXPECT_STREQ(FirstElement(root).name(), "c") << count;
        Remove(root);
        EXPECT_EQ(document.Written(), "") << count;
        EXPECT_TRUE(FirstElement(document).empty()) << count;
    }
}

TEST(RemoveElement, TakesItsLineWhereOthersAreLeft)
{
    EXPECT_EQ(WithoutElement("<r>\n  <a/>\n  <b/>\n</r>", "a"), "<r>\n  <b/>\n</r>");
    EXPECT_EQ(WithoutElement("<r>\n  <a/>\n  <b/>\n</r>", "b"), "<r>\n  <a/>\n</r>");
    EXPECT_EQ(WithoutElement("<r>\n  <a/>\n</r>", "a"), "<r>\n  \n</r>") << "it is the only one";
}

TEST(RemoveElement, LeavesWhatIsNoIndentation)
{
    EXPECT_EQ(WithoutElement("<r><a/> <b/></r>", "b"), "<r><a/> </r>");
    EXPECT_EQ(WithoutElement("<r><a/>\nx<b/></r>", "b"), "<r><a/>\nx</r>");
    EXPECT_EQ(WithoutElement("<r><a/>\n<!--c--><b/></r>", "b"), "<r><a/>\n<!--c--></r>");
    EXPECT_EQ(WithoutElement("<r><a/><![CDATA[\n]]><b/></r>", "b"), "<r><a/><![CDATA[\n]]></r>");
    EXPECT_EQ(WithoutElement("<r xml:space=\"preserve\">\n<a/>\n<b/></r>", "b"),
              "<r xml:space=\"preserve\">\n<a/>\n</r>");
}

TEST(AppendElement, ComesLast)
{
    EXPECT_EQ(WithElement("<r/>"), "<r><n/></r>");
    EXPECT_EQ(WithElement("<r><a/>x</r>", "&lt;1"), "<r><a/>x<n>&lt;1</n></r>");
}

TEST(AppendElement, StandsOnALineWhereTheOthersDo)
{
    EXPECT_EQ(WithElement("<r>\n  <a/>\n</r>"), "<r>\n  <a/>\n  <n/>\n</r>");
    EXPECT_EQ(WithElement("<r>\r\n\t<a/>\r\n\t<!--c-->\r\n</r>"), "<r>\r\n\t<a/>\r\n\t<!--c-->\r\n\t<n/>\r\n</r>");
    EXPECT_EQ(WithElement("<r>\n</r>"), "<r>\n<n/>\n</r>") << "there is no other line to be like";
    EXPECT_EQ(WithElement("<r><a/>\n</r>"), "<r><a/><n/>\n</r>");
    EXPECT_EQ(WithElement("<r>\n<a/></r>"), "<r>\n<a/><n/></r>");
    EXPECT_EQ(WithElement("<r> <a/> </r>"), "<r> <a/> <n/></r>");
}

TEST(AppendElement, DoesNotIndentWhatKeepsItsWhiteSpace)
{
    EXPECT_EQ(WithElement("<r xml:space=\"preserve\">\n <a/>\n</r>"), "<r xml:space=\"preserve\">\n <a/>\n<n/></r>");
    EXPECT_EQ(WithElement("<r xml:space=\"default\">\n <a/>\n</r>"), "<r xml:space=\"default\">\n <a/>\n <n/>\n</r>");
    for (const char* const space : {"default", "preserve"}) {
        const Document document("<r xml:space=\""s + space + "\"><p>\n <a/>\n</p></r>");
        AppendElement(document.document_element().first_child(), "n", "");
        EXPECT_EQ(document.Written().find("\n <n/>") != std::string::npos, space == "default"sv) << space;
    }
}

TEST(AppendElement, LeavesTheParentAsItWasWhereMemoryRunsOut)
{
    // What is asked for last may be the element, its name, its line or its text.
    const std::string names[] = {"n", std::string(200, 'n'), std::string(70000, 'n')};
    const std::string texts[] = {"", "x", std::string(200, 'x'), std::string(70000, 'x')};
    for (const std::string& line : {"\n"s, "\n" + std::string(300, ' '), ""s}) {
        for (const std::string& name : names) {
            for (const std::string& text : texts) {
                const Document document("<r>" + line + "<a/>" + line + "</r>");
                std::string before;
                const NoMoreMemory noMoreMemory;
                do {
                    before = document.Written();
                } while (AppendElement(document.document_element(), name.c_str(), text.c_str()));
                ASSERT_EQ(document.Written(), before) << line.size() << " " << name.size() << " " << text.size();
            }
        }
    }
}

TEST(Write, GivesEachKindOfNodeBack)
{
    const std::string text = "<?xml version=\"1.0\" encoding=\"GBK\"?><!DOCTYPE r [<!ENTITY e \"x\">]><!-- c --><?p?>"
                             "<?p i ?><r a=\"1\" b='\"' c=\"'\" d=\"\">&e;\r\n<![CDATA[<]]><e/><f>x</f></r>\n<!---->";
    EXPECT_EQ(Document(text).Written(), text);
    EXPECT_EQ(Document("").Written(), "");
}

TEST(Write, TakesTextsOfAnySize)
{
    // Around the size of the pieces in which the text grows, and twice that.
    for (const std::size_t chunk : {4096U, 8192U}) {
        for (std::size_t size = chunk - 10; size <= chunk + 10; ++size) {
            const std::string text = "<r>" + std::string(size, 'x') + "</r>";
            ASSERT_TRUE(Document(text).Written() == text) << size;
        }
    }
}
