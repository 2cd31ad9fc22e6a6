#include "wmiquery.h"

#include "battery.h"
#include "win_commands.h"
#include "win_text.h"

#include <windows.h>

#include <oleauto.h>
#include <wbemidl.h>

namespace varnel::win {

namespace {

struct QueryText {
    const wchar_t *commandLine;
    const wchar_t *wql;
    const wchar_t *property;
    const char *header; // the column wmic prints, spelled as the command asks for it
};

const QueryText &textOf(IdentificationQuery query)
{
    static const QueryText processor = {L"wmic cpu get Name", L"SELECT Name FROM Win32_Processor",
                                        L"Name", "Name"};
    static const QueryText model = {L"wmic computersystem get model",
                                    L"SELECT Model FROM Win32_ComputerSystem", L"Model", "Model"};
    return query == IdentificationQuery::ProcessorName ? processor : model;
}

template <typename T> class ComRef {
public:
    ComRef() = default;
    ComRef(const ComRef &) = delete;
    ComRef &operator=(const ComRef &) = delete;
    ~ComRef()
    {
        if (m_p)
            m_p->Release();
    }
    T *operator->() const { return m_p; }
    T *get() const { return m_p; }
    T **out() { return &m_p; }
    void **outVoid() { return reinterpret_cast<void **>(&m_p); }

private:
    T *m_p = nullptr;
};

class BstrText {
public:
    explicit BstrText(const wchar_t *text) : m_value(SysAllocString(text)) {}
    BstrText(const BstrText &) = delete;
    BstrText &operator=(const BstrText &) = delete;
    ~BstrText() { SysFreeString(m_value); }
    BSTR get() const { return m_value; }

private:
    BSTR m_value;
};

// COM for the calling thread: the window's thread already has it in its own apartment, which
// is kept; a thread without it gets it for the length of the query.
class ComApartment {
public:
    ComApartment() : m_owned(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {}
    ComApartment(const ComApartment &) = delete;
    ComApartment &operator=(const ComApartment &) = delete;
    ~ComApartment()
    {
        if (m_owned)
            CoUninitialize();
    }

private:
    bool m_owned;
};

std::optional<std::vector<std::string>> queryStrings(const QueryText &text)
{
    ComRef<IWbemLocator> locator;
    ComRef<IWbemServices> services;
    ComRef<IEnumWbemClassObject> rows;
    const BstrText wmiNamespace(L"ROOT\\CIMV2");
    const BstrText language(L"WQL");
    const BstrText wql(text.wql);
    if (FAILED(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                locator.outVoid())) ||
        FAILED(locator->ConnectServer(wmiNamespace.get(), nullptr, nullptr, nullptr, 0, nullptr,
                                      nullptr, services.out())) ||
        FAILED(CoSetProxyBlanket(services.get(), RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                                 RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr,
                                 EOAC_NONE)) ||
        FAILED(services->ExecQuery(language.get(), wql.get(),
                                   WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY, nullptr,
                                   rows.out())))
        return std::nullopt;

    std::vector<std::string> values;
    for (;;) {
        ComRef<IWbemClassObject> row;
        ULONG returned = 0;
        if (rows->Next(WBEM_INFINITE, 1, row.out(), &returned) != WBEM_S_NO_ERROR || returned == 0)
            break;
        VARIANT value;
        VariantInit(&value);
        if (SUCCEEDED(row->Get(text.property, 0, &value, nullptr, nullptr)) &&
            value.vt == VT_BSTR && value.bstrVal)
            values.push_back(toUtf8(value.bstrVal));
        VariantClear(&value);
    }
    return values;
}

} // namespace

std::optional<IdentificationQuery> identificationQuery(const std::wstring &commandLine)
{
    for (IdentificationQuery query :
         {IdentificationQuery::ProcessorName, IdentificationQuery::ComputerModel}) {
        if (commandLine == textOf(query).commandLine)
            return query;
    }
    return std::nullopt;
}

std::optional<std::vector<std::string>> identificationValues(IdentificationQuery query)
{
    const ComApartment apartment;
    return queryStrings(textOf(query));
}

WmicRun runInstalledWmic(const std::wstring &commandLine, int timeoutMs)
{
    if (!wmicInstalled())
        return WmicRun();
    return WmicRun{true, runAndRead(commandLine, timeoutMs)};
}

std::optional<std::string> answerIdentificationQuery(const std::wstring &commandLine, int timeoutMs,
                                                     const WmicRunner &runWmic)
{
    const auto query = identificationQuery(commandLine);
    if (!query)
        return std::nullopt;
    const WmicRun run = runWmic(commandLine, timeoutMs);
    if (run.started)
        return decodeCommandOutput(run.output);
    const auto values = identificationValues(*query);
    if (!values)
        return std::string();
    return wmicTable(textOf(*query).header, *values);
}

} // namespace varnel::win
