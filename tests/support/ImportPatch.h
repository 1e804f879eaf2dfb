#pragma once

#include <windows.h>

namespace test
{

// Replaces a function that a loaded DLL imports, at once or late, by a double, for that DLL only and until the object
// ends. That is how system answers are had that this machine does not give. Throws std::runtime_error where the DLL is
// not loaded or does not import the function. Doubles that the DLL called are noted at the end; see FakedCalls.h.
//
//     const ImportPatch patch("GetVersionExW", +[](OSVERSIONINFOW* version) -> BOOL { ... });
//
// The double must have the type of the function, and the names must live as long as the patch. Patches of the same
// function end in the reverse order of their making.
class ImportPatch
{
public:
    template <class Function>
    ImportPatch(const char* name, Function* replacement) : ImportPatch(L"Kelpkit.dll", name, replacement)
    {
    }

    template <class Function>
    ImportPatch(const wchar_t* module, const char* name, Function* replacement)
        : ImportPatch(module, name, reinterpret_cast<void*>(replacement))
    {
    }

    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;
    ~ImportPatch();

    // What was called before.
    template <class Function>
    Function* Original() const
    {
        return reinterpret_cast<Function*>(m_original);
    }

private:
    struct CountingCall;

    ImportPatch(const wchar_t* module, const char* name, void* replacement);
    static void** FindSlot(const wchar_t* module, const char* name);

    const wchar_t* m_module;
    const char* m_name;
    void** m_slot;
    void* m_original;
    CountingCall* m_call;
};

} // namespace test
