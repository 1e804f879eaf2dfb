#include "system/FakeWmi.h"

#include <gtest/gtest.h>

#include <objbase.h>
#include <oleauto.h>
#include <wbemidl.h>

#include <cstddef>
#include <utility>

namespace test
{
namespace
{

struct State {
    std::vector<std::wstring> models;
    std::string failingStep;
    HRESULT failure;
    std::vector<std::string> steps;
    int unreleased;
};

State g_state;

// Takes a step and says how it went.
HRESULT Step(const std::string& step)
{
    g_state.steps.push_back(step);
    return step == g_state.failingStep ? g_state.failure : S_OK;
}

#if defined(__GNUC__)
// COM's interfaces have no virtual destructors; their objects delete themselves.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

// An object that counts as unreleased until its last reference is given back.
template <class Interface>
class Counted : public Interface
{
public:
    Counted() { ++g_state.unreleased; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    virtual ~Counted() = default;

    HRESULT WINAPI QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG WINAPI AddRef() override { return ++m_references; }
    ULONG WINAPI Release() override
    {
        const ULONG references = --m_references;
        if (references == 0) {
            --g_state.unreleased;
            delete this;
        }
        return references;
    }

private:
    ULONG m_references = 1;
};

// What is asked of the fakes; whatever else the interfaces have is not implemented.
#define NOT_IMPLEMENTED(...)                                                                                           \
    HRESULT WINAPI __VA_ARGS__ override                                                                                \
    {                                                                                                                  \
        return E_NOTIMPL;                                                                                              \
    }

class Disk : public Counted<IWbemClassObject>
{
public:
    explicit Disk(std::wstring model) : m_model(std::move(model)) {}

    HRESULT WINAPI Get(const wchar_t* name, LONG flags, VARIANT* value, CIMTYPE*, LONG*) override
    {
        EXPECT_STREQ(name, L"Model");
        EXPECT_EQ(flags, 0);
        EXPECT_EQ(value->vt, VT_EMPTY);
        const HRESULT result = Step("Get");
        if (FAILED(result))
            return result;
        if (m_model == FakeWmi::kNoModel) {
            value->vt = VT_NULL;
            return S_OK;
        }
        value->vt = VT_BSTR;
        value->bstrVal = ::SysAllocString(m_model.c_str());
        ++g_state.unreleased;
        return S_OK;
    }

    NOT_IMPLEMENTED(GetQualifierSet(IWbemQualifierSet**))
    NOT_IMPLEMENTED(Put(const wchar_t*, LONG, VARIANT*, CIMTYPE))
    NOT_IMPLEMENTED(Delete(const wchar_t*))
    NOT_IMPLEMENTED(GetNames(const wchar_t*, LONG, VARIANT*, SAFEARRAY**))
    NOT_IMPLEMENTED(BeginEnumeration(LONG))
    NOT_IMPLEMENTED(Next(LONG, BSTR*, VARIANT*, CIMTYPE*, LONG*))
    NOT_IMPLEMENTED(EndEnumeration())
    NOT_IMPLEMENTED(GetPropertyQualifierSet(const wchar_t*, IWbemQualifierSet**))
    NOT_IMPLEMENTED(Clone(IWbemClassObject**))
    NOT_IMPLEMENTED(GetObjectText(LONG, BSTR*))
    NOT_IMPLEMENTED(SpawnDerivedClass(LONG, IWbemClassObject**))
    NOT_IMPLEMENTED(SpawnInstance(LONG, IWbemClassObject**))
    NOT_IMPLEMENTED(CompareTo(LONG, IWbemClassObject*))
    NOT_IMPLEMENTED(GetPropertyOrigin(const wchar_t*, BSTR*))
    NOT_IMPLEMENTED(InheritsFrom(const wchar_t*))
    NOT_IMPLEMENTED(GetMethod(const wchar_t*, LONG, IWbemClassObject**, IWbemClassObject**))
    NOT_IMPLEMENTED(PutMethod(const wchar_t*, LONG, IWbemClassObject*, IWbemClassObject*))
    NOT_IMPLEMENTED(DeleteMethod(const wchar_t*))
    NOT_IMPLEMENTED(BeginMethodEnumeration(LONG))
    NOT_IMPLEMENTED(NextMethod(LONG, BSTR*, IWbemClassObject**, IWbemClassObject**))
    NOT_IMPLEMENTED(EndMethodEnumeration())
    NOT_IMPLEMENTED(GetMethodQualifierSet(const wchar_t*, IWbemQualifierSet**))
    NOT_IMPLEMENTED(GetMethodOrigin(const wchar_t*, BSTR*))

private:
    std::wstring m_model;
};

class Disks : public Counted<IEnumWbemClassObject>
{
public:
    HRESULT WINAPI Next(LONG timeout, ULONG count, IWbemClassObject** objects, ULONG* returned) override
    {
        EXPECT_EQ(timeout, 30000);
        EXPECT_EQ(count, 1U);
        *objects = nullptr;
        *returned = 0;
        const HRESULT result = Step(m_next == 1 ? "Next 2" : "Next");
        if (result != S_OK)
            return result;
        if (m_next == g_state.models.size())
            return WBEM_S_FALSE;
        *objects = new Disk(g_state.models[m_next++]);
        *returned = 1;
        return WBEM_S_NO_ERROR;
    }

