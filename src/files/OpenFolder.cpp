#include "files/OpenFolder.h"

#include <cstdint>

namespace KELPKIT
{
namespace
{

constexpr std::uint64_t Joined(DWORD high, DWORD low)
{
    return std::uint64_t{high} << 32 | low;
}

// What a file system says of a folder. Zeros where it says nothing.
struct Identity {
    explicit Identity(HANDLE folder)
    {
        BY_HANDLE_FILE_INFORMATION information = {};
        if (::GetFileInformationByHandle(folder, &information) == FALSE)
            return;
        volume = information.dwVolumeSerialNumber;
        index = Joined(information.nFileIndexHigh, information.nFileIndexLow);
        created = Joined(information.ftCreationTime.dwHighDateTime, information.ftCreationTime.dwLowDateTime);
    }

    // File systems without a number for the folder give 0, or all ones.
    bool HasIndex() const { return index != 0 && index != UINT64_MAX; }

    DWORD volume = 0;
    std::uint64_t index = 0;
    std::uint64_t created = 0;
};

// The path with all links and short names resolved; empty where the system cannot tell. It begins with the device,
// which has a name also where no drive letter is known for it.
std::wstring FinalPath(HANDLE folder)
{
    constexpr DWORD kForm = FILE_NAME_NORMALIZED | VOLUME_NAME_NT;
    std::wstring path(::GetFinalPathNameByHandleW(folder, nullptr, 0, kForm), L'\0');
    const DWORD length = ::GetFinalPathNameByHandleW(folder, path.data(), static_cast<DWORD>(path.size()), kForm);
    path.resize(length < path.size() ? length : 0);
    return path;
}

bool HaveSamePath(HANDLE one, HANDLE other)
{
    const std::wstring path = FinalPath(one);
    const std::wstring otherPath = FinalPath(other);
    return !path.empty() && ::CompareStringOrdinal(path.data(), static_cast<int>(path.size()), otherPath.data(),
                                                   static_cast<int>(otherPath.size()), TRUE) == CSTR_EQUAL;
}

} // namespace

OpenFolder::OpenFolder(const std::wstring& path)
    : m_folder(FileHandle(::CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                        nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr)))
{
}

bool OpenFolder::IsSameAs(const OpenFolder& other) const
{
    if (m_folder == nullptr || other.m_folder == nullptr)
        return false;
    // Asked for anew each time: where a file system stores no time of creation, it changes with the folder.
    const Identity mine(m_folder.get());
    const Identity others(other.m_folder.get());
    if (mine.HasIndex() && others.HasIndex()) {
        if (mine.volume != others.volume || mine.index != others.index)
            return false;
        // Some file systems give one number to several folders.
        if (mine.created != 0 && mine.created == others.created)
            return true;
    }
    return HaveSamePath(m_folder.get(), other.m_folder.get());
}

} // namespace KELPKIT
