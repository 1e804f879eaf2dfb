#pragma once

#include <windows.h>

namespace test
{

// Replaces a function that a loaded DLL imports, at once or late, by a double, for that DLL only and until the object
// ends. That is how system answers are had that this machine does not give. Throws std::runtime_error where the DLL is not loaded or does
// not import the function.
//
//     const ImportPatch patch("GetVersionExW", +[](OSVERSIONINFOW* version) -> BOOL { ... });
//
// The double must have the type of the function. Patches of the same function end in the reverse order of their making.
class ImportPatch
{
public:
    template <class Function>
    ImportPatch(const char* name, Function* replacement) : ImportPatch(L"Kelpkit.dll", name, replacement)
    {
    }

    template <class Function>
    ImportPatch(const wchar_t* module, const char* name, Function* replacement)
        : m_slot(FindSlot(module, name)), m_original(*m_slot)
    {
        Store(reinterpret_cast<void*>(replacement));
    }

    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;
    ~ImportPatch() { Store(m_original); }

    // What was called before.
    template <class Function>
    Function* Original() const
    {
        return reinterpret_cast<Function*>(m_original);
    }

private:
    static void** FindSlot(const wchar_t* module, const char* name);
    void Store(void* function);

    void** m_slot;
    void* m_original;
};

} // namespace test
