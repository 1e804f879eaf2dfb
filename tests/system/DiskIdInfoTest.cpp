// What the library makes of a machine's drives. Each test in a process of its own, since the answers are kept.

#include "support/ImportPatch.h"
#include "support/OwnProcess.h"
#include "system/FakeDrives.h"
#include "system/FakeWmi.h"

#include <Kelpkit/SystemInfo.h>
#include <Kelpkit/Text.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <objbase.h>
#include <wbemidl.h>
#include <winioctl.h>

#include <cstdint>
#include <initializer_list>
#include <regex>
#include <string>
#include <vector>

using namespace KELPKIT;
using test::Descriptor;
using test::FakeDrive;
using test::FakeDrives;
using test::FakeWmi;
using test::InOwnProcess;
using test::Offset;
using test::QueryDrive;
using test::SmartDrive;
using test::WithOffset;

namespace
{

using Texts = std::vector<std::string>;

// The hardware code for these disks and this machine's processor.
std::wstring CodeOf(std::initializer_list<std::wstring> diskIds)
{
    std::wstring code;
    for (const std::wstring& diskId : diskIds) {
        std::wstring digest;
        BuildMd5Code(GetCPUId() + diskId, digest);
        code += code.empty() ? digest : L"-" + digest;
    }
    return code;
}

FakeDrive OnBus(STORAGE_BUS_TYPE busType, FakeDrive drive)
{
    drive.busType = busType;
    return drive;
}

FakeDrive Failing(bool FakeDrive::*answer, FakeDrive drive)
{
    drive.*answer = false;
    return drive;
}

FakeDrive WithDeviceMap(BYTE map, FakeDrive drive)
{
    drive.deviceMap = map;
    return drive;
}

// The identifier of a single drive with this descriptor.
std::wstring IdOfDescriptor(const std::string& descriptor)
{
    FakeDrive drive;
    drive.descriptor = descriptor;
    const FakeWmi wmi({});
    const FakeDrives drives({drive});
    return GetHDDId();
}

// WMI models of which the pair swap leaves "ABCD" and "EFGH": the low bytes, and of these half as many as there are
// characters.
const std::wstring kModelAbcd = L"\x4142\x4344";
const std::wstring kModelEfgh = L"\x4546\x4748";

// The kind of COM that runs on this thread, or what says that there is none.
HRESULT ComKind()
{
    APTTYPE type = APTTYPE_CURRENT;
    APTTYPEQUALIFIER qualifier = APTTYPEQUALIFIER_NONE;
    const HRESULT result = ::CoGetApartmentType(&type, &qualifier);
    return FAILED(result) ? result : static_cast<HRESULT>(type);
}

// Calls the library with the machine's own COM and WMI, and looks whether COM is afterwards as it was.
void ExpectComUntouched()
{
    const HRESULT before = ComKind();
    const FakeDrives drives({QueryDrive(nullptr, "XY", "S1")});
    EXPECT_EQ(GetHDDId(), L"-S1");
    EXPECT_EQ(ComKind(), before);
}

} // namespace

TEST(GetHDDId, OnThisMachineIsTheFirstOfTheHardwareCode)
{
    InOwnProcess([] {
        const std::wstring id = GetHDDId();
        const std::wstring code = GetHardwareCode();
        EXPECT_EQ(code.substr(0, 32), CodeOf({id}));
        EXPECT_TRUE(std::regex_match(code, std::wregex(L"[0-9a-f]{32}(-[0-9a-f]{32})*")))
            << testing::PrintToString(code);
        EXPECT_TRUE(id.empty() || id.find(L'-') != std::wstring::npos) << testing::PrintToString(id);
        EXPECT_EQ(GetHDDId(), id);
        EXPECT_EQ(GetHardwareCode(), code);
    });
}