    NOT_IMPLEMENTED(Reset())
    NOT_IMPLEMENTED(NextAsync(ULONG, IWbemObjectSink*))
    NOT_IMPLEMENTED(Clone(IEnumWbemClassObject**))
    NOT_IMPLEMENTED(Skip(LONG, ULONG))

private:
    std::size_t m_next = 0;
};

class Services : public Counted<IWbemServices>
{
public:
    HRESULT WINAPI ExecQuery(const BSTR language, const BSTR query, LONG flags, IWbemContext* context,
                             IEnumWbemClassObject** disks) override
    {
        EXPECT_STREQ(language, L"WQL");
        EXPECT_STREQ(query, L"SELECT * FROM Win32_DiskDrive");
        EXPECT_EQ(flags, 48);
        EXPECT_EQ(context, nullptr);
        const HRESULT result = Step("ExecQuery");
        *disks = FAILED(result) ? nullptr : new Disks;
        return result;
    }

    NOT_IMPLEMENTED(OpenNamespace(const BSTR, LONG, IWbemContext*, IWbemServices**, IWbemCallResult**))
    NOT_IMPLEMENTED(CancelAsyncCall(IWbemObjectSink*))
    NOT_IMPLEMENTED(QueryObjectSink(LONG, IWbemObjectSink**))
    NOT_IMPLEMENTED(GetObject(const BSTR, LONG, IWbemContext*, IWbemClassObject**, IWbemCallResult**))
    NOT_IMPLEMENTED(GetObjectAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*))
    NOT_IMPLEMENTED(PutClass(IWbemClassObject*, LONG, IWbemContext*, IWbemCallResult**))
    NOT_IMPLEMENTED(PutClassAsync(IWbemClassObject*, LONG, IWbemContext*, IWbemObjectSink*))
    NOT_IMPLEMENTED(DeleteClass(const BSTR, LONG, IWbemContext*, IWbemCallResult**))
    NOT_IMPLEMENTED(DeleteClassAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*))
    NOT_IMPLEMENTED(CreateClassEnum(const BSTR, LONG, IWbemContext*, IEnumWbemClassObject**))
    NOT_IMPLEMENTED(CreateClassEnumAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*))
    NOT_IMPLEMENTED(PutInstance(IWbemClassObject*, LONG, IWbemContext*, IWbemCallResult**))
    NOT_IMPLEMENTED(PutInstanceAsync(IWbemClassObject*, LONG, IWbemContext*, IWbemObjectSink*))
    NOT_IMPLEMENTED(DeleteInstance(const BSTR, LONG, IWbemContext*, IWbemCallResult**))
    NOT_IMPLEMENTED(DeleteInstanceAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*))
    NOT_IMPLEMENTED(CreateInstanceEnum(const BSTR, LONG, IWbemContext*, IEnumWbemClassObject**))
    NOT_IMPLEMENTED(CreateInstanceEnumAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*))
    NOT_IMPLEMENTED(ExecQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*, IWbemObjectSink*))
    NOT_IMPLEMENTED(ExecNotificationQuery(const BSTR, const BSTR, LONG, IWbemContext*, IEnumWbemClassObject**))
    NOT_IMPLEMENTED(ExecNotificationQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*, IWbemObjectSink*))
    NOT_IMPLEMENTED(ExecMethod(const BSTR, const BSTR, LONG, IWbemContext*, IWbemClassObject*, IWbemClassObject**,
                               IWbemCallResult**))
    NOT_IMPLEMENTED(ExecMethodAsync(const BSTR, const BSTR, LONG, IWbemContext*, IWbemClassObject*, IWbemObjectSink*))
};

class Locator : public Counted<IWbemLocator>
{
public:
    HRESULT WINAPI ConnectServer(const BSTR path, const BSTR user, const BSTR password, const BSTR locale, LONG flags,
                                 const BSTR authority, IWbemContext* context, IWbemServices** services) override
    {
        EXPECT_STREQ(path, L"ROOT\\CIMV2");
        EXPECT_EQ(user, nullptr);
        EXPECT_EQ(password, nullptr);
        EXPECT_EQ(locale, nullptr);
        EXPECT_EQ(flags, WBEM_FLAG_CONNECT_USE_MAX_WAIT);
        EXPECT_EQ(authority, nullptr);
        EXPECT_EQ(context, nullptr);
        const HRESULT result = Step("ConnectServer");
        *services = FAILED(result) ? nullptr : new Services;
        return result;
    }
};

