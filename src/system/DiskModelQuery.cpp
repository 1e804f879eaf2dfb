#include "system/DiskModelQuery.h"

#include "system/Com.h"

#include <wbemidl.h>

namespace KELPKIT
{
namespace
{

// Time for a sleeping disk to start, since WMI asks the disks.
constexpr LONG kMostMillisecondsForADisk = 30000;

// Waits for two minutes at most, where WMI would wait for ever without the flag.
ComReference<IWbemServices> Connect()
{
    void* object = nullptr;
    if (FAILED(::CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator, &object)))
        return nullptr;
    const ComReference<IWbemLocator> locator(static_cast<IWbemLocator*>(object));

    const Bstr path(::SysAllocString(L"ROOT\\CIMV2"));
    IWbemServices* services = nullptr;
    if (path == nullptr || FAILED(locator->ConnectServer(path.get(), nullptr, nullptr, nullptr,
                                                         WBEM_FLAG_CONNECT_USE_MAX_WAIT, nullptr, nullptr, &services)))
        return nullptr;
    ComReference<IWbemServices> connection(services);
    if (FAILED(::CoSetProxyBlanket(services, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_CALL,
                                   RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE)))
        return nullptr;
    return connection;
}

ComReference<IEnumWbemClassObject> Disks(IWbemServices& services)
{
    const Bstr language(::SysAllocString(L"WQL"));
    const Bstr query(::SysAllocString(L"SELECT * FROM Win32_DiskDrive"));
    IEnumWbemClassObject* disks = nullptr;
    if (language == nullptr || query == nullptr ||
        FAILED(services.ExecQuery(language.get(), query.get(), WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY,
                                  nullptr, &disks)))
        return nullptr;
    return ComReference<IEnumWbemClassObject>(disks);
}

} // namespace

std::vector<CString> QueryDiskModels()
{
    const ComReference<IWbemServices> services = Connect();
    const ComReference<IEnumWbemClassObject> disks = services ? Disks(*services) : nullptr;
    if (disks == nullptr)
        return {};

    std::vector<CString> models;
    while (true) {
        IWbemClassObject* object = nullptr;
        ULONG count = 0;
        const HRESULT result = disks->Next(kMostMillisecondsForADisk, 1, &object, &count);
        if (FAILED(result) || result == WBEM_S_TIMEDOUT)
            return {};
        if (count == 0 || object == nullptr)
            return models;
        const ComReference<IWbemClassObject> disk(object);
        Variant model;
        if (FAILED(disk->Get(L"Model", 0, &model, nullptr, nullptr)))
            return {};
        // A disk may have none.
        if (model.vt == VT_BSTR)
            models.emplace_back(model.bstrVal);
    }
}

} // namespace KELPKIT
