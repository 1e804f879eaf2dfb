#include "support/DeletionGuard.h"
#include "support/FakedCalls.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <memory>
#include <string>

namespace
{

// No test stands on the root of the machine, and none deletes outside its temporary folders.
class SafeGround : public testing::Environment
{
public:
    void SetUp() override
    {
        const std::wstring temp = test::TempFolderPrefix().substr(0, test::TempFolderPrefix().rfind(L'\\'));
        ASSERT_TRUE(::SetCurrentDirectoryW(temp.c_str()));
        if (::GetModuleHandleW(L"Kelpkit.dll") != nullptr)
            m_guard = std::make_unique<test::DeletionGuard>();
    }

    void TearDown() override { m_guard.reset(); }

private:
    std::unique_ptr<test::DeletionGuard> m_guard;
};

// Says which test is running, without what tests with parameters have in their names.
class RunningTest : public testing::EmptyTestEventListener
{
    void OnTestStart(const testing::TestInfo& test) override
    {
        const std::string suite = test.test_suite_name();
        const std::string name = test.name();
        test::SetRunningTest((suite.substr(suite.find('/') + 1) + "." + name.substr(0, name.find('/'))).c_str());
    }

    void OnTestEnd(const testing::TestInfo& /*unused*/) override { test::SetRunningTest(nullptr); }
};

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    testing::AddGlobalTestEnvironment(new SafeGround);
    testing::UnitTest::GetInstance()->listeners().Append(new RunningTest);
    test::ForgetFakedCalls();
    return RUN_ALL_TESTS();
}