TEST(GetHDDId, IsEmptyWithoutDrives)
{
    InOwnProcess([] {
        const FakeWmi wmi({});
        const FakeDrives drives({});
        EXPECT_EQ(GetHDDId(), L"");
        EXPECT_EQ(GetHardwareCode(), CodeOf({L""}));
        EXPECT_EQ(FakeDrives::Calls(), (Texts{"open 0 rw", "open 0", "open 0"}));
    });
}

TEST(GetHDDId, IsEmptyForAMachineWhoseOnlyDiskIsOnUsb)
{
    InOwnProcess([] {
        const FakeWmi wmi({});
        const FakeDrives drives({OnBus(BusTypeUsb, QueryDrive(nullptr, "stick", "S1"))});
        EXPECT_EQ(GetHDDId(), L"");
        EXPECT_EQ(GetHardwareCode(), CodeOf({L""})) << "one digest";
    });
}

TEST(GetHDDId, AsksTheDrivesOnceAlsoWhenADiskIsAdded)
{
    InOwnProcess([] {
        const FakeWmi wmi({});
        const FakeDrives drives({QueryDrive(nullptr, "XY", "S1")});
        EXPECT_EQ(GetHDDId(), L"-S1");
        const std::size_t calls = FakeDrives::Calls().size();
        const std::size_t steps = FakeWmi::Steps().size();
        FakeDrives::Add(QueryDrive(nullptr, "XY", "S2"));
        EXPECT_EQ(GetHDDId(), L"-S1");
        EXPECT_EQ(GetHardwareCode(), CodeOf({L"-S1"}));
        EXPECT_EQ(FakeDrives::Calls().size(), calls);
        EXPECT_EQ(FakeWmi::Steps().size(), steps);
    });
}

TEST(GetHDDId, AsksTheDrivesOnceAlsoWhereThereAreNone)
{
    InOwnProcess([] {
        const FakeWmi wmi({});
        const FakeDrives drives({});
        EXPECT_EQ(GetHardwareCode(), CodeOf({L""}));
        const std::size_t calls = FakeDrives::Calls().size();
        FakeDrives::Add(QueryDrive(nullptr, "XY", "S1"));
        EXPECT_EQ(GetHDDId(), L"");
        EXPECT_EQ(FakeDrives::Calls().size(), calls);
    });
}

TEST(GetHardwareCode, OfTwoDisksIsTwoDigestsJoinedByOneHyphen)
{
    InOwnProcess([] {
        const FakeWmi wmi({});
        const FakeDrives drives({QueryDrive(nullptr, "XY", "S1"), QueryDrive(nullptr, "XY", "S2")});
        EXPECT_EQ(GetHardwareCode(), CodeOf({L"-S1", L"-S2"}));
        EXPECT_EQ(GetHardwareCode().size(), 65U);
        EXPECT_EQ(GetHDDId(), L"-S1");
    });
}

TEST(DriveScan, EndsWithTheSixteenthDrive)
{
    InOwnProcess([] {
        const FakeWmi wmi({});
        const FakeDrives drives(std::vector<FakeDrive>(17, QueryDrive(nullptr, "XY", "S1")));
        EXPECT_EQ(GetHardwareCode().size(), 16U * 33U - 1U);
        EXPECT_EQ(FakeDrives::Calls().back(), "close 15");
    });
}

TEST(DriveScan, EndsWithTheSixteenthDriveBySmart)
{
    InOwnProcess([] {
        const FakeDrives drives(std::vector<FakeDrive>(17, SmartDrive("M", "S")));
        EXPECT_EQ(GetHardwareCode().size(), 16U * 33U - 1U);
        EXPECT_EQ(FakeDrives::Calls().back(), "close 15 rw");
    });
}

TEST(DriveScan, EndsBeforeAThirdDriveThatFails)
{
    for (bool FakeDrive::*const answer : {&FakeDrive::opens, &FakeDrive::answersQuery}) {
        InOwnProcess([answer] {
            const FakeDrive drive = QueryDrive(nullptr, "XY", "S1");
            const FakeWmi wmi({});
            const FakeDrives drives({drive, drive, Failing(answer, drive), drive});
            EXPECT_EQ(GetHardwareCode(), CodeOf({L"-S1", L"-S1"}));
        });
    }
}

