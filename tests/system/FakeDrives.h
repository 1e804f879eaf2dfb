#pragma once

#include "support/ImportPatch.h"

#include <windows.h>

#include <winioctl.h>

#include <cstdint>
#include <string>
#include <vector>

namespace test
{

struct FakeDrive {
    bool opens = true;
    bool answersBusQuery = true;
    STORAGE_BUS_TYPE busType = BusTypeSata;

    // The storage query.
    bool answersQuery = true;
    std::string descriptor;

    // SMART. Drive 0 decides whether it is used.
    bool opensForWriting = false;
    bool answersVersion = true;
    BYTE deviceMap = 0;
    bool answersIdentify = true;
    std::string identifyBlock;
};

// The places of a storage device descriptor's offsets.
enum class Offset { kVendor = 12, kProduct = 16, kSerial = 24 };

// A storage device descriptor with these texts, as zero-terminated strings behind its head. A null text is not there.
std::string Descriptor(const char* vendor, const char* product, const char* serial);
std::string WithOffset(std::string descriptor, Offset place, std::int32_t offset);

// A drive that answers the storage query with these texts, and one that answers SMART.
FakeDrive QueryDrive(const char* vendor, const char* product, const char* serial);
FakeDrive SmartDrive(const std::string& model, const std::string& serial);

// Kelpkit's drives while it lives, numbered from 0; one at a time.
class FakeDrives
{
public:
    explicit FakeDrives(std::vector<FakeDrive> drives);

    static void Add(const FakeDrive& drive);

    // What was asked, such as "open 0", "bus 0", "query 0", "open 0 rw", "version 0", "identify 0", "close 0".
    static const std::vector<std::string>& Calls();

    // The handles that are open, such as "0" and "0 rw".
    static std::vector<std::string> OpenHandles();

    // The 32 bytes of each identify command.
    static const std::vector<std::string>& Commands();

private:
    ImportPatch m_createFile;
    ImportPatch m_control;
    ImportPatch m_closeHandle;
};

} // namespace test
