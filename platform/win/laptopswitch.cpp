#include "laptopswitch.h"

#include <windows.h>

#include <cwchar>
#include <wbemidl.h>

namespace varnel::win {

namespace {

// Releases what it holds when it goes out of scope.
template <typename T> struct Held {
    T *p = nullptr;
    ~Held()
    {
        if (p)
            p->Release();
    }
};

struct Bstr {
    explicit Bstr(const wchar_t *text) : s(SysAllocString(text)) {}
    ~Bstr() { SysFreeString(s); }
    Bstr(const Bstr &) = delete;
    Bstr &operator=(const Bstr &) = delete;
    BSTR s;
};

} // namespace

const wchar_t *laptopSwitchMethod(int switchId)
{
    if (switchId == 1)
        return L"SetCamera";
    if (switchId == 2)
        return L"SetWLan";
    return L"SetTP";
}

long callLaptopSwitch(IWbemServices *services, int switchId, int value)
{
    wchar_t digits[11];
    std::swprintf(digits, 11, L"%d", value);
    Bstr data(digits);
    Bstr className(L"CLEVO_GET");
    Bstr method(laptopSwitchMethod(switchId));
    Bstr language(L"WQL");
    Bstr query(L"Select * from CLEVO_GET");

    Held<IEnumWbemClassObject> instances;
    HRESULT hr = services->ExecQuery(language.s, query.s, WBEM_FLAG_RETURN_IMMEDIATELY, nullptr,
                                     &instances.p);
    if (FAILED(hr))
        return hr;
    // The first instance only.
    Held<IWbemClassObject> instance;
    ULONG returned = 0;
    hr = instances.p->Next(WBEM_INFINITE, 1, &instance.p, &returned);
    if (hr != S_OK || returned == 0)
        return FAILED(hr) ? hr : static_cast<HRESULT>(WBEM_E_NOT_FOUND);

    Held<IWbemClassObject> classObject;
    if (FAILED(hr = services->GetObject(className.s, 0, nullptr, &classObject.p, nullptr)))
        return hr;
    Held<IWbemClassObject> signature;
    if (FAILED(hr = classObject.p->GetMethod(method.s, 0, &signature.p, nullptr)))
        return hr;
    Held<IWbemClassObject> input;
    if (FAILED(hr = signature.p->SpawnInstance(0, &input.p)))
        return hr;
    VARIANT argument;
    VariantInit(&argument);
    argument.vt = VT_BSTR;
    argument.bstrVal = data.s; // still owned by data
    if (FAILED(hr = input.p->Put(L"Data", 0, &argument, CIM_UINT16)))
        return hr;
    VARIANT path;
    VariantInit(&path);
    if (FAILED(hr = instance.p->Get(L"__PATH", 0, &path, nullptr, nullptr)))
        return hr;
    hr = services->ExecMethod(path.bstrVal, method.s, 0, nullptr, input.p, nullptr, nullptr);
    VariantClear(&path);
    return hr;
}

long setLaptopSwitch(int switchId, int value)
{
    HRESULT hr = CoInitialize(nullptr);
    if (FAILED(hr))
        return hr;
    // Fails on every call but the first in a process, which is expected.
    CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_PKT_PRIVACY,
                         RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_SECURE_REFS, nullptr);
    {
        Bstr wmiNamespace(L"root\\wmi");
        Held<IWbemLocator> locator;
        Held<IWbemServices> services;
        hr = CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                              reinterpret_cast<void **>(&locator.p));
        if (SUCCEEDED(hr))
            hr = locator.p->ConnectServer(wmiNamespace.s, nullptr, nullptr, nullptr, 0, nullptr,
                                          nullptr, &services.p);
        if (SUCCEEDED(hr))
            hr = CoSetProxyBlanket(services.p, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                                   RPC_C_AUTHN_LEVEL_PKT, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr,
                                   EOAC_NONE);
        if (SUCCEEDED(hr))
            hr = callLaptopSwitch(services.p, switchId, value);
    }
    CoUninitialize();
    return hr;
}

} // namespace varnel::win