TEST(DriveScan, EndsBeforeAThirdDriveThatFailsBySmart)
{
    for (bool FakeDrive::*const answer :
         {&FakeDrive::opens, &FakeDrive::opensForWriting, &FakeDrive::answersVersion, &FakeDrive::answersIdentify}) {
        InOwnProcess([answer] {
            const FakeDrive drive = SmartDrive("M", "S");
            const FakeDrives drives({drive, drive, Failing(answer, drive), drive});
            EXPECT_EQ(GetHardwareCode(), CodeOf({L"M-S", L"M-S"}));
            EXPECT_EQ(FakeDrives::OpenHandles().back().find("rw"), std::string::npos) << "closed on failure, too";
        });
    }
}

TEST(DriveScan, LeavesOutDrivesOnUsbAndRaidAndGoesOn)
{
    for (const bool isSmart : {false, true}) {
        InOwnProcess([isSmart] {
            FakeDrive drive = QueryDrive(nullptr, "x", "S1");
            drive.identifyBlock = SmartDrive("x", "S1").identifyBlock;
            drive.opensForWriting = isSmart;
            const FakeWmi wmi({});
            const FakeDrives drives({OnBus(BusTypeUsb, drive), drive, OnBus(BusTypeRAID, drive), drive});
            EXPECT_EQ(GetHardwareCode(), CodeOf({L"x-S1", L"x-S1"}));
        });
    }
}

TEST(DriveScan, TakesDrivesOnEveryOtherBus)
{
    InOwnProcess([] {
        std::vector<FakeDrive> drives;
        for (const int busType : {0, 1, 2, 3, 4, 5, 6, 9, 10, 11, 12, 13, 14, 15, 16, 17})
            drives.push_back(OnBus(static_cast<STORAGE_BUS_TYPE>(busType), QueryDrive(nullptr, "x", "S1")));
        const FakeWmi wmi({});
        const FakeDrives fake(drives);
        EXPECT_EQ(GetHardwareCode().size(), 16U * 33U - 1U);
    });
}

TEST(DriveScan, TakesADriveWhoseBusIsNotKnown)
{
    InOwnProcess([] {
        const FakeWmi wmi({});
        const FakeDrives drives(
            {OnBus(BusTypeUsb, Failing(&FakeDrive::answersBusQuery, QueryDrive(nullptr, "x", "S1")))});
        EXPECT_EQ(GetHDDId(), L"x-S1");
    });
}

TEST(Smart, AsksTheDriveAndLeavesTheProbeAndTheBusTestOpen)
{
    InOwnProcess([] {
        const FakeDrives drives({SmartDrive("M", "S1"), SmartDrive("M", "S2")});
        EXPECT_EQ(GetHardwareCode(), CodeOf({L"M-S1", L"M-S2"}));
        EXPECT_EQ(FakeDrives::Calls(),
                  (Texts{"open 0 rw",                                                             // the probe
                         "open 0", "bus 0", "open 0 rw", "version 0", "identify 0", "close 0 rw", //
                         "open 1", "bus 1", "open 1 rw", "version 1", "identify 1", "close 1 rw", //
                         "open 2", "open 2 rw"}));
        EXPECT_EQ(FakeDrives::OpenHandles(), (Texts{"0 rw", "0", "1"}));
    });
}

TEST(Smart, AsksNoWmi)
{
    InOwnProcess([] {
        const FakeWmi wmi({L"x"});
        const FakeDrives drives({SmartDrive("M", "S1")});
        EXPECT_EQ(GetHDDId(), L"M-S1");
        EXPECT_EQ(FakeWmi::Steps(), Texts{});
    });
}

TEST(Smart, KeepsTheOrderOfTheCharactersInTheBlock)
{
    InOwnProcess([] {
        const FakeDrives drives({SmartDrive("TS0100MD00 3", "       1W4D5A6B     ")});
        EXPECT_EQ(GetHDDId(), L"TS0100MD00 3-1W4D5A6B");
    });
}

