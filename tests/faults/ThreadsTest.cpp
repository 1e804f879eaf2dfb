// Whatever may be called by several threads is, by eight at once.

#include "support/Threads.h"
#include "support/Operations.h"
#include "support/Random.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

using test::Operation;

namespace
{

constexpr std::size_t kThreads = 8;
constexpr std::chrono::seconds kTime(10);

// An operation with what it gives and leaves when nobody else is there.
struct Known {
    const Operation* operation;
    std::string result;
    std::string left;

    bool Holds(const std::wstring& folder) const
    {
        operation->Prepare(folder);
        return operation->call(folder) == result && operation->Left(folder) == left;
    }
};

std::vector<Known> Learn(const std::wstring& folder)
{
    std::vector<Known> all;
    for (const Operation& operation : test::Operations()) {
        if (operation.Is(Operation::kOneThread))
            continue;
        operation.Prepare(folder);
        std::string result = operation.call(folder);
        all.push_back({&operation, std::move(result), operation.Left(folder)});
    }
    return all;
}

} // namespace

TEST(EightThreads, GetWhatOneThreadGets)
{
    const test::FakePrograms programs;
    const test::TempFolder logFolder;
    const test::LogToFile log(logFolder.Path());
    const std::vector<Known> all = Learn(logFolder.Path());
    ASSERT_GT(all.size(), 50U);

    std::vector<std::vector<std::string>> wrong(kThreads);
    std::vector<std::vector<int>> calls(kThreads, std::vector<int>(all.size()));
    const auto end = std::chrono::steady_clock::now() + kTime;
    test::InThreads(kThreads, [&](std::size_t thread) {
        const test::TempFolder folder;
        test::Random random(static_cast<unsigned>(thread));
        while (std::chrono::steady_clock::now() < end && wrong[thread].empty()) {
            const std::size_t row = random.Below(static_cast<unsigned>(all.size()));
            ++calls[thread][row];
            if (!all[row].Holds(folder.Path()))
                wrong[thread].push_back(all[row].operation->names[0]);
        }
    });
    for (std::size_t row = 0; row < all.size(); ++row) {
        int sum = 0;
        for (const std::vector<int>& ofThread : calls)
            sum += ofThread[row];
        EXPECT_GT(sum, 0) << all[row].operation->names[0] << " was not called";
    }
    for (const std::vector<std::string>& names : wrong)
        EXPECT_EQ(names, std::vector<std::string>());
}
