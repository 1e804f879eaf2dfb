#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace test
{

// What a minidump file says. Read from the file's bytes, not by way of the library that wrote them.
struct MiniDump {
    struct Thread {
        std::uint32_t id;
        std::uint64_t stackStart;
        std::uint64_t stackSize; // of the part that is in the file
    };

    struct Module {
        std::uint64_t base;
        std::uint32_t size;
        std::wstring path;

        // Without folder, in lower case.
        std::wstring Name() const;
    };

    struct Exception {
        std::uint32_t threadId;
        std::uint32_t code;
        std::uint32_t flags;
        std::uint64_t address;
        std::vector<std::uint64_t> parameters;
        // Of the thread, when the exception was raised.
        std::uint64_t instructionPointer;
        std::uint64_t stackPointer;
    };

    // Throws std::runtime_error where the file cannot be read, is no minidump or lacks one of these, each of which must
    // be there once.
    explicit MiniDump(const std::wstring& path);

    // The thread of this number; null where there is none.
    const Thread* FindThread(std::uint32_t id) const;

    // The name of the module in which an address lies; empty where there is none.
    std::wstring ModuleNameAt(std::uint64_t address) const;

    std::vector<Thread> threads;
    std::vector<Module> modules;
    Exception exception;
    std::uint16_t processorArchitecture;
    std::uint32_t windowsMajorVersion;
};

} // namespace test
