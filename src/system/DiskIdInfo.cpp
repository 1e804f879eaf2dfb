#include "system/DiskIdInfo.h"

#include "Handle.h"
#include "Kelpkit/Text.h"
#include "system/Com.h"
#include "system/DescriptorText.h"
#include "system/DiskModel.h"
#include "system/DiskModelQuery.h"
#include "system/IdentifyBlock.h"

#include <winioctl.h>

#include <cstddef>
#include <string>

namespace KELPKIT
{
namespace
{

constexpr int kDrives = 16;
constexpr DWORD kReadAndWrite = GENERIC_READ | GENERIC_WRITE;

// Null where the drive cannot be opened.
Handle OpenDrive(int drive, DWORD access)
{
    const std::wstring path = L"\\\\.\\PhysicalDrive" + std::to_wstring(drive);
    return FileHandle(
        ::CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
}

bool Control(HANDLE device, DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize)
{
    DWORD returned = 0;
    return ::DeviceIoControl(device, code, input, inputSize, output, outputSize, &returned, nullptr) != FALSE;
}

bool QueryDescriptor(HANDLE device, void* descriptor, DWORD size)
{
    STORAGE_PROPERTY_QUERY query = {};
    query.PropertyId = StorageDeviceProperty;
    query.QueryType = PropertyStandardQuery;
    return Control(device, IOCTL_STORAGE_QUERY_PROPERTY, &query, sizeof query, descriptor, size);
}

CString Widened(const std::string& ansi)
{
    return AnsiToUnicode(ansi).c_str();
}

// Whether the drive is on USB or behind a RAID controller.
bool IsOnIgnoredBus(int drive)
{
    // The handles of this and of the next stay open, by contract.
    const HANDLE device = OpenDrive(drive, 0).release();
    STORAGE_DEVICE_DESCRIPTOR descriptor = {};
    static_assert(sizeof descriptor == 40);
    return device != nullptr && QueryDescriptor(device, &descriptor, sizeof descriptor) &&
           (descriptor.BusType == BusTypeUsb || descriptor.BusType == BusTypeRAID);
}

// As a rule administrators only may.
bool MayWriteToDrives()
{
    return OpenDrive(0, kReadAndWrite).release() != nullptr;
}

SENDCMDINPARAMS IdentifyCommand(int drive, const GETVERSIONINPARAMS& version)
{
    const bool isPacketDevice = (version.bIDEDeviceMap >> drive & 0x10) != 0;
    SENDCMDINPARAMS command = {};
    command.cBufferSize = IDENTIFY_BUFFER_SIZE;
    command.irDriveRegs.bSectorCountReg = 1;
    command.irDriveRegs.bSectorNumberReg = 1;
    command.irDriveRegs.bDriveHeadReg = static_cast<BYTE>(drive % 2 == 0 ? 0xA0 : 0xB0);
    command.irDriveRegs.bCommandReg = static_cast<BYTE>(isPacketDevice ? ATAPI_ID_CMD : ID_CMD);
    command.bDriveNumber = static_cast<BYTE>(drive);
    return command;
}

// Calls ask(drive, id) for each drive in turn, until it says that the drive failed.
template <class Ask>
std::vector<CString> AskDrives(const Ask& ask)
{
    std::vector<CString> ids;
    for (int drive = 0; drive < kDrives; ++drive) {
        CString id;
        if (!IsOnIgnoredBus(drive) && !ask(drive, id))
            break;
        if (!id.IsEmpty())
            ids.push_back(id);
    }
    return ids;
}

} // namespace

std::vector<CString> CDiskIDInfo::DiskIds()
{
    std::vector<CString> ids;
    if (MayWriteToDrives()) {
        ids = AskDrives(AskBySmart);
    } else {
        const ComScope com;
        ReadModels();
        ids = AskDrives([this](int drive, CString& id) { return AskByStorageQuery(drive, id); });
    }
    if (ids.empty())
        ids.emplace_back();
    return ids;
}

bool CDiskIDInfo::AskBySmart(int drive, CString& id)
{
    const Handle device = OpenDrive(drive, kReadAndWrite);
    GETVERSIONINPARAMS version = {};
    if (device == nullptr || !Control(device.get(), SMART_GET_VERSION, nullptr, 0, &version, sizeof version))
        return false;

    // Both structures end in the first byte of the data that follows them.
    constexpr DWORD kCommandSize = sizeof(SENDCMDINPARAMS) - 1;
    constexpr DWORD kAnswerHeader = offsetof(SENDCMDOUTPARAMS, bBuffer);
    static_assert(sizeof version == 24 && kCommandSize == 32 && kAnswerHeader == 16);
    SENDCMDINPARAMS command = IdentifyCommand(drive, version);
    char answer[kAnswerHeader + IDENTIFY_BUFFER_SIZE] = {};
    if (!Control(device.get(), SMART_RCV_DRIVE_DATA, &command, kCommandSize, answer, sizeof answer))
        return false;

    const char* const block = answer + kAnswerHeader;
    id = JoinDiskId(Widened(IdentifyModel(block)), Widened(IdentifySerial(block)));
    return true;
}

void CDiskIDInfo::ReadModels()
{
    for (const CString& model : QueryDiskModels()) {
        if (!IsLeftOut(model))
            m_models.push_back(model);
    }
}

bool CDiskIDInfo::AskByStorageQuery(int drive, CString& id)
{
    const Handle device = OpenDrive(drive, 0);
    alignas(STORAGE_DEVICE_DESCRIPTOR) char buffer[10000] = {};
    if (device == nullptr || !QueryDescriptor(device.get(), buffer, sizeof buffer))
        return false;

    const auto& descriptor = reinterpret_cast<const STORAGE_DEVICE_DESCRIPTOR&>(buffer);
    const auto text = [&buffer](DWORD offset) { return Widened(DescriptorText(buffer, sizeof buffer, offset)); };
    CString name = text(descriptor.VendorIdOffset) + text(descriptor.ProductIdOffset);
    name = TakeModel(m_models, name.TrimRight(L' '));
    id = JoinDiskId(Widened(SwappedName(name)), text(descriptor.SerialNumberOffset));
    return true;
}

} // namespace KELPKIT
