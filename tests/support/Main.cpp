#include "support/DeletionGuard.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <memory>

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

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    testing::AddGlobalTestEnvironment(new SafeGround);
    return RUN_ALL_TESTS();
}
