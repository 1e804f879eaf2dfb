#include "File.h"

#include "Handle.h"
#include "TemporaryFile.h"
#include "WindowsApi.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace xmlparser
{
namespace
{

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// Says how long to go on trying where somebody has a file open: below a second, however long the disk takes.
class Patience
{
public:
    // Waits a little; false when it is over. Mostly it only lets others run: readers leave short gaps.
    bool Wait()
    {
        ::Sleep(m_waits++ % 8 == 0 ? 1 : 0);
        return ::GetTickCount64() - m_start < kMilliseconds;
    }

private:
    static constexpr ULONGLONG kMilliseconds = 800;

    const ULONGLONG m_start = ::GetTickCount64();
    unsigned m_waits = 0;
};

// What a file passes on to the one that takes its place.
class Heritage
{
public:
    explicit Heritage(const wchar_t* path)
    {
        const DWORD attributes = ::GetFileAttributesW(path);
        if (attributes == INVALID_FILE_ATTRIBUTES)
            return;
        m_attributes = attributes;
        auto size = static_cast<DWORD>(m_descriptor.size());
        while (!::GetFileSecurityW(path, DACL_SECURITY_INFORMATION, m_descriptor.data(), size, &size)) {
            if (::GetLastError() != ERROR_INSUFFICIENT_BUFFER || size <= m_descriptor.size())
                return;
            m_descriptor.resize(size);
        }
        m_security.lpSecurityDescriptor = m_descriptor.data();
    }

    DWORD Attributes() const { return m_attributes; }

    // The access rights.
    SECURITY_ATTRIBUTES* Security() { return &m_security; }

private:
    DWORD m_attributes = FILE_ATTRIBUTE_NORMAL;
    std::vector<std::byte> m_descriptor = std::vector<std::byte>(512);
    SECURITY_ATTRIBUTES m_security = {sizeof m_security, nullptr, FALSE};
};

bool IsHeld(DWORD error)
{
    return error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED;
}

bool WriteAll(HANDLE file, std::string_view bytes)
{
    while (!bytes.empty()) {
        constexpr std::size_t kMost = 1 << 30;
        DWORD written = 0;
        if (!::WriteFile(file, bytes.data(), static_cast<DWORD>(std::min(bytes.size(), kMost)), &written, nullptr) ||
            written == 0)
            return false;
        bytes.remove_prefix(written);
    }
    return true;
}

// What there is to read in an open file, from its start.
bool ReadAll(HANDLE file, std::string& bytes)
{
    // So that a little can be appended without a copy.
    constexpr std::size_t kRoom = 16;
    // Most files fit, and need not be asked for their size.
    char start[1 << 14];
    DWORD read = 0;
    if (!::ReadFile(file, start, sizeof start, &read, nullptr))
        return false;
    bytes.reserve(read + kRoom);
    bytes.assign(start, read);
    if (read < sizeof start)
        return true;
    LARGE_INTEGER size = {};
    if (!::GetFileSizeEx(file, &size) || size.QuadPart < static_cast<LONGLONG>(read) || size.QuadPart > MAXINT)
        return false;
    bytes.resize(static_cast<std::size_t>(size.QuadPart) + kRoom);
    DWORD rest = 0;
    if (!::ReadFile(file, bytes.data() + read, static_cast<DWORD>(size.QuadPart) - read, &rest, nullptr))
        return false;
    bytes.resize(read + rest);
    return true;
}

bool GoToStart(HANDLE file)
{
    return ::SetFilePointerEx(file, {}, nullptr, FILE_BEGIN) != FALSE;
}

// What lies behind the new content is cut off last, when that is on the disk.
bool PutContent(HANDLE file, std::string_view bytes)
{
    return GoToStart(file) && WriteAll(file, bytes) && ::FlushFileBuffers(file) && ::SetEndOfFile(file) &&
           ::FlushFileBuffers(file);
}

// As far as it goes: whatever failed before may fail again.
void PutBack(HANDLE file, std::string_view bytes)
{
    if (GoToStart(file) && WriteAll(file, bytes) && ::SetEndOfFile(file))
        ::FlushFileBuffers(file);
}

// Writes over a file that is there, which nobody else can open meanwhile. On failure it has the old content again.
bool Overwrite(const std::wstring& path, std::string_view bytes)
{
    Patience patience;
    const auto open = [&] {
        return FileHandle(
            ::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    };
    Handle file = open();
    while (file == nullptr && ::GetLastError() == ERROR_SHARING_VIOLATION && patience.Wait())
        file = open();
    std::string before;
    if (file == nullptr || !ReadAll(file.get(), before))
        return false;
    if (PutContent(file.get(), bytes))
        return true;
    PutBack(file.get(), before);
    return false;
}

// Makes the file under the calling thread's temporary name, and waits for whoever holds that. Whatever is there already
// was left by a killed process, or by a save of this thread that could not delete it.
Handle CreateTemporary(const std::wstring& temporary, Heritage& heritage)
{
    Patience patience;
    const auto create = [&] {
        return FileHandle(::CreateFileW(temporary.c_str(), GENERIC_WRITE, 0, heritage.Security(), CREATE_NEW,
                                        heritage.Attributes(), nullptr));
    };
    Handle file = create();
    while (file == nullptr && ::GetLastError() == ERROR_FILE_EXISTS && patience.Wait()) {
        ::DeleteFileW(temporary.c_str());
        file = create();
    }
    return file;
}

// Not ReplaceFileW, which takes the old file away before the new one comes.
bool MoveOver(const std::wstring& path, const std::wstring& temporary)
{
    Patience patience;
    do {
        if (::MoveFileExW(temporary.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
            return true;
    } while (IsHeld(::GetLastError()) && patience.Wait());
    return false;
}

} // namespace

bool ReadWholeFile(const wchar_t* path, std::string& bytes)
{
    const Handle file = FileHandle(
        ::CreateFileW(path, GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    return file != nullptr && ReadAll(file.get(), bytes);
}

bool WriteWholeFile(const std::wstring& path, std::string_view bytes)
{
    Heritage heritage(path.c_str());
    if (heritage.Attributes() & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY))
        return false;
    RemoveLeftovers(path);
    const std::wstring temporary = TemporaryName(path);
    Handle file = CreateTemporary(temporary, heritage);
    if (file == nullptr)
        return ::GetLastError() != ERROR_FILE_EXISTS && Overwrite(path, bytes);
    const bool isWritten = WriteAll(file.get(), bytes) && ::FlushFileBuffers(file.get());
    file.reset();
    if (isWritten && MoveOver(path, temporary))
        return true;
    ::DeleteFileW(temporary.c_str());
    return false;
}

} // namespace xmlparser
