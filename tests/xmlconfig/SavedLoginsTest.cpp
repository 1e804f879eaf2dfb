#include <Kelpkit/XmlConfig.h>

#include "support/FileContents.h"
#include "support/FolderTree.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using namespace KELPKIT;

namespace
{

using Logins = std::vector<std::pair<std::wstring, std::wstring>>;

class SavedLogins : public testing::Test
{
protected:
    void Write(const std::string& bytes) { test::WriteFileBytes(m_path, bytes); }
    std::string Bytes() const { return test::ReadFileBytes(m_path); }

    Logins Read()
    {
        std::vector<StUsrPwd> users;
        m_config.GetShellXmlUsrs(users);
        Logins logins;
        for (const StUsrPwd& user : users)
            logins.emplace_back(user.name, user.password);
        return logins;
    }

    const test::TempFolder m_folder;
    const std::wstring m_path = m_folder / L"config.xml";
    CXMLConfig m_config{m_path};
};

std::string Entry(const std::string& name, const std::string& password)
{
    return "<user><name>" + name + "</name><password>" + password +
           "</password><pwdlength>6</pwdlength><logintime/></user>";
}

} // namespace

TEST_F(SavedLogins, AreWrittenWithTheirConstants)
{
    Write("<c><usersloginfo/></c>");
    m_config.WriteShellXmlUsrs({{L"ann", L"a"}, {L"王", L"much longer than six"}});
    EXPECT_EQ(Bytes(), "<c><usersloginfo>" + Entry("ann", "a") + Entry("\xE7\x8E\x8B", "much longer than six") +
                           "</usersloginfo></c>");
}

TEST_F(SavedLogins, ReadBackInTheirOrder)
{
    Write("<c><usersloginfo/></c>");
    m_config.WriteShellXmlUsrs({{L"z", L"1"}, {L"a", L"2"}, {L"z", L"3"}, {L"", L""}});
    EXPECT_EQ(Read(), (Logins{{L"z", L"1"}, {L"a", L"2"}, {L"z", L"3"}, {L"", L""}}));
}

TEST_F(SavedLogins, ThatAreNoneLeaveAnEmptyElement)
{
    Write("<c>\n  <usersloginfo>\n    " + Entry("a", "b") + "\n  </usersloginfo>\n</c>");
    m_config.WriteShellXmlUsrs({});
    EXPECT_EQ(Bytes(), "<c>\n  <usersloginfo/>\n</c>");
    EXPECT_EQ(Read(), Logins());
}

TEST_F(SavedLogins, AreAppendedToWhatTheVectorHolds)
{
    Write("<c><usersloginfo>" + Entry("a", "b") + "</usersloginfo></c>");
    std::vector<StUsrPwd> users;
    m_config.GetShellXmlUsrs(users);
    m_config.GetShellXmlUsrs(users);
    ASSERT_EQ(users.size(), 2U);
    EXPECT_EQ(users[1].name, L"a");
    EXPECT_EQ(users[1].password, L"b");
}

TEST_F(SavedLogins, KeepPasswordsCharacterForCharacter)
{
    for (const char* file : {"<c><usersloginfo/></c>", "<?xml version='1.0' encoding='gbk'?><c><usersloginfo/></c>"}) {
        Write(file);
        const Logins logins = {{L"<&>", L"]]>\"'&amp;"},
                               {L" ", L"  blank both ends  "},
                               {L"中😀", L"\t\r\n"},
                               {L"é가", L"&#65;<user/>"},
                               {L"x", std::wstring(100000, L'&')}};
        std::vector<StUsrPwd> users;
        for (const auto& [name, password] : logins)
            users.push_back({name, password});
        m_config.WriteShellXmlUsrs(users);
        EXPECT_EQ(Read(), logins);
    }
}

TEST_F(SavedLogins, AreReadFromElementsOfAnyName)
{
    Write("<c><usersloginfo><!-- c --><guest><name>a</name><password>b</password></guest>text" + Entry("c", "d") +
          "</usersloginfo></c>");
    EXPECT_EQ(Read(), (Logins{{L"a", L"b"}, {L"c", L"d"}}));
}

TEST_F(SavedLogins, WithoutNameOrPasswordReadAsEmptyTexts)
{
    Write("<c><usersloginfo>own text<user>own text<password>1</password></user><user><name>2</name></user><user/>"
          "<user>\n<x><name>no</name></x>\n</user><user><password>4</password><name>3</name><name>no</name></user>"
          "</usersloginfo></c>");
    EXPECT_EQ(Read(), (Logins{{L"", L"1"}, {L"2", L""}, {L"", L""}, {L"", L""}, {L"3", L"4"}}));
}

TEST_F(SavedLogins, ReplaceTheOldOnesAndNothingElse)
{
    Write("<c><!-- before --><a>1</a><usersloginfo at=\"1\">" + Entry("old", "old") +
          "<other/></usersloginfo><b/></c>");
    m_config.WriteShellXmlUsrs({{L"new", L"pw"}});
    EXPECT_EQ(Bytes(),
              "<c><!-- before --><a>1</a><usersloginfo at=\"1\">" + Entry("new", "pw") + "</usersloginfo><b/></c>");
}

TEST_F(SavedLogins, AreNeitherReadNorWrittenWithoutTheirElement)
{
    for (const char* file : {"<c/>", "<c><x><usersloginfo/></x></c>", "<c><usersloginfo>"}) {
        Write(file);
        std::vector<StUsrPwd> users = {{L"kept", L"kept"}};
        m_config.GetShellXmlUsrs(users);
        EXPECT_EQ(users.size(), 1U) << file;
        m_config.WriteShellXmlUsrs({{L"a", L"b"}});
        EXPECT_EQ(Bytes(), file);
    }
    CXMLConfig missing(m_folder / L"missing.xml");
    missing.WriteShellXmlUsrs({{L"a", L"b"}});
    EXPECT_FALSE(test::Exists(m_folder / L"missing.xml"));
}

TEST_F(SavedLogins, MayStandInTheDocumentElement)
{
    Write("<usersloginfo/>");
    m_config.WriteShellXmlUsrs({{L"a", L"b"}});
    EXPECT_EQ(Bytes(), "<usersloginfo>" + Entry("a", "b") + "</usersloginfo>");
    EXPECT_EQ(Read(), (Logins{{L"a", L"b"}}));
}

TEST_F(SavedLogins, MayBeMany)
{
    Write("<c><usersloginfo/></c>");
    std::vector<StUsrPwd> users(10000);
    for (std::size_t i = 0; i < users.size(); ++i)
        users[i] = {L"user " + std::to_wstring(i), L"密码 " + std::to_wstring(i)};
    m_config.WriteShellXmlUsrs(users);
    std::vector<StUsrPwd> read;
    m_config.GetShellXmlUsrs(read);
    ASSERT_EQ(read.size(), users.size());
    for (std::size_t i = 0; i < users.size(); ++i) {
        ASSERT_EQ(read[i].name, users[i].name);
        ASSERT_EQ(read[i].password, users[i].password);
    }
}
