// Results are the same whatever locales the application has set.

#include <Kelpkit/Files.h>

#include "support/OddLocale.h"
#include "support/Operations.h"
#include "support/OwnProcess.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

using test::OddLocale;
using test::Operation;

namespace
{

void ExpectTheSameInAnOddLocale(const Operation& operation, const std::wstring& folder)
{
    operation.Prepare(folder);
    std::string result;
    {
        const OddLocale odd;
        result = operation.call(folder);
    }
    const std::string left = operation.Left(folder);
    operation.Prepare(folder);
    EXPECT_EQ(result, operation.call(folder)) << operation;
    EXPECT_EQ(left, operation.Left(folder)) << operation;
}

} // namespace

// Else the next test would prove nothing. Extensions are the one thing for which the library asks a locale.
TEST(OddLocale, ReachesTheLibrary)
{
    const OddLocale odd;
    KELPKIT::CFileFolderManageTool().SetNoNeedFileExName(L"TMP");
    EXPECT_EQ(OddLocale::Lowered(), 3);
}

// In a process of its own, since some results are kept from the first call on.
TEST(OddLocale, ChangesNoResult)
{
    test::InOwnProcess([] {
        const test::FakePrograms programs;
        const test::TempFolder folder;
        const test::LogToFile log(folder.Path());
        for (const Operation& operation : test::Operations())
            ExpectTheSameInAnOddLocale(operation, folder.Path());
    });
}