TEST(Smart, OfEmptyTextsIsAHyphen)
{
    InOwnProcess([] {
        const FakeDrives drives({SmartDrive("", "")});
        EXPECT_EQ(GetHDDId(), L"-");
    });
}

TEST(Smart, ReadsTheTextsInTheAnsiCodePage)
{
    InOwnProcess([] {
        const FakeDrives drives({SmartDrive("\xD6\xD0", "\xE9")});
        EXPECT_EQ(GetHDDId(), AnsiToUnicode("\xD6\xD0") + L"-" + AnsiToUnicode("\xE9"));
    });
}

TEST(Smart, SendsIdentifyDevice)
{
    InOwnProcess([] {
        const FakeDrives drives({SmartDrive("M", "S"), SmartDrive("M", "S"), SmartDrive("M", "S")});
        GetHDDId();
        // Size 512; features 0, sector count 1, sector number 1, cylinder 0, drive/head, command; the drive.
        const std::string rest(19, '\0');
        EXPECT_EQ(FakeDrives::Commands(), (Texts{std::string("\0\2\0\0\0\1\1\0\0\xA0\xEC\0\0", 13) + rest,
                                                 std::string("\0\2\0\0\0\1\1\0\0\xB0\xEC\0\1", 13) + rest,
                                                 std::string("\0\2\0\0\0\1\1\0\0\xA0\xEC\0\2", 13) + rest}));
    });
}

TEST(Smart, SendsIdentifyPacketDeviceToAnAtapiDrive)
{
    InOwnProcess([] {
        // Bit 4 of the map, shifted right by the number of the drive.
        const FakeDrive drive = SmartDrive("M", "S");
        const FakeDrives drives({WithDeviceMap(0x10, drive), WithDeviceMap(0x10, drive), WithDeviceMap(0x20, drive),
                                 WithDeviceMap(0x80, drive), WithDeviceMap(0xFF, drive), WithDeviceMap(0xEF, drive)});
        EXPECT_EQ(GetHardwareCode().size(), 6U * 33U - 1U);
        std::string commands;
        for (const std::string& command : FakeDrives::Commands())
            commands.push_back(command[10]);
        EXPECT_EQ(commands, "\xA1\xEC\xEC\xA1\xEC\xEC");
    });
}

TEST(Smart, IsUsedWhereTheFirstDriveCanBeWrittenOnly)
{
    InOwnProcess([] {
        const FakeWmi wmi({});
        const FakeDrives drives({QueryDrive(nullptr, "x", "S1"), SmartDrive("M", "S2")});
        EXPECT_EQ(GetHardwareCode(), CodeOf({L"x-S1", L"-"}));
        EXPECT_EQ(FakeDrives::Commands(), Texts{});
    });
}

TEST(Smart, IsNotFollowedByAnotherMethodWhereItFails)
{
    InOwnProcess([] {
        FakeDrive drive = QueryDrive(nullptr, "x", "S1");
        drive.opensForWriting = true;
        drive.answersVersion = false;
        const FakeWmi wmi({});
        const FakeDrives drives({drive});
        EXPECT_EQ(GetHDDId(), L"");
        EXPECT_EQ(GetHardwareCode(), CodeOf({L""}));
        EXPECT_EQ(FakeWmi::Steps(), Texts{});
    });
}

