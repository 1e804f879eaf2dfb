#include "system/FakeDrives.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

namespace test
{
namespace
{

struct OpenedDrive {
    std::size_t drive;
    std::string name;
    bool isOpen;
};

struct State {
    std::vector<FakeDrive> drives;
    std::vector<OpenedDrive> handles;
    std::vector<std::string> calls;
    std::vector<std::string> commands;
};

State g_state;

// Handles are numbers from here on.
constexpr std::size_t kFirstHandle = 0x70000000;

HANDLE ToHandle(std::size_t index)
{
    return reinterpret_cast<HANDLE>(kFirstHandle + 4 * index);
}

OpenedDrive* Find(HANDLE handle)
{
    for (std::size_t i = 0; i < g_state.handles.size(); ++i) {
        if (ToHandle(i) == handle && g_state.handles[i].isOpen)
            return &g_state.handles[i];
    }
    ADD_FAILURE() << "not an open drive: " << handle;
    return nullptr;
}

void Note(const char* call, const std::string& name)
{
    g_state.calls.push_back(call + (" " + name));
}

HANDLE WINAPI FakeCreateFile(const wchar_t* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                             DWORD disposition, DWORD, HANDLE templateFile)
{
    const std::wstring prefix = L"\\\\.\\PhysicalDrive";
    const std::wstring file = path;
    EXPECT_EQ(file.substr(0, prefix.size()), prefix);
    EXPECT_EQ(share, static_cast<DWORD>(FILE_SHARE_READ | FILE_SHARE_WRITE));
    EXPECT_EQ(security, nullptr);
    EXPECT_EQ(disposition, static_cast<DWORD>(OPEN_EXISTING));
    EXPECT_EQ(templateFile, nullptr);
    EXPECT_TRUE(access == 0 || access == (GENERIC_READ | GENERIC_WRITE)) << access;

    const auto number = static_cast<std::size_t>(std::stoul(file.substr(prefix.size())));
    const std::string name = std::to_string(number) + (access == 0 ? "" : " rw");
    Note("open", name);
    if (number >= g_state.drives.size() || !g_state.drives[number].opens ||
        (access != 0 && !g_state.drives[number].opensForWriting)) {
        ::SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    g_state.handles.push_back({number, name, true});
    return ToHandle(g_state.handles.size() - 1);
}

BOOL WINAPI FakeCloseHandle(HANDLE handle)
{
    OpenedDrive* const opened = Find(handle);
    if (opened == nullptr)
        return FALSE;
    Note("close", opened->name);
    opened->isOpen = false;
    return TRUE;
}

BOOL AnswerQuery(const OpenedDrive& opened, const void* input, DWORD inputSize, void* output, DWORD outputSize)
{
    const FakeDrive& drive = g_state.drives[opened.drive];
    EXPECT_EQ(inputSize, sizeof(STORAGE_PROPERTY_QUERY));
    const auto* const query = static_cast<const STORAGE_PROPERTY_QUERY*>(input);
    EXPECT_EQ(query->PropertyId, StorageDeviceProperty);
    EXPECT_EQ(query->QueryType, PropertyStandardQuery);
    EXPECT_EQ(opened.name.find("rw"), std::string::npos) << "asked without access rights";
    auto* const bytes = static_cast<char*>(output);
    EXPECT_EQ(std::count(bytes, bytes + outputSize, '\0'), static_cast<std::ptrdiff_t>(outputSize));
    if (outputSize == 40) {
        Note("bus", opened.name);
        // Windows gives as much of the descriptor as there is room for.
        std::memcpy(bytes + offsetof(STORAGE_DEVICE_DESCRIPTOR, BusType), &drive.busType, sizeof drive.busType);
        return drive.answersBusQuery ? TRUE : FALSE;
    }
    Note("query", opened.name);
    EXPECT_EQ(outputSize, 10000U);
    drive.descriptor.copy(bytes, outputSize);
    return drive.answersQuery ? TRUE : FALSE;
}

BOOL AnswerVersion(const OpenedDrive& opened, void* output, DWORD outputSize)
{
    Note("version", std::to_string(opened.drive));
    EXPECT_EQ(outputSize, 24U);
    static_cast<GETVERSIONINPARAMS*>(output)->bIDEDeviceMap = g_state.drives[opened.drive].deviceMap;
    return g_state.drives[opened.drive].answersVersion ? TRUE : FALSE;
}

BOOL AnswerIdentify(const OpenedDrive& opened, const void* input, DWORD inputSize, void* output, DWORD outputSize)
{
    Note("identify", std::to_string(opened.drive));
    EXPECT_EQ(inputSize, 32U);
    EXPECT_EQ(outputSize, 528U);
    g_state.commands.emplace_back(static_cast<const char*>(input), inputSize);
    g_state.drives[opened.drive].identifyBlock.copy(static_cast<char*>(output) + 16, 512);
    return g_state.drives[opened.drive].answersIdentify ? TRUE : FALSE;
}

BOOL WINAPI FakeDeviceIoControl(HANDLE device, DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize,
                                DWORD* returned, OVERLAPPED* overlapped)
{
    EXPECT_EQ(overlapped, nullptr);
    const OpenedDrive* const opened = Find(device);
    if (opened == nullptr || output == nullptr || returned == nullptr)
        return FALSE;
    *returned = outputSize;
    switch (code) {
    case 0x2D1400:
        return AnswerQuery(*opened, input, inputSize, output, outputSize);
    case 0x74080:
        EXPECT_EQ(inputSize, 0U);
        return AnswerVersion(*opened, output, outputSize);
    case 0x7C088:
        return AnswerIdentify(*opened, input, inputSize, output, outputSize);
    default:
        ADD_FAILURE() << "control code " << code;
        return FALSE;
    }
}

} // namespace

std::string Descriptor(const char* vendor, const char* product, const char* serial)
{
    std::string descriptor(sizeof(STORAGE_DEVICE_DESCRIPTOR), '\0');
    for (const auto& [place, text] :
         {std::pair(Offset::kVendor, vendor), {Offset::kProduct, product}, {Offset::kSerial, serial}}) {
        if (text == nullptr)
            continue;
        descriptor = WithOffset(descriptor, place, static_cast<std::int32_t>(descriptor.size()));
        descriptor.append(text).push_back('\0');
    }
    return descriptor;
}

std::string WithOffset(std::string descriptor, Offset place, std::int32_t offset)
{
    std::memcpy(descriptor.data() + static_cast<int>(place), &offset, sizeof offset);
    return descriptor;
}

FakeDrive QueryDrive(const char* vendor, const char* product, const char* serial)
{
    FakeDrive drive;
    drive.descriptor = Descriptor(vendor, product, serial);
    return drive;
}

FakeDrive SmartDrive(const std::string& model, const std::string& serial)
{
    FakeDrive drive;
    drive.opensForWriting = true;
    drive.identifyBlock.assign(512, '\0');
    drive.identifyBlock.replace(20, 20, (serial + std::string(20, ' ')).substr(0, 20));
    drive.identifyBlock.replace(54, 40, (model + std::string(40, ' ')).substr(0, 40));
    return drive;
}

FakeDrives::FakeDrives(std::vector<FakeDrive> drives)
    : m_createFile("CreateFileW", &FakeCreateFile), m_control("DeviceIoControl", &FakeDeviceIoControl),
      m_closeHandle("CloseHandle", &FakeCloseHandle)
{
    g_state = {std::move(drives), {}, {}, {}};
}

void FakeDrives::Add(const FakeDrive& drive)
{
    g_state.drives.push_back(drive);
}

const std::vector<std::string>& FakeDrives::Calls()
{
    return g_state.calls;
}

std::vector<std::string> FakeDrives::OpenHandles()
{
    std::vector<std::string> names;
    for (const OpenedDrive& opened : g_state.handles) {
        if (opened.isOpen)
            names.push_back(opened.name);
    }
    return names;
}

const std::vector<std::string>& FakeDrives::Commands()
{
    return g_state.commands;
}

} // namespace test
