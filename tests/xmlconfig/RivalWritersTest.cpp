#include <Kelpkit/XmlConfig.h>

#include "support/FileContents.h"
#include "support/FolderTree.h"
#include "support/Process.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

using namespace KELPKIT;

namespace
{

class RivalWriters : public testing::Test
{
protected:
    RivalWriters() { test::WriteFileBytes(m_path, "<c><text>" + m_text + "</text><a/><b/></c>"); }

    std::wstring Command(int count) const
    {
        return L'"' + test::BesideThisProgram(L"RivalWriter.exe") + L"\" \"" + m_path + L"\" " + std::to_wstring(count);
    }

    std::vector<std::wstring> Files() const { return test::ListTree(m_folder.Path()); }

    const std::string m_text = std::string(20000, 'x');
    const test::TempFolder m_folder{L"配置"};
    const std::wstring m_path = m_folder / L"config.xml";
    CXMLConfig m_config{m_path};
};

} // namespace

TEST_F(RivalWriters, AllSucceedAndLeaveAWholeFile)
{
    const std::wstring command = Command(100);
    const test::StartedProgram first(command);
    const test::StartedProgram second(command);
    for (const test::StartedProgram* program : {&first, &second}) {
        ASSERT_TRUE(program->HasEnded(300000));
        EXPECT_EQ(program->ExitCode(), 0U) << "writes that gave false";
    }
    EXPECT_EQ(m_config.GetXmlString(L"text"), std::wstring(m_text.begin(), m_text.end()));
    // Writers may lose each other's changes, but nobody that of the last one.
    EXPECT_GT(m_config.GetXmlInt(L"a") + m_config.GetXmlInt(L"b"), 0);
    EXPECT_EQ(Files(), std::vector<std::wstring>{L"config.xml"});
}

TEST_F(RivalWriters, LeaveEachOthersTemporaryFilesAlone)
{
    std::wstring temporary;
    {
        const test::StartedProgram other(Command(1000000));
        temporary = L"config.xml." + std::to_wstring(other.ProcessId()) + L"-3.saving";
        test::WriteFileBytes(m_folder / temporary, "<c>complete, and about to take the place</c>");
        for (int i = 0; i < 20; ++i)
            EXPECT_TRUE(m_config.WriteXmlInt(i, L"a"));
        EXPECT_FALSE(other.HasEnded(0));
        EXPECT_TRUE(test::Exists(m_folder / temporary));
    }
    EXPECT_TRUE(m_config.WriteXmlInt(1, L"a"));
    EXPECT_EQ(Files(), std::vector<std::wstring>{L"config.xml"}) << "the other process is gone";
}
