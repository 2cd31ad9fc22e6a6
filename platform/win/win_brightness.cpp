#include "win_brightness.h"

#include <windows.h>

#include <cwchar>
#include <initializer_list>
#include <wbemidl.h>

namespace varnel::win {

namespace {

// Frees the strings it was given when it goes out of scope.
class Strings {
public:
    explicit Strings(std::initializer_list<const wchar_t *> texts)
    {
        for (const wchar_t *text : texts)
            m_items[m_count++] = SysAllocString(text);
    }
    ~Strings()
    {
        for (int i = 0; i < m_count; ++i)
            SysFreeString(m_items[i]);
    }
    Strings(const Strings &) = delete;
    Strings &operator=(const Strings &) = delete;
    BSTR operator[](int i) const { return m_items[i]; }

private:
    BSTR m_items[8] = {};
    int m_count = 0;
};

template <typename T> void release(T *&object)
{
    if (object) {
        object->Release();
        object = nullptr;
    }
}

// CoInitialize, the security call, the locator and the connection to root\wmi with its proxy
// blanket. On success the caller owns *services and must call CoUninitialize after releasing it.
bool connectRootWmi(BSTR wmiNamespace, IWbemServices **services)
{
    if (FAILED(CoInitialize(nullptr)))
        return false;
    // Fails on every call but the first in a process, which is expected.
    CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_PKT_PRIVACY,
                         RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_SECURE_REFS, nullptr);
    IWbemLocator *locator = nullptr;
    if (FAILED(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                reinterpret_cast<void **>(&locator)))) {
        CoUninitialize();
        return false;
    }
    HRESULT hr = locator->ConnectServer(wmiNamespace, nullptr, nullptr, nullptr, 0, nullptr,
                                        nullptr, services);
    if (SUCCEEDED(hr))
        hr = CoSetProxyBlanket(*services, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                               RPC_C_AUTHN_LEVEL_PKT, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr,
                               EOAC_NONE);
    release(locator);
    if (FAILED(hr)) {
        release(*services);
        CoUninitialize();
        return false;
    }
    return true;
}

IEnumWbemClassObject *execQuery(IWbemServices *services, const wchar_t *query)
{
    Strings text{L"WQL", query};
    IEnumWbemClassObject *instances = nullptr;
    if (FAILED(services->ExecQuery(text[0], text[1], WBEM_FLAG_RETURN_IMMEDIATELY, nullptr,
                                   &instances)))
        return nullptr;
    return instances;
}

IWbemClassObject *nextInstance(IEnumWbemClassObject *instances)
{
    IWbemClassObject *instance = nullptr;
    ULONG returned = 0;
    if (instances->Next(WBEM_INFINITE, 1, &instance, &returned) != S_OK) {
        release(instance);
        return nullptr;
    }
    return instance;
}

// Values go over as strings declared with their CIM type; WMI converts them.
HRESULT putText(IWbemClassObject *object, BSTR name, const wchar_t *text, CIMTYPE type)
{
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_BSTR;
    value.bstrVal = SysAllocString(text);
    const HRESULT hr = object->Put(name, 0, &value, type);
    VariantClear(&value);
    return hr;
}

// One panel: the method's input parameters filled in and the method run on the instance.
bool setBrightnessOn(IWbemServices *services, IWbemClassObject *instance, const Strings &names,
                     std::uint32_t level)
{
    IWbemClassObject *methodsClass = nullptr;
    IWbemClassObject *signature = nullptr;
    IWbemClassObject *inParams = nullptr;
    VARIANT path;
    VariantInit(&path);
    wchar_t levelText[10];
    std::swprintf(levelText, 10, L"%d", static_cast<int>(level));

    bool ok = SUCCEEDED(services->GetObject(names[1], 0, nullptr, &methodsClass, nullptr)) &&
              SUCCEEDED(methodsClass->GetMethod(names[2], 0, &signature, nullptr)) &&
              SUCCEEDED(signature->SpawnInstance(0, &inParams)) &&
              SUCCEEDED(putText(inParams, names[3], L"0", CIM_UINT32)) &&
              SUCCEEDED(putText(inParams, names[4], levelText, CIM_UINT8));
    if (ok) {
        Strings pathName{L"__PATH"};
        ok = SUCCEEDED(instance->Get(pathName[0], 0, &path, nullptr, nullptr)) &&
             SUCCEEDED(services->ExecMethod(path.bstrVal, names[2], 0, nullptr, inParams, nullptr,
                                            nullptr));
    }
    VariantClear(&path);
    release(inParams);
    release(signature);
    release(methodsClass);
    return ok;
}

} // namespace

int queryCurrentBrightness(IWbemServices *services)
{
    IEnumWbemClassObject *instances = execQuery(services, L"Select * from WmiMonitorBrightness");
    if (!instances)
        return -1;
    int result = -1;
    Strings property{L"CurrentBrightness"};
    // With several panels the last one wins.
    while (IWbemClassObject *instance = nextInstance(instances)) {
        VARIANT value;
        VariantInit(&value);
        const HRESULT hr = instance->Get(property[0], 0, &value, nullptr, nullptr);
        if (SUCCEEDED(hr))
            result = value.bVal;
        VariantClear(&value);
        release(instance);
        if (FAILED(hr))
            break;
    }
    release(instances);
    return result;
}

void setBrightnessOnEveryPanel(IWbemServices *services, std::uint32_t level)
{
    Strings names{L"root\\wmi", L"WmiMonitorBrightnessMethods", L"WmiSetBrightness", L"Timeout",
                  L"Brightness"};
    IEnumWbemClassObject *instances =
        execQuery(services, L"Select * from WmiMonitorBrightnessMethods");
    if (!instances)
        return;
    while (IWbemClassObject *instance = nextInstance(instances)) {
        const bool ok = setBrightnessOn(services, instance, names, level);
        release(instance);
        if (!ok)
            break;
    }
    release(instances);
}

int readPanelBrightness()
{
    Strings names{L"root\\wmi", L"WmiMonitorBrightness"};
    if (!names[0] || !names[1])
        return -1;
    IWbemServices *services = nullptr;
    if (!connectRootWmi(names[0], &services))
        return -1;
    const int result = queryCurrentBrightness(services);
    release(services);
    CoUninitialize();
    return result;
}

void writePanelBrightness(std::uint32_t level)
{
    Strings names{L"root\\wmi"};
    if (!names[0])
        return;
    IWbemServices *services = nullptr;
    if (!connectRootWmi(names[0], &services))
        return;
    setBrightnessOnEveryPanel(services, level);
    release(services);
    CoUninitialize();
}

} // namespace varnel::win
