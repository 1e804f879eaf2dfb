#include "support/ImportPatch.h"

#include <cstddef>
#include <cstring>
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

const IMAGE_IMPORT_DESCRIPTOR* FirstImportedDll(HMODULE module)
{
    const auto* const dos = At<IMAGE_DOS_HEADER>(module, 0);
    const auto* const nt = At<IMAGE_NT_HEADERS>(module, static_cast<std::size_t>(dos->e_lfanew));
    const auto& directory = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    return At<IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress);
}

} // namespace

void** ImportPatch::FindSlot(const wchar_t* moduleName, const char* name)
{
    const HMODULE module = ::GetModuleHandleW(moduleName);
    if (module == nullptr)
        throw std::runtime_error("the module to patch is not loaded");
    for (auto dll = FirstImportedDll(module); dll->Name != 0; ++dll) {
        const auto* names = At<IMAGE_THUNK_DATA>(module, dll->OriginalFirstThunk);
        auto* slots = At<void*>(module, dll->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++slots) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal))
                continue;
            const auto* const import = At<IMAGE_IMPORT_BY_NAME>(module, names->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char*>(import->Name), name) == 0)
                return slots;
        }
    }
    throw std::runtime_error(std::string("the module does not import ") + name);
}

void ImportPatch::Store(void* function)
{
    DWORD protection = 0;
    ::VirtualProtect(m_slot, sizeof *m_slot, PAGE_READWRITE, &protection);
    *m_slot = function;
    ::VirtualProtect(m_slot, sizeof *m_slot, protection, &protection);
}

} // namespace test
