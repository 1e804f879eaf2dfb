// The caches and the code for processor and disks, with a processor and disks that say what a test wants.

#include "system/HardwareInfo.h"

#include "support/OwnProcess.h"
#include "system/Cpuid.h"
#include "system/DiskIdInfo.h"

#include <Kelpkit/Text.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace KELPKIT;
using test::InOwnProcess;

namespace
{

struct Machine {
    bool faults = false;
    int timesAskedProcessor = 0;
    int timesAskedDisks = 0;
    std::vector<CString> diskIds = {L"model-serial"};
};

Machine g_machine;

const std::wstring kProcessorId = L"GenuineIntel-00000001-00000001-0000000300000003";

std::wstring ProcessorId()
{
    return CHardwareInfo().ProcessorId().GetString();
}

std::wstring FirstDiskId()
{
    return CHardwareInfo().FirstDiskId().GetString();
}

std::wstring HardwareCode()
{
    return CHardwareInfo().HardwareCode().GetString();
}

std::wstring Digest(const std::wstring& text)
{
    std::wstring digest;
    BuildMd5Code(text, digest);
    return digest;
}

} // namespace

// In the place of the library's own.
CpuidRegisters KELPKIT::Cpuid(int leaf)
{
    g_machine.timesAskedProcessor += leaf == 0 ? 1 : 0;
    if (g_machine.faults && leaf == 3) {
        volatile int* volatile nowhere = nullptr;
        *nowhere = 1; // NOLINT(clang-analyzer-core.NullDereference): a fault is what is wanted
    }
    const auto value = static_cast<std::uint32_t>(leaf);
    return leaf == 0 ? CpuidRegisters{0x16, 0x756E6547, 0x6C65746E, 0x49656E69}
                     : CpuidRegisters{value, value, value, value};
}

std::vector<CString> CDiskIDInfo::DiskIds()
{
    ++g_machine.timesAskedDisks;
    return g_machine.diskIds;
}

TEST(HardwareInfo, AsksTheProcessorOnce)
{
    InOwnProcess([] {
        EXPECT_EQ(ProcessorId(), kProcessorId);
        EXPECT_EQ(ProcessorId(), kProcessorId);
        EXPECT_EQ(g_machine.timesAskedProcessor, 1);
    });
}

TEST(HardwareInfo, AsksAProcessorThatFaultedAgain)
{
    InOwnProcess([] {
        g_machine.faults = true;
        EXPECT_EQ(ProcessorId(), L"");
        EXPECT_EQ(ProcessorId(), L"");
        EXPECT_EQ(g_machine.timesAskedProcessor, 2);
        g_machine.faults = false;
        EXPECT_EQ(ProcessorId(), kProcessorId);
        g_machine.faults = true;
        EXPECT_EQ(ProcessorId(), kProcessorId) << "known by now";
    });
}

TEST(HardwareInfo, AsksTheDisksOnce)
{
    InOwnProcess([] {
        EXPECT_EQ(FirstDiskId(), L"model-serial");
        g_machine.diskIds = {L"another", L"model-serial"};
        EXPECT_EQ(FirstDiskId(), L"model-serial");
        EXPECT_EQ(HardwareCode().size(), 32U) << "of the one disk that was there";
        EXPECT_EQ(g_machine.timesAskedDisks, 1);
    });
}

TEST(HardwareInfo, AsksTheDisksOnceAlsoWhereNoneTells)
{
    InOwnProcess([] {
        g_machine.diskIds = {L""};
        EXPECT_EQ(FirstDiskId(), L"");
        EXPECT_EQ(FirstDiskId(), L"");
        EXPECT_EQ(g_machine.timesAskedDisks, 1);
    });
}

TEST(HardwareCode, OfOneDiskIsADigest)
{
    InOwnProcess(
        [] { EXPECT_EQ(HardwareCode(), Digest(L"GenuineIntel-00000001-00000001-0000000300000003model-serial")); });
}

TEST(HardwareCode, OfSeveralDisksIsADigestForEachJoinedByHyphens)
{
    InOwnProcess([] {
        g_machine.diskIds = {L"a-1", L"b-2", L"a-1"};
        const std::wstring first = Digest(kProcessorId + L"a-1");
        EXPECT_EQ(HardwareCode(), first + L"-" + Digest(kProcessorId + L"b-2") + L"-" + first);
    });
}

TEST(HardwareCode, OfNoDiskIsTheDigestOfTheProcessor)
{
    InOwnProcess([] {
        g_machine.diskIds = {L""};
        EXPECT_EQ(HardwareCode(), Digest(kProcessorId));
    });
}

TEST(HardwareCode, OfAProcessorThatFaultsIsThatOfTheDisks)
{
    InOwnProcess([] {
        g_machine.faults = true;
        EXPECT_EQ(HardwareCode(), Digest(L"model-serial"));
        g_machine.faults = false;
        EXPECT_EQ(HardwareCode(), Digest(kProcessorId + L"model-serial"));
    });
}
