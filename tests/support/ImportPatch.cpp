#include "support/ImportPatch.h"

#include "support/FakedCalls.h"

#include <windows.h>

#include <delayimp.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>

namespace test
{
namespace
{

template <class Type>
Type* At(HMODULE module, std::size_t offset)
{
    return reinterpret_cast<Type*>(reinterpret_cast<std::byte*>(module) + offset);
}

const IMAGE_NT_HEADERS& Headers(HMODULE module)
{
    const auto* const dos = At<IMAGE_DOS_HEADER>(module, 0);
    return *At<IMAGE_NT_HEADERS>(module, static_cast<std::size_t>(dos->e_lfanew));
}

const IMAGE_IMPORT_DESCRIPTOR* FirstImportedDll(HMODULE module)
{
    const auto& directory = Headers(module).OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    return At<IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress);
}

// Where the DLLs begin that are loaded late; null where there are none. GNU ld gives them no directory entry.
const ImgDelayDescr* FirstDelayedDll(HMODULE module)
{
    const IMAGE_NT_HEADERS& headers = Headers(module);
    const auto& directory = headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT];
    if (directory.VirtualAddress != 0)
        return At<ImgDelayDescr>(module, directory.VirtualAddress);
    const auto* const sections = reinterpret_cast<const IMAGE_SECTION_HEADER*>(&headers + 1);
    for (int number = 0; number < headers.FileHeader.NumberOfSections; ++number) {
        if (std::memcmp(sections[number].Name, ".didat\0", sizeof sections[number].Name) == 0)
            return At<ImgDelayDescr>(module, sections[number].VirtualAddress);
    }
    return nullptr;
}

// Whether the import from the DLL is the function. Visual Studio imports from some DLLs, such as oleaut32, by number.
bool Is(const IMAGE_THUNK_DATA& import, HMODULE module, const char* dll, const char* name)
{
    if (!IMAGE_SNAP_BY_ORDINAL(import.u1.Ordinal)) {
        const auto* const byName = At<IMAGE_IMPORT_BY_NAME>(module, import.u1.AddressOfData);
        return std::strcmp(reinterpret_cast<const char*>(byName->Name), name) == 0;
    }
    const HMODULE exporter = ::LoadLibraryA(dll);
    const FARPROC function = ::GetProcAddress(exporter, name);
    return function != nullptr &&
           function == ::GetProcAddress(exporter, MAKEINTRESOURCEA(IMAGE_ORDINAL(import.u1.Ordinal)));
}

// The slot of the function among those of one DLL, given by the tables of its names and slots; null if it is not there.
void** SlotOf(HMODULE module, const char* dll, const char* name, DWORD nameTable, DWORD slotTable)
{
    const auto* names = At<IMAGE_THUNK_DATA>(module, nameTable);
    auto* slots = At<void*>(module, slotTable);
    for (; names->u1.AddressOfData != 0; ++names, ++slots) {
        if (Is(*names, module, dll, name))
            return slots;
    }
    return nullptr;
}

void Write(void** slot, void* function)
{
    DWORD protection = 0;
    ::VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection);
    *slot = function;
    ::VirtualProtect(slot, sizeof *slot, protection, &protection);
}

// The first call of a function that is loaded late fills its slot, which would end a patch. So it is filled now, unless
// it was: before, it leads to code of the calling module itself.
void Resolve(HMODULE module, void** slot, const char* dll, const char* name)
{
    const auto offset = reinterpret_cast<std::uintptr_t>(*slot) - reinterpret_cast<std::uintptr_t>(module);
    if (offset < Headers(module).OptionalHeader.SizeOfImage)
        Write(slot, reinterpret_cast<void*>(::GetProcAddress(::LoadLibraryA(dll), name)));
}

} // namespace

// Code that counts a call and goes on to the double, in memory of its own. It touches neither arguments nor stack, so
// that it suits a function of any type, and no debugger or unwinder sees it.
struct ImportPatch::CountingCall {
    static CountingCall* New(void* function)
    {
        void* const memory =
            ::VirtualAlloc(nullptr, sizeof(CountingCall), MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE);
        if (memory == nullptr)
            throw std::bad_alloc();
        return new (memory) CountingCall{function};
    }

    void* function;
    volatile std::int64_t count = 0;
    // Processors are slow where data is written close to the code that they run.
    std::byte gap[2032] = {};
    // lock inc qword ptr [rip - 2048]
    // jmp qword ptr [rip - 2062]
    std::uint8_t code[14] = {0xF0, 0x48, 0xFF, 0x05, 0x00, 0xF8, 0xFF, 0xFF, 0xFF, 0x25, 0xF2, 0xF7, 0xFF, 0xFF};
};

ImportPatch::ImportPatch(const wchar_t* module, const char* name, void* replacement)
    : m_module(module), m_name(name), m_slot(FindSlot(module, name)), m_original(*m_slot),
      m_call(CountingCall::New(replacement))
{
    Write(m_slot, m_call->code);
}

ImportPatch::~ImportPatch()
{
    Write(m_slot, m_original);
    if (m_call->count > 0 && m_module != nullptr)
        NoteFakedCall(m_module, m_name);
    ::VirtualFree(m_call, 0, MEM_RELEASE);
}

void** ImportPatch::FindSlot(const wchar_t* moduleName, const char* name)
{
    const HMODULE module = ::GetModuleHandleW(moduleName);
    if (module == nullptr)
        throw std::runtime_error("the module to patch is not loaded");
    for (auto dll = FirstImportedDll(module); dll->Name != 0; ++dll) {
        const char* const dllName = At<const char>(module, dll->Name);
        if (void** const slot = SlotOf(module, dllName, name, dll->OriginalFirstThunk, dll->FirstThunk))
            return slot;
    }
    for (auto dll = FirstDelayedDll(module); dll != nullptr && dll->rvaDLLName != 0; ++dll) {
        const char* const dllName = At<const char>(module, dll->rvaDLLName);
        if (void** const slot = SlotOf(module, dllName, name, dll->rvaINT, dll->rvaIAT)) {
            Resolve(module, slot, dllName, name);
            return slot;
        }
    }
    throw std::runtime_error(std::string("the module does not import ") + name);
}

} // namespace test
