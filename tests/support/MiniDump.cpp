#include "support/MiniDump.h"

#include "support/FileContents.h"

#include <windows.h>

#include <dbghelp.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <stdexcept>

namespace test
{
namespace
{

// The bytes of a dump and the places in it, each checked.
class Bytes
{
public:
    explicit Bytes(std::string bytes) : m_bytes(std::move(bytes)) {}

    const char* At(std::uint64_t place, std::uint64_t size) const
    {
        if (place > m_bytes.size() || size > m_bytes.size() - place)
            throw std::runtime_error("the dump ends too early");
        return m_bytes.data() + place;
    }

    template <class Type>
    Type Read(std::uint64_t place) const
    {
        Type value;
        std::memcpy(&value, At(place, sizeof value), sizeof value);
        return value;
    }

    // Items that follow a count of 32 bits.
    template <class Type>
    std::vector<Type> ReadList(std::uint64_t place) const
    {
        const auto count = Read<ULONG32>(place);
        const std::uint64_t size = std::uint64_t{count} * sizeof(Type);
        const char* const first = At(place + sizeof count, size);
        std::vector<Type> items(count);
        if (count != 0)
            std::memcpy(items.data(), first, size);
        return items;
    }

private:
    std::string m_bytes;
};

std::uint64_t FindStream(const Bytes& bytes, MINIDUMP_STREAM_TYPE type)
{
    const auto header = bytes.Read<MINIDUMP_HEADER>(0);
    if (std::memcmp(bytes.At(0, 4), "MDMP", 4) != 0 || (header.Version & 0xFFFF) != MINIDUMP_VERSION)
        throw std::runtime_error("this is no minidump");
    std::vector<std::uint64_t> places;
    for (ULONG32 number = 0; number < header.NumberOfStreams; ++number) {
        const auto stream =
            bytes.Read<MINIDUMP_DIRECTORY>(header.StreamDirectoryRva + number * sizeof(MINIDUMP_DIRECTORY));
        if (stream.StreamType != static_cast<ULONG32>(type))
            continue;
        bytes.At(stream.Location.Rva, stream.Location.DataSize);
        places.push_back(stream.Location.Rva);
    }
    if (places.size() != 1)
        throw std::runtime_error("the dump must have one stream of type " + std::to_string(type));
    return places[0];
}

std::wstring ReadText(const Bytes& bytes, std::uint64_t place)
{
    const auto size = bytes.Read<ULONG32>(place);
    const char* const first = bytes.At(place + sizeof size, size);
    std::wstring text(size / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), first, text.size() * sizeof(wchar_t));
    return text;
}

std::vector<MiniDump::Thread> ReadThreads(const Bytes& bytes)
{
    std::vector<MiniDump::Thread> threads;
    for (const auto& thread : bytes.ReadList<MINIDUMP_THREAD>(FindStream(bytes, ThreadListStream))) {
        bytes.At(thread.Stack.Memory.Rva, thread.Stack.Memory.DataSize);
        threads.push_back({thread.ThreadId, thread.Stack.StartOfMemoryRange, thread.Stack.Memory.DataSize});
    }
    return threads;
}

std::vector<MiniDump::Module> ReadModules(const Bytes& bytes)
{
    std::vector<MiniDump::Module> modules;
    for (const auto& module : bytes.ReadList<MINIDUMP_MODULE>(FindStream(bytes, ModuleListStream)))
        modules.push_back({module.BaseOfImage, module.SizeOfImage, ReadText(bytes, module.ModuleNameRva)});
    return modules;
}

MiniDump::Exception ReadException(const Bytes& bytes)
{
    const auto stream = bytes.Read<MINIDUMP_EXCEPTION_STREAM>(FindStream(bytes, ExceptionStream));
    const MINIDUMP_EXCEPTION& record = stream.ExceptionRecord;
    if (record.NumberParameters > EXCEPTION_MAXIMUM_PARAMETERS)
        throw std::runtime_error("the exception has too many parameters");
    const auto context = bytes.Read<CONTEXT>(stream.ThreadContext.Rva);
    return {stream.ThreadId,
            record.ExceptionCode,
            record.ExceptionFlags,
            record.ExceptionAddress,
            {record.ExceptionInformation, record.ExceptionInformation + record.NumberParameters},
            context.Rip,
            context.Rsp};
}

} // namespace

std::wstring MiniDump::Module::Name() const
{
    std::wstring name = path.substr(path.rfind(L'\\') + 1);
    ::CharLowerW(name.data());
    return name;
}

MiniDump::MiniDump(const std::wstring& path)
{
    const Bytes bytes(ReadFileBytes(path));
    threads = ReadThreads(bytes);
    modules = ReadModules(bytes);
    exception = ReadException(bytes);
    const auto system = bytes.Read<MINIDUMP_SYSTEM_INFO>(FindStream(bytes, SystemInfoStream));
    processorArchitecture = system.ProcessorArchitecture;
    windowsMajorVersion = system.MajorVersion;
}

const MiniDump::Thread* MiniDump::FindThread(std::uint32_t id) const
{
    const auto found = std::find_if(threads.begin(), threads.end(), [id](const Thread& t) { return t.id == id; });
    return found == threads.end() ? nullptr : &*found;
}

std::wstring MiniDump::ModuleNameAt(std::uint64_t address) const
{
    for (const Module& module : modules) {
        if (address >= module.base && address - module.base < module.size)
            return module.Name();
    }
    return L"";
}

} // namespace test
