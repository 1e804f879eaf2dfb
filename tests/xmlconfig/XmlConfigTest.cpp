#include <Kelpkit/XmlConfig.h>

#include "support/FileContents.h"
#include "support/FileHolder.h"
#include "support/FolderTree.h"
#include "support/TempFolder.h"
#include "support/Threads.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <climits>
#include <string>
#include <utility>
#include <vector>

using namespace KELPKIT;

namespace
{

class XmlConfig : public testing::Test
{
protected:
    void Write(const std::string& bytes) { test::WriteFileBytes(m_path, bytes); }
    std::string Bytes() const { return test::ReadFileBytes(m_path); }

    // The file holds what it held before, and nothing lies beside it.
    void ExpectUnchanged(const std::string& before) const
    {
        EXPECT_EQ(Bytes(), before);
        EXPECT_EQ(test::ListTree(m_folder.Path()), std::vector<std::wstring>{L"设置 config.xml"});
    }

    const test::TempFolder m_folder{L"配置"};
    const std::wstring m_path = m_folder / L"设置 config.xml";
    CXMLConfig m_config{m_path};
};

// What the public operations rest on is private, and tells what they do not.
using GetValue = bool (CXMLConfig::*)(const std::wstring&, std::wstring&);

GetValue PrivateGetValue();

template <GetValue value>
struct Opened {
    friend GetValue PrivateGetValue() { return value; }
};

template struct Opened<&CXMLConfig::GetXMLValue>;

} // namespace

TEST_F(XmlConfig, SaysWhetherAValueIsThere)
{
    Write("<c><a>1</a><b/></c>");
    std::wstring value = L"before";
    EXPECT_TRUE((m_config.*PrivateGetValue())(L"a", value));
    EXPECT_EQ(value, L"1");
    EXPECT_TRUE((m_config.*PrivateGetValue())(L"b", value));
    EXPECT_EQ(value, L"");
    value = L"before";
    EXPECT_FALSE((m_config.*PrivateGetValue())(L"d", value));
    EXPECT_EQ(value, L"");
    CXMLConfig missing(m_folder / L"missing.xml");
    EXPECT_FALSE((missing.*PrivateGetValue())(L"a", value));
}

TEST_F(XmlConfig, AddsANewLeafAtTheEndOfItsParent)
{
    Write("<c><p><a>1</a></p><q/></c>");
    EXPECT_TRUE(m_config.WriteXmlString(L"2", L"p/b"));
    EXPECT_EQ(Bytes(), "<c><p><a>1</a><b>2</b></p><q/></c>");
    EXPECT_EQ(m_config.GetXmlString(L"p/b"), L"2");
}

TEST_F(XmlConfig, MovesAnExistingLeafToTheEndOfItsParent)
{
    Write("<c><a x=\"1\">1<child/></a><b/></c>");
    EXPECT_TRUE(m_config.WriteXmlString(L"2", L"a"));
    EXPECT_EQ(Bytes(), "<c><b/><a>2</a></c>");
}

TEST_F(XmlConfig, WritesNothingWhereTheParentIsMissing)
{
    const std::string before = "<c><a>1</a></c>";
    Write(before);
    EXPECT_FALSE(m_config.WriteXmlString(L"2", L"b/a"));
    EXPECT_FALSE(m_config.WriteXmlString(L"2", L"a/b/c"));
    ExpectUnchanged(before);
}

TEST_F(XmlConfig, ReadsTheIntegerThatATextStartsWith)
{
    const std::pair<const char*, int> cases[] = {
        {"12abc", 12},
        {"0", 0},
        {"-5", -5},
        {"+7", 7},
        {" \t\n 42 ", 42},
        {"", 0},
        {"abc", 0},
        {"- 5", 0},
        {"--5", 0},
        {"0x10", 0},
        {"1e3", 1},
        {"1.9", 1},
        {"007", 7},
        {"2147483647", INT_MAX},
        {"2147483648", INT_MAX},
        {"-2147483648", INT_MIN},
        {"-2147483649", INT_MIN},
        {"99999999999999999999", INT_MAX},
        {"-99999999999999999999", INT_MIN},
        {"&#49;2", 12},
        {"<![CDATA[12]]>", 12},
        {"1<!-- c -->2", 12},
    };
    for (const auto& [text, value] : cases) {
        Write(std::string("<c><a>") + text + "</a></c>");
        EXPECT_EQ(m_config.GetXmlInt(L"a"), value) << text;
    }
    EXPECT_EQ(m_config.GetXmlInt(L"missing"), 0);
}

