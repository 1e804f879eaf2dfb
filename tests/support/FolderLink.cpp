#include "support/FolderLink.h"

#include "support/FolderTree.h"
#include "support/LastError.h"

#include <windows.h>
#include <winioctl.h>

#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace test
{
namespace
{

// Wine's own way from a Windows path to the path below it; null elsewhere.
using UnixFileName = char*(CDECL*)(const wchar_t*);

UnixFileName FindUnixFileName()
{
    return reinterpret_cast<UnixFileName>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
}

// The path of an entry of a folder that exists, whether the entry does or not.
std::wstring UnixPath(const std::wstring& path)
{
    const std::size_t backslash = path.rfind(L'\\');
    char* const name = FindUnixFileName()(path.substr(0, backslash).c_str());
    if (name == nullptr)
        throw std::runtime_error("no Unix path");
    const int size = ::MultiByteToWideChar(CP_UTF8, 0, name, -1, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, name, -1, wide.data(), size);
    ::HeapFree(::GetProcessHeap(), 0, name);
    wide.back() = L'/';
    return wide + path.substr(backslash + 1);
}

// Runs a program of the system below Wine until the link is there, or gone: there is no handle to wait for.
bool RunBelowWine(std::wstring command, const std::wstring& link, bool untilThere)
{
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    if (!::CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
        return false;
    for (int tries = 0; tries < 1000 && Exists(link) != untilThere; ++tries)
        ::Sleep(10);
    return Exists(link) == untilThere;
}

// The reparse data of a junction, which the SDK's headers do not declare.
struct JunctionData {
    DWORD tag;
    WORD dataLength;
    WORD reserved;
    WORD targetOffset;
    WORD targetLength;
    WORD nameOffset;
    WORD nameLength;
    wchar_t names[1];
};

void MakeJunction(const std::wstring& link, const std::wstring& target)
{
    const std::wstring name = L"\\??\\" + target;
    const std::size_t nameBytes = name.size() * sizeof(wchar_t);
    const std::size_t namesOffset = offsetof(JunctionData, names);
    std::vector<std::byte> buffer(namesOffset + nameBytes + 2 * sizeof(wchar_t));
    JunctionData data = {};
    data.tag = IO_REPARSE_TAG_MOUNT_POINT;
    data.dataLength = static_cast<WORD>(buffer.size() - offsetof(JunctionData, targetOffset));
    data.targetLength = static_cast<WORD>(nameBytes);
    data.nameOffset = static_cast<WORD>(nameBytes + sizeof(wchar_t));
    std::memcpy(buffer.data(), &data, namesOffset);
    std::memcpy(buffer.data() + namesOffset, name.data(), nameBytes);

    ::CreateDirectoryW(link.c_str(), nullptr);
    const HANDLE folder = ::CreateFileW(link.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    DWORD returned = 0;
    const bool made = ::DeviceIoControl(folder, FSCTL_SET_REPARSE_POINT, buffer.data(),
                                        static_cast<DWORD>(buffer.size()), nullptr, 0, &returned, nullptr) != FALSE;
    const std::string error = LastErrorText();
    ::CloseHandle(folder);
    if (!made)
        throw std::runtime_error("no junction was made: " + error);
}

} // namespace

FolderLink::FolderLink(const std::wstring& link, const std::wstring& target) : m_link(link), m_target(target)
{
    if (FindUnixFileName() == nullptr) {
        MakeJunction(link, target);
        return;
    }
    if (!RunBelowWine(L"Z:\\bin\\ln -s \"" + UnixPath(target) + L"\" \"" + UnixPath(link) + L"\"", link, true))
        throw std::runtime_error("no link was made: " + LastErrorText());
}

FolderLink::~FolderLink()
{
    if (FindUnixFileName() == nullptr) {
        ::RemoveDirectoryW(m_link.c_str());
        return;
    }
    // Wine shows a link only as long as there is something that it leads to.
    ::CreateDirectoryW(m_target.c_str(), nullptr);
    if (Exists(m_link))
        RunBelowWine(L"Z:\\bin\\rm \"" + UnixPath(m_link) + L"\"", m_link, false);
}

} // namespace test
