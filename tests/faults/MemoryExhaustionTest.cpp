// Every operation while memory runs out: at its first allocation, at its second, and so on until it has what it needs.

#include <Kelpkit/Kelpkit.h> // first: MFC stands no windows.h before it

#include <Kelpkit/XMLParser.h>

#include "support/FailingHeap.h"
#include "support/FileContents.h"
#include "support/HandleCount.h"
#include "support/ImportPatch.h"
#include "support/Operations.h"
#include "support/OwnProcess.h"
#include "support/TempFolder.h"
#include "support/Threads.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

using test::FailingHeap;
using test::Operation;

namespace
{

// It ends the process where memory runs out while it gives up an appender, and loses what it was making.
#if defined(__GNUC__)
constexpr const wchar_t* kLog4cplus = L"liblog4cplusU.dll";
#else
constexpr const wchar_t* kLog4cplus = L"log4cplusU.dll";
#endif

// What the call gives where its n-th allocation fails; nothing where it throws std::bad_alloc.
template <class Call>
std::optional<std::string> CallFailing(std::size_t n, const Call& call)
{
    std::optional<std::string> result;
    try {
        FailingHeap::FailAt(n);
        result = call();
    } catch (const std::bad_alloc&) {
        result.reset();
    }
    return result;
}

class MemoryExhaustion : public testing::TestWithParam<Operation>
{
protected:
    std::string Call() const { return GetParam().call(m_folder.Path()); }
    void Prepare() const { GetParam().Prepare(m_folder.Path()); }
    std::string Left() const { return GetParam().Left(m_folder.Path()); }

    // Learns what the operation gives and leaves.
    void Learn()
    {
        Prepare();
        m_before = Left();
        m_result = Call();
        m_left = Left();
    }

    void ExpectWorks() const
    {
        Prepare();
        EXPECT_EQ(Call(), m_result);
        EXPECT_EQ(Left(), m_left);
    }

