#include <Kelpkit/XmlConfig.h>

#include "support/FileContents.h"
#include "support/FolderTree.h"
#include "support/Process.h"
#include "support/Random.h"
#include "support/TempFolder.h"
#include "support/Threads.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <string>
#include <vector>

using namespace KELPKIT;

namespace
{

// Makes a save take its time.
constexpr std::size_t kTextSize = 100000;

// What ConfigWriter writes to the file, read piece by piece.
class Contents
{
public:
    explicit Contents(const std::wstring& path) : m_config(path) {}

    int Number() { return m_config.GetXmlInt(L"n"); }
    std::size_t TextSize() { return m_config.GetXmlString(L"text").size(); }

    // The number that all the logins bear; -1 where they are not those of one number.
    int NumberOfLogins()
    {
        std::vector<StUsrPwd> users;
        m_config.GetShellXmlUsrs(users);
        if (users.empty())
            return -1;
        const int number = std::stoi(L"0" + users.front().name);
        for (const StUsrPwd& user : users) {
            if (user.name != std::to_wstring(number) || user.password != user.name)
                return -1;
        }
        return users.size() == static_cast<std::size_t>(number % 3) + 1 ? number : -1;
    }

private:
    CXMLConfig m_config;
};

class KilledWriter : public testing::Test
{
protected:
    KilledWriter()
    {
        test::WriteFileBytes(m_path, "<c><n>0</n><text>" + std::string(kTextSize, 'x') +
                                         "</text><probe/><usersloginfo><user><name>0</name><password>0</password>"
                                         "</user></usersloginfo></c>");
    }

    // Kills writers, each a few milliseconds after its first write. Returns how many left a temporary file.
    int KillWriters()
    {
        const std::wstring command = L'"' + test::BesideThisProgram(L"ConfigWriter.exe") + L"\" \"" + m_path + L'"';
        test::Random random(5);
        int leftovers = 0;
        for (int round = 0; round < 300 && !HasFailure(); ++round) {
            const int before = m_contents.Number();
            {
                const test::StartedProgram writer(command);
                while (m_contents.Number() == before && !writer.HasEnded(1)) {
                }
                ::Sleep(random.Below(10));
                EXPECT_FALSE(writer.HasEnded(0)) << "it cannot write; its exit code is " << writer.ExitCode();
            }
            ExpectOldOrNewState(before);
            leftovers += CleanUp();
        }
        return leftovers;
    }

    // Reads as long as writers are killed.
    void Read(const std::atomic<bool>& isOver) const
    {
        Contents contents(m_path);
        int last = 0;
        int lastOfLogins = 0;
        for (; !isOver; ::Sleep(1)) {
            const int number = contents.Number();
            EXPECT_GE(number, last);
            last = number;
            const int ofLogins = contents.NumberOfLogins();
            EXPECT_GE(ofLogins, lastOfLogins);
            lastOfLogins = ofLogins;
            EXPECT_EQ(contents.TextSize(), kTextSize);
        }
        EXPECT_GT(last, 0);
    }

private:
    void ExpectOldOrNewState(int before)
    {
        const int now = m_contents.Number();
        EXPECT_GT(now, before);
        EXPECT_EQ(m_contents.TextSize(), kTextSize);
        // The logins are written after the number.
        const int logins = m_contents.NumberOfLogins();
        EXPECT_TRUE(logins == now || logins == now - 1) << logins << " of " << now;
    }

    // The next write finds one temporary file at most, and leaves none. Returns how many it found.
    int CleanUp() const
    {
        const std::size_t found = test::ListTree(m_folder.Path()).size();
        EXPECT_LE(found, 2U);
        EXPECT_TRUE(CXMLConfig(m_path).WriteXmlString(L"here", L"probe"));
        EXPECT_EQ(test::ListTree(m_folder.Path()).size(), 1U);
        return static_cast<int>(found) - 1;
    }

    const test::TempFolder m_folder{L"配置"};
    const std::wstring m_path = m_folder / L"设置 config.xml";
    Contents m_contents{m_path};
};

} // namespace

TEST_F(KilledWriter, LeavesTheOldOrTheNewState)
{
    EXPECT_GT(KillWriters(), 0) << "none was killed while it wrote";
}

TEST_F(KilledWriter, LeavesTheOldOrTheNewStateToReaders)
{
    std::atomic<bool> isOver = false;
    test::InThreads(3, [&](std::size_t number) {
        if (number != 0) {
            Read(isOver);
            return;
        }
        EXPECT_GT(KillWriters(), 0) << "none was killed while it wrote";
        isOver = true;
    });
}