TEST(StorageQuery, AsksWmiThenTheDrivesAndLeavesTheBusTestOpen)
{
    InOwnProcess([] {
        const FakeWmi wmi({L"other"});
        const FakeDrives drives({QueryDrive(nullptr, "XY", "S1"), QueryDrive(nullptr, "XY", "S2")});
        EXPECT_EQ(GetHardwareCode(), CodeOf({L"-S1", L"-S2"}));
        EXPECT_EQ(FakeWmi::Steps(),
                  (Texts{"CoInitializeEx", "CoInitializeSecurity", "CoCreateInstance", "ConnectServer",
                         "CoSetProxyBlanket", "ExecQuery", "Next", "Get", "Next 2", "CoUninitialize"}));
        EXPECT_EQ(FakeWmi::Unreleased(), 0);
        EXPECT_EQ(FakeDrives::Calls(), (Texts{"open 0 rw",                                       // the probe
                                              "open 0", "bus 0", "open 0", "query 0", "close 0", //
                                              "open 1", "bus 1", "open 1", "query 1", "close 1", //
                                              "open 2", "open 2"}));
        EXPECT_EQ(FakeDrives::OpenHandles(), (Texts{"0", "1"}));
    });
}

TEST(StorageQuery, GivesNoModelForANameOfTwoOrMoreCharacters)
{
    InOwnProcess([] {
        EXPECT_EQ(IdOfDescriptor(Descriptor("ATA     ", "Samsung SSD 860", "S3Z9NB0K123456X")), L"-S3Z9NB0K123456X");
    });
}

TEST(StorageQuery, GivesTheModelOfANameOfOneCharacter)
{
    InOwnProcess([] { EXPECT_EQ(IdOfDescriptor(Descriptor(nullptr, "x", "S1")), L"x-S1"); });
    InOwnProcess([] { EXPECT_EQ(IdOfDescriptor(Descriptor("x", nullptr, "S1")), L"x-S1"); });
}

TEST(StorageQuery, DecodesAndTrimsTheSerialNumber)
{
    InOwnProcess(
        [] { EXPECT_EQ(IdOfDescriptor(Descriptor(nullptr, nullptr, "2020202057442D57434334")), L"-WD-WCC4"); });
    InOwnProcess([] { EXPECT_EQ(IdOfDescriptor(Descriptor(nullptr, nullptr, "  S 1  ")), L"-S 1"); });
    InOwnProcess([] { EXPECT_EQ(IdOfDescriptor(Descriptor(nullptr, nullptr, "S\x01")), L"-"); });
}

TEST(StorageQuery, DecodesTheName)
{
    // "78" is an x in hexadecimal digits.
    InOwnProcess([] { EXPECT_EQ(IdOfDescriptor(Descriptor("78", nullptr, "S1")), L"x-S1"); });
    InOwnProcess([] { EXPECT_EQ(IdOfDescriptor(Descriptor(nullptr, "7820202020", "S1")), L"x-S1"); });
}

TEST(StorageQuery, ReadsNoTextOutsideTheDescriptor)
{
    const struct {
        Offset place;
        std::string descriptor;
        const wchar_t* id;
    } cases[] = {
        {Offset::kVendor, Descriptor(nullptr, "x", "S1"), L"x-S1"},
        {Offset::kProduct, Descriptor("x", nullptr, "S1"), L"x-S1"},
        {Offset::kSerial, Descriptor("x", nullptr, nullptr), L"x-"},
    };
    for (const auto& row : cases) {
        InOwnProcess([place = row.place, descriptor = row.descriptor, id = row.id] {
            std::string bytes = descriptor;
            bytes.resize(9000);
            bytes.resize(10000, 'y');
            std::vector<FakeDrive> drives;
            // Zero, negative, behind the 10,000 bytes, and at texts that do not end in them.
            for (const std::int32_t offset : {0, -1, -2147483647 - 1, 10000, 10001, 2147483647, 9000, 9999}) {
                drives.emplace_back();
                drives.back().descriptor = WithOffset(bytes, place, offset);
            }
            const FakeWmi wmi({});
            const FakeDrives fake(drives);
            EXPECT_EQ(GetHardwareCode(), CodeOf({id, id, id, id, id, id, id, id}));
        });
    }
}

TEST(StorageQuery, ReadsATextThatEndsInTheLastByte)
{
    InOwnProcess([] {
        std::string descriptor = WithOffset(Descriptor(nullptr, "x", nullptr), Offset::kSerial, 9990);
        descriptor.resize(9990);
        descriptor += std::string("WCC4N1234\0", 10);
        EXPECT_EQ(IdOfDescriptor(descriptor), L"x-WCC4N1234");
    });
}