#undef NOT_IMPLEMENTED

HRESULT WINAPI FakeInitialize(void* reserved, DWORD mode)
{
    EXPECT_EQ(reserved, nullptr);
    EXPECT_EQ(mode, static_cast<DWORD>(COINIT_MULTITHREADED));
    const HRESULT result = Step("CoInitializeEx");
    g_state.unreleased += SUCCEEDED(result) ? 1 : 0;
    return result;
}

HRESULT WINAPI FakeSecurity(void* descriptor, LONG count, SOLE_AUTHENTICATION_SERVICE* services, void*, DWORD level,
                            DWORD impersonation, void* list, DWORD capabilities, void*)
{
    EXPECT_EQ(descriptor, nullptr);
    EXPECT_EQ(count, -1);
    EXPECT_EQ(services, nullptr);
    EXPECT_EQ(level, static_cast<DWORD>(RPC_C_AUTHN_LEVEL_DEFAULT));
    EXPECT_EQ(impersonation, 3U);
    EXPECT_EQ(list, nullptr);
    EXPECT_EQ(capabilities, static_cast<DWORD>(EOAC_NONE));
    return Step("CoInitializeSecurity");
}

void WINAPI FakeUninitialize()
{
    Step("CoUninitialize");
    --g_state.unreleased;
}

HRESULT WINAPI FakeCreate(REFCLSID classId, IUnknown* outer, DWORD context, REFIID interfaceId, void** object)
{
    EXPECT_TRUE(classId == CLSID_WbemLocator);
    EXPECT_TRUE(interfaceId == IID_IWbemLocator);
    EXPECT_EQ(outer, nullptr);
    EXPECT_EQ(context, static_cast<DWORD>(CLSCTX_INPROC_SERVER));
    const HRESULT result = Step("CoCreateInstance");
    *object = FAILED(result) ? nullptr : static_cast<IWbemLocator*>(new Locator);
    return result;
}

HRESULT WINAPI FakeBlanket(IUnknown* proxy, DWORD authentication, DWORD authorization, wchar_t* principal, DWORD level,
                           DWORD impersonation, void* identity, DWORD capabilities)
{
    EXPECT_NE(proxy, nullptr);
    EXPECT_EQ(authentication, static_cast<DWORD>(RPC_C_AUTHN_WINNT));
    EXPECT_EQ(authorization, static_cast<DWORD>(RPC_C_AUTHZ_NONE));
    EXPECT_EQ(principal, nullptr);
    EXPECT_EQ(level, static_cast<DWORD>(RPC_C_AUTHN_LEVEL_CALL));
    EXPECT_EQ(impersonation, static_cast<DWORD>(RPC_C_IMP_LEVEL_IMPERSONATE));
    EXPECT_EQ(identity, nullptr);
    EXPECT_EQ(capabilities, static_cast<DWORD>(EOAC_NONE));
    return Step("CoSetProxyBlanket");
}

BSTR WINAPI CountingAllocate(const OLECHAR* text)
{
    ++g_state.unreleased;
    return ::SysAllocString(text);
}

void WINAPI CountingFree(BSTR text)
{
    --g_state.unreleased;
    ::SysFreeString(text);
}

void WINAPI CountingInit(VARIANT* variant)
{
    ++g_state.unreleased;
    ::VariantInit(variant);
}

HRESULT WINAPI CountingClear(VARIANT* variant)
{
    // The variant, and the text in it.
    g_state.unreleased -= variant->vt == VT_BSTR ? 2 : 1;
    return ::VariantClear(variant);
}

} // namespace

const wchar_t* const FakeWmi::kNoModel = L"<NULL>";

FakeWmi::FakeWmi(std::vector<std::wstring> models, const std::string& failingStep, HRESULT failure)
    : m_initialize("CoInitializeEx", &FakeInitialize), m_security("CoInitializeSecurity", &FakeSecurity),
      m_uninitialize("CoUninitialize", &FakeUninitialize), m_create("CoCreateInstance", &FakeCreate),
      m_blanket("CoSetProxyBlanket", &FakeBlanket), m_allocate("SysAllocString", &CountingAllocate),
      m_free("SysFreeString", &CountingFree), m_initVariant("VariantInit", &CountingInit),
      m_clearVariant("VariantClear", &CountingClear)
{
    g_state = {std::move(models), failingStep, failure, {}, 0};
}

const std::vector<std::string>& FakeWmi::Steps()
{
    return g_state.steps;
}

int FakeWmi::Unreleased()
{
    return g_state.unreleased;
}

} // namespace test