    // Returns false where memory sufficed.
    bool FailsAt(std::size_t n) const
    {
        Prepare();
        const std::optional<std::string> result = CallFailing(n, [this] { return Call(); });
        const bool hasFailed = FailingHeap::Stop();
        const std::vector<std::string>& failures = GetParam().failures;
        EXPECT_TRUE(!result || *result == m_result ||
                    std::find(failures.begin(), failures.end(), *result) != failures.end())
            << *result << " instead of " << m_result;
        const std::string left = Left();
        EXPECT_TRUE(left == m_before || left == m_left || GetParam().Is(Operation::kPiecemeal)) << left;
        return hasFailed;
    }

private:
    const test::FakePrograms m_programs;
    const test::TempFolder m_folder{L"内存 memory"};
    const test::LogToFile m_log{m_folder.Path()};
    std::string m_before;
    std::string m_result;
    std::string m_left;
};

// Afterwards nothing is lost, and the next call works.
TEST_P(MemoryExhaustion, ThrowsOrFailsAndLosesNothing)
{
    Learn();
    ExpectWorks();
    const FailingHeap heap(GetParam().Is(Operation::kConfiguresLog) ? kLog4cplus : nullptr);
    ExpectWorks();
    const std::size_t handles = test::HandleCount();
    const std::ptrdiff_t held = FailingHeap::Held();
    for (std::size_t n = 1; FailsAt(n); ++n) {
        ExpectWorks();
        ASSERT_FALSE(HasFailure()) << "allocation " << n;
        ASSERT_EQ(FailingHeap::Held(), held) << "allocation " << n;
    }
    EXPECT_EQ(test::HandleCount(), handles);
    test::InThreads(1, [this](std::size_t) { ExpectWorks(); });
}

INSTANTIATE_TEST_SUITE_P(Operations, MemoryExhaustion, testing::ValuesIn(test::Operations()),
                         [](const testing::TestParamInfo<Operation>& row) {
                             std::string name = row.param.names[0];
                             name.resize(std::min(name.find('('), name.size()));
                             std::replace_if(
                                 name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
                             return name + "_" + std::to_string(row.index);
                         });

// The first calls, which fill what is kept from then on: either not at all, or once.
template <class Call>
void ExpectFillsOnce(const Call& call)
{
    const FailingHeap heap;
    int fillings = 0;
    for (std::size_t n = 1;; ++n) {
        const std::ptrdiff_t held = FailingHeap::Held();
        const std::optional<std::string> got = CallFailing(n, call);
        if (!FailingHeap::Stop()) {
            EXPECT_GT(n, 1U);
            EXPECT_EQ(got, call());
            break;
        }
        EXPECT_FALSE(got) << "allocation " << n;
        fillings += FailingHeap::Held() == held ? 0 : 1;
    }
    EXPECT_LE(fillings, 1);
}

// The XML parser asks the C heap itself for the pages that it puts its elements in.
bool g_pageFails = false;

void* FailAtAPage(std::size_t size)
{
    constexpr std::size_t kPage = 32000;
    const bool fails = size >= kPage && g_pageFails;
    g_pageFails = g_pageFails && !fails;
    return fails ? nullptr : std::malloc(size);
}

IXMLTreePtr NewTree()
{
    IXMLTreePtr tree;
    CXMLTreeCreator::Allocate(tree);
    return tree;
}

} // namespace

TEST(MemoryExhaustionAtFirst, LeavesNoHalfTableOfCadColors)
{
    test::InOwnProcess([] {
        ExpectFillsOnce([] { return std::to_string(KELPKIT::CADColorToREF(L"255")); });
        EXPECT_EQ(KELPKIT::CADColorToREF(L"1"), 0x0000FFU);
        EXPECT_EQ(KELPKIT::CADColorToREF(L"255"), 0xFFFFFFU);
    });
}

TEST(MemoryExhaustionAtFirst, LeavesNoHalfIdentifiersOfTheHardware)
{
    test::InOwnProcess([] {
        const auto narrow = [](const std::wstring& text) { return std::string(text.begin(), text.end()); };
        ExpectFillsOnce([&] { return narrow(KELPKIT::GetCPUId()); });
        ExpectFillsOnce([&] { return narrow(KELPKIT::GetHDDId()); });
        ExpectFillsOnce([&] { return narrow(KELPKIT::GetHardwareCode()); });
    });
}

// The page that fails is asked for by one part or another of a new element.
TEST(MemoryExhaustionOfATree, LeavesNoElementWithoutItsLine)
{
    const test::TempFolder folder;
    const std::wstring path = folder / L"file.xml";
    for (int length = 0; length < 100; ++length) {
        test::WriteFileBytes(path, "<c>\n  <a/>\n</c>");
        const IXMLTreePtr tree = NewTree();
        ASSERT_TRUE(tree->LoadFile(path.c_str()));
        int added = 0;
        {
            const test::ImportPatch patch(L"XMLParser.dll", "malloc", FailAtAPage);
            g_pageFails = true;
            for (int i = 0; i < 1000; ++i) {
                if (!tree->AddChild(L"b", CString(L'x', length)))
                    continue;
                ++added;
                tree->GoToParent();
            }
        }
        EXPECT_FALSE(g_pageFails) << "no page was asked for";
        ASSERT_TRUE(tree->SaveFile(path.c_str()));
        const std::string element =
            length == 0 ? "<b/>" : "<b>" + std::string(static_cast<std::size_t>(length), 'x') + "</b>";
        std::string expected = "<c>\n  <a/>";
        for (int i = 0; i < added; ++i)
            expected += "\n  " + element;
        ASSERT_EQ(test::ReadFileBytes(path), expected + "\n</c>") << length;
    }
}

TEST(MemoryExhaustionOfATree, LeavesAnEmptyOneInUtf8WhereLoadingThrows)
{
    const test::TempFolder folder;
    const std::wstring path = folder / L"file.xml";
    const std::wstring copy = folder / L"copy.xml";
    test::WriteFileBytes(path, "<?xml version=\"1.0\" encoding=\"us-ascii\"?>\n<c>some text of some length</c>");
    const IXMLTreePtr tree = NewTree();
    const FailingHeap heap;
    for (std::size_t n = 1;; ++n) {
        const auto got =
            CallFailing(n, [&] { return std::string(tree->LoadFile(path.c_str()) ? "loaded" : "not loaded"); });
        if (!FailingHeap::Stop())
            break;
        ASSERT_NE(got, "loaded") << "allocation " << n;
        ASSERT_TRUE(tree->AddChild(L"c", L"\x4E2D"));
        ASSERT_TRUE(tree->SaveFile(copy.c_str()));
        EXPECT_EQ(test::ReadFileBytes(copy), "<c>\xE4\xB8\xAD</c>") << "allocation " << n;
    }
}

TEST(MemoryExhaustionAtTheEnd, OfAScopedFolderLeavesWhatIsThere)
{
    const test::TempFolder folder;
    const std::wstring path = folder / L"scoped";
    auto scoped = std::make_unique<KELPKIT::CAutoCreateFolder>(path);
    const FailingHeap heap;
    FailingHeap::FailAt(1);
    scoped.reset();
    EXPECT_TRUE(FailingHeap::Stop());
    EXPECT_TRUE(KELPKIT::CheckFolderExis(path));
}