TEST(StorageQuery, OfADriveThatTellsNothingIsAHyphen)
{
    InOwnProcess([] { EXPECT_EQ(IdOfDescriptor(""), L"-"); });
}

TEST(StorageQuery, JoinsVendorAndProductForWmi)
{
    InOwnProcess([] {
        const FakeWmi wmi({L"YX", kModelAbcd + L"XY"});
        const FakeDrives drives({QueryDrive("X", "Y   ", "S1")});
        EXPECT_EQ(GetHDDId(), L"ABCD-S1");
    });
    InOwnProcess([] {
        const FakeWmi wmi({L"X  Y", kModelAbcd + L"XY"});
        const FakeDrives drives({QueryDrive("X  ", "Y", "S1")});
        EXPECT_EQ(GetHDDId(), L"-S1") << "spaces between them stay";
    });
}

TEST(StorageQuery, GivesTwoIdenticalDisksAnEntryOfWmiEach)
{
    InOwnProcess([] {
        const FakeDrive drive = QueryDrive(nullptr, "x", "S1");
        const FakeWmi wmi({kModelAbcd + L"xx", kModelEfgh + L"xx", L"x"});
        const FakeDrives drives({drive, drive, drive, drive});
        // The entry that equals the name, then those that contain it, then the name itself.
        EXPECT_EQ(GetHardwareCode(), CodeOf({L"x-S1", L"ABCD-S1", L"EFGH-S1", L"x-S1"}));
    });
}

TEST(StorageQuery, GivesADiskWithoutANameTheFirstEntryOfWmi)
{
    InOwnProcess([] {
        const FakeWmi wmi({kModelAbcd, L"y"});
        const FakeDrives drives({QueryDrive(nullptr, nullptr, "S1"), QueryDrive(nullptr, nullptr, "S2")});
        EXPECT_EQ(GetHardwareCode(), CodeOf({L"AB-S1", L"y-S2"}));
    });
}

TEST(StorageQuery, LeavesOutModelsOfWmiThatEndInAtaDevice)
{
    InOwnProcess([] {
        const FakeWmi wmi({kModelAbcd + L"x ATA Device", kModelAbcd + L"12345678", L"y"});
        const FakeDrives drives({QueryDrive(nullptr, nullptr, "S1")});
        EXPECT_EQ(GetHDDId(), L"y-S1") << "the second has exactly 10 characters";
    });
}

TEST(StorageQuery, LeavesOutDisksOfWmiWithoutAModel)
{
    InOwnProcess([] {
        const FakeWmi wmi({FakeWmi::kNoModel, L"y"});
        const FakeDrives drives({QueryDrive(nullptr, nullptr, "S1")});
        EXPECT_EQ(GetHDDId(), L"y-S1");
        EXPECT_EQ(FakeWmi::Unreleased(), 0);
    });
}

TEST(StorageQuery, KeepsTheNamesWhereWmiFailsAtAnyStep)
{
    for (const char* const step :
         {"CoCreateInstance", "ConnectServer", "CoSetProxyBlanket", "ExecQuery", "Next", "Get", "Next 2"}) {
        InOwnProcess([step] {
            const FakeWmi wmi({kModelAbcd + L"xx", L"xyz"}, step);
            const FakeDrives drives({QueryDrive(nullptr, "x", "S1")});
            EXPECT_EQ(GetHDDId(), L"x-S1") << step;
            EXPECT_EQ(FakeWmi::Steps().end()[-2], step) << "nothing is asked after it";
            EXPECT_EQ(FakeWmi::Steps().back(), "CoUninitialize");
            EXPECT_EQ(FakeWmi::Unreleased(), 0) << step;
        });
    }
}