TEST_F(XmlConfig, WritesIntegersInDecimal)
{
    Write("<c/>");
    for (const auto& [value, text] : std::vector<std::pair<int, std::wstring>>{
             {-5, L"-5"}, {0, L"0"}, {INT_MAX, L"2147483647"}, {INT_MIN, L"-2147483648"}}) {
        EXPECT_TRUE(m_config.WriteXmlInt(value, L"a"));
        EXPECT_EQ(m_config.GetXmlString(L"a"), text);
        EXPECT_EQ(m_config.GetXmlInt(L"a"), value);
    }
    EXPECT_EQ(Bytes(), "<c><a>-2147483648</a></c>");
}

TEST_F(XmlConfig, TakesPathsFromBelowTheDocumentElement)
{
    Write("<c>top<a>1<b>2</b></a></c>");
    EXPECT_EQ(m_config.GetXmlString(L"a"), L"1");
    EXPECT_EQ(m_config.GetXmlString(L"/a/b"), L"2");
    EXPECT_EQ(m_config.GetXmlString(L"c/a/b"), L"2");
    EXPECT_EQ(m_config.GetXmlString(L""), L"top");
    EXPECT_EQ(m_config.GetXmlString(L"c"), L"top");
    EXPECT_TRUE(m_config.WriteXmlString(L"3", L"/a/b"));
    EXPECT_TRUE(m_config.WriteXmlString(L"4", L"/d"));
    EXPECT_TRUE(m_config.WriteXmlString(L"5", L"c/e"));
    EXPECT_EQ(Bytes(), "<c>top<a>1<b>3</b></a><d>4</d><e>5</e></c>");
}

TEST_F(XmlConfig, WritesAKeyNamedLikeTheDocumentElementBelowIt)
{
    Write("<c/>");
    EXPECT_TRUE(m_config.WriteXmlString(L"1", L"c"));
    EXPECT_EQ(Bytes(), "<c><c>1</c></c>");
    EXPECT_EQ(m_config.GetXmlString(L"c"), L"1");
}

TEST_F(XmlConfig, ReadsANullKeyAsEmptyAndWritesNothing)
{
    Write("<c>5</c>");
    EXPECT_EQ(m_config.GetXmlString(nullptr), L"");
    EXPECT_EQ(m_config.GetXmlInt(nullptr), 0);
    EXPECT_FALSE(m_config.WriteXmlString(L"1", nullptr));
    EXPECT_FALSE(m_config.WriteXmlInt(1, nullptr));
    ExpectUnchanged("<c>5</c>");
}

TEST_F(XmlConfig, WritesNothingForALeafThatIsNoName)
{
    const std::string before = "<c><a/></c>";
    Write(before);
    for (const wchar_t* key : {L"", L"/", L"a/", L"a b", L"a/1", L"<", L"a/b>", L"a/×"})
        EXPECT_FALSE(m_config.WriteXmlString(L"1", key)) << key;
    ExpectUnchanged(before);
}

TEST_F(XmlConfig, TakesAFileThatCannotBeParsedForAMissingOne)
{
    CXMLConfig missing(m_folder / L"missing.xml");
    EXPECT_EQ(missing.GetXmlString(L"a"), L"");
    EXPECT_EQ(missing.GetXmlInt(L"a"), 0);
    EXPECT_FALSE(missing.WriteXmlString(L"1", L"a"));
    EXPECT_FALSE(test::Exists(m_folder / L"missing.xml"));
    for (const char* bytes : {"", "<c>", "<c><a>1</a>", "<?xml version='1.0' encoding='unknown'?><c><a>1</a></c>"}) {
        Write(bytes);
        EXPECT_EQ(m_config.GetXmlString(L"a"), L"") << bytes;
        EXPECT_EQ(m_config.GetXmlInt(L"a"), 0) << bytes;
        EXPECT_FALSE(m_config.WriteXmlString(L"1", L"a")) << bytes;
        ExpectUnchanged(bytes);
    }
    CXMLConfig folder(m_folder.Path());
    EXPECT_EQ(folder.GetXmlString(L""), L"");
    EXPECT_FALSE(folder.WriteXmlString(L"1", L"a"));
    CXMLConfig nothing(L"");
    EXPECT_EQ(nothing.GetXmlString(L""), L"");
}

