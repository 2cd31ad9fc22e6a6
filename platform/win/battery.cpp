#include "battery.h"

#include <windows.h>

#include <oleauto.h>
#include <wbemidl.h>

#include <algorithm>
#include <cwctype>

namespace varnel::win {

namespace {

const wchar_t kQueryPrefix[] = L"wmic path win32_battery get ";

std::wstring lowered(std::wstring text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](wchar_t c) { return static_cast<wchar_t>(std::towlower(c)); });
    return text;
}

template <typename T> struct Released {
    T *p = nullptr;
    ~Released()
    {
        if (p)
            p->Release();
    }
};

struct Bstr {
    explicit Bstr(const wchar_t *text) : value(SysAllocString(text)) {}
    ~Bstr() { SysFreeString(value); }
    BSTR value;
};

std::string variantText(const VARIANT &value)
{
    switch (value.vt) {
    case VT_I4:
        return std::to_string(value.lVal);
    case VT_UI4:
        return std::to_string(value.ulVal);
    case VT_I2:
        return std::to_string(value.iVal);
    case VT_UI2:
        return std::to_string(value.uiVal);
    case VT_UI1:
        return std::to_string(value.bVal);
    default:
        return std::string();
    }
}

// Reads one property of every Win32_Battery instance; false when WMI cannot be asked.
bool batteryValues(const std::wstring &property, std::vector<std::string> &values)
{
    const HRESULT init = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    const bool uninitialise = SUCCEEDED(init);
    bool ok = false;
    {
        Released<IWbemLocator> locator;
        Released<IWbemServices> services;
        Released<IEnumWbemClassObject> rows;
        Bstr wmiNamespace(L"ROOT\\CIMV2");
        Bstr language(L"WQL");
        const std::wstring text = L"SELECT " + property + L" FROM Win32_Battery";
        Bstr query(text.c_str());
        if (SUCCEEDED(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER,
                                       IID_IWbemLocator, reinterpret_cast<void **>(&locator.p))) &&
            SUCCEEDED(locator.p->ConnectServer(wmiNamespace.value, nullptr, nullptr, nullptr, 0,
                                               nullptr, nullptr, &services.p)) &&
            SUCCEEDED(CoSetProxyBlanket(services.p, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                                        RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE,
                                        nullptr, EOAC_NONE)) &&
            SUCCEEDED(services.p->ExecQuery(language.value, query.value,
                                            WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY,
                                            nullptr, &rows.p))) {
            ok = true;
            for (;;) {
                Released<IWbemClassObject> row;
                ULONG returned = 0;
                if (rows.p->Next(WBEM_INFINITE, 1, &row.p, &returned) != WBEM_S_NO_ERROR ||
                    returned == 0)
                    break;
                VARIANT value;
                VariantInit(&value);
                if (SUCCEEDED(row.p->Get(property.c_str(), 0, &value, nullptr, nullptr)))
                    values.push_back(variantText(value));
                VariantClear(&value);
            }
        }
    }
    if (uninitialise)
        CoUninitialize();
    return ok;
}

} // namespace

std::wstring batteryQueryProperty(const std::wstring &commandLine)
{
    const std::wstring line = lowered(commandLine);
    const std::wstring prefix = kQueryPrefix;
    if (line.compare(0, prefix.size(), prefix) != 0)
        return std::wstring();
    const std::wstring property = line.substr(prefix.size());
    if (property == L"batterystatus")
        return L"BatteryStatus";
    if (property == L"estimatedchargeremaining")
        return L"EstimatedChargeRemaining";
    return std::wstring();
}

bool wmicInstalled()
{
    wchar_t system[MAX_PATH] = {};
    const UINT length = GetSystemDirectoryW(system, MAX_PATH);
    if (length == 0 || length >= MAX_PATH)
        return false;
    const std::wstring path = std::wstring(system) + L"\\wbem\\WMIC.exe";
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::string wmicTable(const std::string &header, const std::vector<std::string> &values)
{
    size_t width = header.size();
    for (const std::string &value : values)
        width = std::max(width, value.size());
    width += 2;
    auto line = [width](const std::string &text) {
        return text + std::string(width - text.size(), ' ') + "\r\r\n";
    };
    std::string out = line(header);
    for (const std::string &value : values)
        out += line(value);
    if (!values.empty())
        out += "\r\r\n";
    return out;
}

std::string batteryAnswerFromWmi(const std::wstring &property)
{
    std::vector<std::string> values;
    if (property.empty() || !batteryValues(property, values))
        return std::string();
    return wmicTable(std::string(property.begin(), property.end()), values);
}

} // namespace varnel::win