TEST(StorageQuery, KeepsTheNamesWhereWmiHangs)
{
    for (const char* const step : {"Next", "Next 2"}) {
        InOwnProcess([step] {
            const FakeWmi wmi({kModelAbcd + L"xx", L"xyz"}, step, WBEM_S_TIMEDOUT);
            const FakeDrives drives({QueryDrive(nullptr, "x", "S1")});
            EXPECT_EQ(GetHDDId(), L"x-S1") << step;
            EXPECT_EQ(FakeWmi::Steps().end()[-2], step) << "it is not waited for again";
            EXPECT_EQ(FakeWmi::Unreleased(), 0) << step;
        });
    }
}

TEST(StorageQuery, KeepsTheNamesWhereWmiGetsNoText)
{
    InOwnProcess([] {
        const test::ImportPatch patch(
            "SysAllocString", +[](const OLECHAR*) -> BSTR { return nullptr; });
        const FakeDrives drives({QueryDrive(nullptr, "x", "S1")});
        EXPECT_EQ(GetHDDId(), L"x-S1");
    });
}

TEST(StorageQuery, EndsComAtOnceWhereItsSecurityIsSetAlready)
{
    InOwnProcess([] {
        const FakeWmi wmi({kModelAbcd + L"xx"}, "CoInitializeSecurity");
        const FakeDrives drives({QueryDrive(nullptr, "x", "S1")});
        EXPECT_EQ(GetHDDId(), L"ABCD-S1") << "WMI answers where the caller has COM running";
        EXPECT_EQ(FakeWmi::Steps(),
                  (Texts{"CoInitializeEx", "CoInitializeSecurity", "CoUninitialize", "CoCreateInstance",
                         "ConnectServer", "CoSetProxyBlanket", "ExecQuery", "Next", "Get", "Next 2"}));
        EXPECT_EQ(FakeWmi::Unreleased(), 0);
    });
}

TEST(StorageQuery, EndsNoComThatItDidNotStart)
{
    InOwnProcess([] {
        const FakeWmi wmi({kModelAbcd + L"xx"}, "CoInitializeEx");
        const FakeDrives drives({QueryDrive(nullptr, "x", "S1")});
        EXPECT_EQ(GetHDDId(), L"ABCD-S1");
        EXPECT_EQ(FakeWmi::Steps().back(), "Next 2");
        EXPECT_EQ(FakeWmi::Unreleased(), 0);
    });
}

TEST(ComOfTheCaller, StaysUninitialized)
{
    InOwnProcess([] {
        ASSERT_EQ(ComKind(), CO_E_NOTINITIALIZED);
        ExpectComUntouched();
    });
}

TEST(ComOfTheCaller, StaysSingleThreaded)
{
    InOwnProcess([] {
        ASSERT_EQ(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
        ASSERT_EQ(ComKind(), APTTYPE_MAINSTA);
        ExpectComUntouched();
        ::CoUninitialize();
        EXPECT_EQ(ComKind(), CO_E_NOTINITIALIZED);
    });
}

TEST(ComOfTheCaller, StaysMultithreaded)
{
    InOwnProcess([] {
        ASSERT_EQ(::CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
        ASSERT_EQ(ComKind(), APTTYPE_MTA);
        ExpectComUntouched();
        ::CoUninitialize();
        EXPECT_EQ(ComKind(), CO_E_NOTINITIALIZED);
    });
}

TEST(ComOfTheCaller, StaysWhereItsSecurityIsSetAlready)
{
    for (const DWORD mode : {COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED}) {
        InOwnProcess([mode] {
            const test::ImportPatch patch(
                "CoInitializeSecurity",
                +[](void*, LONG, SOLE_AUTHENTICATION_SERVICE*, void*, DWORD, DWORD, void*, DWORD, void*) -> HRESULT {
                    return RPC_E_TOO_LATE;
                });
            ASSERT_EQ(::CoInitializeEx(nullptr, mode), S_OK);
            ExpectComUntouched();
            ::CoUninitialize();
            EXPECT_EQ(ComKind(), CO_E_NOTINITIALIZED);
        });
    }
}
