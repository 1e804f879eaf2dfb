#include "support/FakedCalls.h"

#include <Kelpkit/SystemInfo.h>

#include "support/EnvironmentVariable.h"
#include "support/FileContents.h"
#include "support/FolderTree.h"
#include "support/ImportPatch.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <string>

using test::ImportPatch;

namespace
{

DWORD WINAPI NoTempPath(DWORD, wchar_t*)
{
    return 0;
}

// The notes of this process go to a file of its own while it lives. Parameters are no part of a test's name.
class FakedCalls : public testing::TestWithParam<int>
{
protected:
    std::string Notes() const
    {
        const std::wstring path = m_folder / L"report-936.calls";
        return test::Exists(path) ? test::ReadFileBytes(path) : "none";
    }

    const test::TempFolder m_folder;

private:
    const test::EnvironmentVariable m_report{L"GTEST_OUTPUT", (L"xml:" + (m_folder / L"report-936.xml")).c_str()};
};

INSTANTIATE_TEST_SUITE_P(Twice, FakedCalls, testing::Values(1, 2));

} // namespace

TEST_P(FakedCalls, AreNotedWithTheTest)
{
    {
        const ImportPatch patch("GetTempPathW", &NoTempPath);
        KELPKIT::GetTempPathW();
        KELPKIT::GetTempPathW();
        EXPECT_EQ(Notes(), "none") << "the patch lives";
    }
    EXPECT_EQ(Notes(), "Kelpkit.dll GetTempPathW FakedCalls.AreNotedWithTheTest\n");
}

TEST_P(FakedCalls, AreNotedOnlyWhereTheDllMakesThem)
{
    {
        const ImportPatch patch("GetTempPathW", &NoTempPath);
        wchar_t path[MAX_PATH + 1] = {};
        ::GetTempPathW(MAX_PATH, path);
    }
    EXPECT_EQ(Notes(), "none");
}

TEST_P(FakedCalls, AreNotNotedOutsideOfATest)
{
    test::SetRunningTest(nullptr);
    {
        const ImportPatch patch("GetTempPathW", &NoTempPath);
        KELPKIT::GetTempPathW();
    }
    EXPECT_EQ(Notes(), "none");
}

TEST_P(FakedCalls, AreForgottenByTheNextRunOnly)
{
    const std::wstring path = m_folder / L"report-936.calls";
    test::WriteFileBytes(path, "of an earlier run");
    test::ForgetFakedCalls();
    EXPECT_TRUE(test::Exists(path)) << "this test runs";
    test::SetRunningTest(nullptr);
    test::ForgetFakedCalls();
    EXPECT_FALSE(test::Exists(path));
}
