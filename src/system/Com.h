#pragma once

// What COM lends, given back at the end of a scope.

#include "WindowsApi.h"

#include <objbase.h>
#include <oleauto.h>

#include <memory>

namespace KELPKIT
{

// COM on this thread. By contract the security of the process is set, too, and where that fails (as a rule because it
// is set already) COM is ended at once, save for a caller who has it running.
class ComScope
{
public:
    ComScope() : m_isEntered(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_MULTITHREADED)))
    {
        const HRESULT security = ::CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT,
                                                        RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
        if (FAILED(security))
            Leave();
    }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;
    ~ComScope() { Leave(); }

private:
    // Only what was entered: the apartment of a caller who chose another kind stays as it is.
    void Leave()
    {
        if (m_isEntered)
            ::CoUninitialize();
        m_isEntered = false;
    }

    bool m_isEntered;
};

struct ComReleaser {
    void operator()(IUnknown* object) const { object->Release(); }
};

template <class Interface>
using ComReference = std::unique_ptr<Interface, ComReleaser>;

struct BstrFreer {
    void operator()(OLECHAR* text) const { ::SysFreeString(text); }
};

using Bstr = std::unique_ptr<OLECHAR, BstrFreer>;

struct Variant : VARIANT {
    Variant() : VARIANT() { ::VariantInit(this); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    ~Variant() { ::VariantClear(this); }
};

} // namespace KELPKIT