TEST_F(XmlConfig, LoadsTheFileAfreshForEachCall)
{
    EXPECT_EQ(m_config.GetXmlString(L"a"), L"");
    Write("<c><a>1</a></c>");
    EXPECT_EQ(m_config.GetXmlString(L"a"), L"1");
    Write("<c><a>2</a></c>");
    EXPECT_EQ(m_config.GetXmlString(L"a"), L"2");
    EXPECT_TRUE(::DeleteFileW(m_path.c_str())) << "no handle is kept";
    EXPECT_EQ(m_config.GetXmlString(L"a"), L"");
}

TEST_F(XmlConfig, KeepsTextsCharacterForCharacter)
{
    Write("<?xml version=\"1.0\" encoding=\"GB2312\"?>\r\n<c>\r\n\t<a/>\r\n</c>\r\n");
    for (const std::wstring& text : {std::wstring(L" \t\r\n "), std::wstring(L"\"'<&>]]>"), std::wstring(L"中文 é 😀"),
                                     std::wstring(L"a\0b", 3), std::wstring(1 << 20, L'中')}) {
        EXPECT_TRUE(m_config.WriteXmlString(text, L"a"));
        EXPECT_TRUE(m_config.GetXmlString(L"a") == text) << text.substr(0, 20);
    }
    EXPECT_TRUE(m_config.WriteXmlString(L"中", L"a"));
    EXPECT_EQ(Bytes(), "<?xml version=\"1.0\" encoding=\"GB2312\"?>\r\n<c>\r\n\t<a>\xD6\xD0</a>\r\n</c>\r\n");
}

TEST_F(XmlConfig, TakesAnEmptyTextAndAMissingElementAlike)
{
    Write("<c/>");
    EXPECT_TRUE(m_config.WriteXmlString(L"", L"a"));
    EXPECT_EQ(Bytes(), "<c><a/></c>");
    EXPECT_EQ(m_config.GetXmlString(L"a"), L"");
    EXPECT_EQ(m_config.GetXmlString(L"b"), L"");
}

TEST_F(XmlConfig, WritesNothingWhereTheFileIsReadOnlyOrHeld)
{
    const std::string before = "<c><a>1</a></c>";
    Write(before);
    ASSERT_TRUE(::SetFileAttributesW(m_path.c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_FALSE(m_config.WriteXmlString(L"2", L"a"));
    EXPECT_EQ(m_config.GetXmlString(L"a"), L"1");
    ASSERT_TRUE(::SetFileAttributesW(m_path.c_str(), FILE_ATTRIBUTE_NORMAL));
    {
        const test::FileHolder holder(m_path, GENERIC_READ, 0);
        EXPECT_FALSE(m_config.WriteXmlString(L"2", L"a"));
        EXPECT_EQ(m_config.GetXmlString(L"a"), L"");
    }
    ExpectUnchanged(before);
}

TEST_F(XmlConfig, ReadsFromManyThreads)
{
    Write("<c><a>中</a><b>5</b></c>");
    test::InThreads(8, [&](std::size_t) {
        for (int i = 0; i < 50; ++i) {
            EXPECT_EQ(m_config.GetXmlString(L"a"), L"中");
            EXPECT_EQ(m_config.GetXmlInt(L"b"), 5);
        }
    });
}

TEST_F(XmlConfig, IsCopiedWithItsPath)
{
    Write("<c><a>1</a></c>");
    CXMLConfig copy = m_config;
    CXMLConfig other(L"nowhere.xml");
    other = copy;
    EXPECT_EQ(copy.GetXmlString(L"a"), L"1");
    EXPECT_EQ(other.GetXmlString(L"a"), L"1");
}
