#include "wintest.h"

#include "audio_endpoint.h"
#include "ddc_monitor.h"
#include "laptopswitch.h"
#include "win_brightness.h"

#include <tuple>
#include <utility>
#include <wbemidl.h>

using namespace varnel::win;
using Calls = std::vector<std::wstring>;

namespace {

// Hand-made WMI objects: Wine's root\wmi has neither monitor instances nor the laptop's class,
// so the per-instance part of the conversation is driven against these, every call recorded.
Calls calls;

#define STUB(signature)                                                                            \
    HRESULT STDMETHODCALLTYPE signature override                                                   \
    {                                                                                              \
        return E_NOTIMPL;                                                                          \
    }

template <typename Interface> class Unknown : public Interface {
public:
    virtual ~Unknown() = default;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void **out) override
    {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_refs; }
    ULONG STDMETHODCALLTYPE Release() override
    {
        const ULONG left = --m_refs;
        if (left == 0)
            delete this;
        return left;
    }

private:
    ULONG m_refs = 1;
};

// An instance, a class or a parameter object: Get answers from the given fields, Put records.
class Object : public Unknown<IWbemClassObject> {
public:
    Object(std::wstring name, int brightness, bool failGet = false)
        : m_name(std::move(name)), m_brightness(brightness), m_failGet(failGet)
    {
    }

    HRESULT STDMETHODCALLTYPE Get(LPCWSTR property, LONG, VARIANT *value, CIMTYPE *,
                                  LONG *) override
    {
        calls.push_back(m_name + L".Get " + property);
        if (m_failGet)
            return WBEM_E_NOT_FOUND;
        VariantInit(value);
        if (std::wstring(property) == L"__PATH") {
            value->vt = VT_BSTR;
            value->bstrVal = SysAllocString((L"path:" + m_name).c_str());
        } else {
            value->vt = VT_UI1;
            value->bVal = static_cast<BYTE>(m_brightness);
        }
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Put(LPCWSTR property, LONG, VARIANT *value, CIMTYPE type) override
    {
        calls.push_back(m_name + L".Put " + property + L"=" +
                        (value->vt == VT_BSTR ? value->bstrVal : L"?") + L" type " +
                        std::to_wstring(type));
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR name, LONG, IWbemClassObject **in,
                                        IWbemClassObject **) override
    {
        calls.push_back(m_name + L".GetMethod " + name);
        *in = new Object(L"signature", 0);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SpawnInstance(LONG flags, IWbemClassObject **out) override
    {
        calls.push_back(m_name + L".SpawnInstance " + std::to_wstring(flags));
        *out = new Object(L"in", 0);
        return S_OK;
    }

    STUB(GetQualifierSet(IWbemQualifierSet **))
    STUB(Delete(LPCWSTR))
    STUB(GetNames(LPCWSTR, LONG, VARIANT *, SAFEARRAY **))
    STUB(BeginEnumeration(LONG))
    STUB(Next(LONG, BSTR *, VARIANT *, CIMTYPE *, LONG *))
    STUB(EndEnumeration())
    STUB(GetPropertyQualifierSet(LPCWSTR, IWbemQualifierSet **))
    STUB(Clone(IWbemClassObject **))
    STUB(GetObjectText(LONG, BSTR *))
    STUB(SpawnDerivedClass(LONG, IWbemClassObject **))
    STUB(CompareTo(LONG, IWbemClassObject *))
    STUB(GetPropertyOrigin(LPCWSTR, BSTR *))
    STUB(InheritsFrom(LPCWSTR))
    STUB(PutMethod(LPCWSTR, LONG, IWbemClassObject *, IWbemClassObject *))
    STUB(DeleteMethod(LPCWSTR))
    STUB(BeginMethodEnumeration(LONG))
    STUB(NextMethod(LONG, BSTR *, IWbemClassObject **, IWbemClassObject **))
    STUB(EndMethodEnumeration())
    STUB(GetMethodQualifierSet(LPCWSTR, IWbemQualifierSet **))
    STUB(GetMethodOrigin(LPCWSTR, BSTR *))

private:
    std::wstring m_name;
    int m_brightness;
    bool m_failGet;
};

// Hands out the given instances one at a time, then reports the end.
class Enumerator : public Unknown<IEnumWbemClassObject> {
public:
    explicit Enumerator(std::vector<IWbemClassObject *> instances)
        : m_instances(std::move(instances))
    {
    }
    ~Enumerator() override
    {
        for (size_t i = m_next; i < m_instances.size(); ++i)
            m_instances[i]->Release();
    }
    HRESULT STDMETHODCALLTYPE Next(LONG timeout, ULONG count, IWbemClassObject **objects,
                                   ULONG *returned) override
    {
        calls.push_back(L"Next " + std::to_wstring(timeout) + L" " + std::to_wstring(count));
        if (m_next >= m_instances.size()) {
            *returned = 0;
            return WBEM_S_FALSE;
        }
        objects[0] = m_instances[m_next++];
        *returned = 1;
        return S_OK;
    }
    STUB(Reset())
    STUB(NextAsync(ULONG, IWbemObjectSink *))
    STUB(Clone(IEnumWbemClassObject **))
    STUB(Skip(LONG, ULONG))

private:
    std::vector<IWbemClassObject *> m_instances;
    size_t m_next = 0;
};

// root\wmi with a number of panels, each reporting its own brightness.
class Services : public Unknown<IWbemServices> {
public:
    explicit Services(std::vector<int> panels, bool failGet = false)
        : panels(std::move(panels)), failGet(failGet)
    {
        calls.clear();
    }
    std::vector<int> panels;
    bool failGet;

    HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR language, const BSTR query, LONG flags,
                                        IWbemContext *, IEnumWbemClassObject **out) override
    {
        calls.push_back(std::wstring(L"ExecQuery ") + language + L" " + query + L" " +
                        std::to_wstring(flags));
        std::vector<IWbemClassObject *> instances;
        for (size_t i = 0; i < panels.size(); ++i)
            instances.push_back(new Object(L"panel" + std::to_wstring(i), panels[i], failGet));
        *out = new Enumerator(instances);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetObject(const BSTR path, LONG, IWbemContext *,
                                        IWbemClassObject **out, IWbemCallResult **) override
    {
        calls.push_back(L"GetObject " + std::wstring(path));
        *out = new Object(L"class", 0);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE ExecMethod(const BSTR path, const BSTR method, LONG flags,
                                         IWbemContext *context, IWbemClassObject *in,
                                         IWbemClassObject **out, IWbemCallResult **result) override
    {
        calls.push_back(std::wstring(L"ExecMethod ") + path + L" " + method + L" " +
                        std::to_wstring(flags) +
                        (context || !in || out || result ? L" unexpected arguments" : L""));
        return S_OK;
    }

    STUB(OpenNamespace(const BSTR, LONG, IWbemContext *, IWbemServices **, IWbemCallResult **))
    STUB(CancelAsyncCall(IWbemObjectSink *))
    STUB(QueryObjectSink(LONG, IWbemObjectSink **))
    STUB(GetObjectAsync(const BSTR, LONG, IWbemContext *, IWbemObjectSink *))
    STUB(PutClass(IWbemClassObject *, LONG, IWbemContext *, IWbemCallResult **))
    STUB(PutClassAsync(IWbemClassObject *, LONG, IWbemContext *, IWbemObjectSink *))
    STUB(DeleteClass(const BSTR, LONG, IWbemContext *, IWbemCallResult **))
    STUB(DeleteClassAsync(const BSTR, LONG, IWbemContext *, IWbemObjectSink *))
    STUB(CreateClassEnum(const BSTR, LONG, IWbemContext *, IEnumWbemClassObject **))
    STUB(CreateClassEnumAsync(const BSTR, LONG, IWbemContext *, IWbemObjectSink *))
    STUB(PutInstance(IWbemClassObject *, LONG, IWbemContext *, IWbemCallResult **))
    STUB(PutInstanceAsync(IWbemClassObject *, LONG, IWbemContext *, IWbemObjectSink *))
    STUB(DeleteInstance(const BSTR, LONG, IWbemContext *, IWbemCallResult **))
    STUB(DeleteInstanceAsync(const BSTR, LONG, IWbemContext *, IWbemObjectSink *))
    STUB(CreateInstanceEnum(const BSTR, LONG, IWbemContext *, IEnumWbemClassObject **))
    STUB(CreateInstanceEnumAsync(const BSTR, LONG, IWbemContext *, IWbemObjectSink *))
    STUB(ExecQueryAsync(const BSTR, const BSTR, LONG, IWbemContext *, IWbemObjectSink *))
    STUB(ExecNotificationQuery(const BSTR, const BSTR, LONG, IWbemContext *,
                               IEnumWbemClassObject **))
    STUB(ExecNotificationQueryAsync(const BSTR, const BSTR, LONG, IWbemContext *,
                                    IWbemObjectSink *))
    STUB(ExecMethodAsync(const BSTR, const BSTR, LONG, IWbemContext *, IWbemClassObject *,
                         IWbemObjectSink *))
};

const std::wstring kNext = L"Next -1 1";

Calls takeCalls()
{
    return std::exchange(calls, {});
}

// The calls that run one method on one instance, its inputs given as "Name=text type CIMTYPE".
void addMethodCall(Calls &out, const std::wstring &cls, const std::wstring &method,
                   const Calls &puts, const std::wstring &instance)
{
    out.insert(out.end(), {kNext, L"GetObject " + cls, L"class.GetMethod " + method,
                           L"signature.SpawnInstance 0"});
    for (const std::wstring &put : puts)
        out.push_back(L"in.Put " + put);
    out.insert(out.end(),
               {instance + L".Get __PATH", L"ExecMethod path:" + instance + L" " + method + L" 0"});
}

// The monitor with handle n answers monitors[n - 1]: {readable, current, maximum}.
class ScriptedChannel : public VcpChannel {
public:
    std::vector<std::tuple<bool, DWORD, DWORD>> monitors;
    std::vector<std::string> log;

    bool read(HANDLE monitor, BYTE code, DWORD *current, DWORD *maximum) override
    {
        const auto n = reinterpret_cast<uintptr_t>(monitor);
        log.push_back("read " + std::to_string(n) + " " + std::to_string(code));
        bool readable = false;
        std::tie(readable, *current, *maximum) = monitors.at(n - 1);
        return readable;
    }
    void write(HANDLE monitor, BYTE code, DWORD value) override
    {
        log.push_back("write " + std::to_string(reinterpret_cast<uintptr_t>(monitor)) + " " +
                      std::to_string(code) + " " + std::to_string(value));
    }
};

} // namespace

// Wine's root\wmi has neither the panel's instances nor the laptop's class: both stay quiet.
WINTEST_CASE(wineHasNoPanelNorLaptopClass)
{
    CHECK_EQ(readPanelBrightness(), -1);
    writePanelBrightness(40);
    CHECK_EQ(readPanelBrightness(), -1);
    CHECK(setLaptopSwitch(1, 1) != S_OK);
}

// The reader takes the last panel; the writer sets every panel, the timeout as CIM_UINT32 (19)
// and the level as CIM_UINT8 (17), unclamped.
WINTEST_CASE(brightnessOverEveryPanel)
{
    auto *s = new Services({30, 85});
    CHECK_EQ(queryCurrentBrightness(s), 85);
    CHECK_EQ(takeCalls(), (Calls{L"ExecQuery WQL Select * from WmiMonitorBrightness 16", kNext,
                                 L"panel0.Get CurrentBrightness", kNext,
                                 L"panel1.Get CurrentBrightness", kNext}));
    setBrightnessOnEveryPanel(s, 255);
    Calls expected = {L"ExecQuery WQL Select * from WmiMonitorBrightnessMethods 16"};
    for (const wchar_t *panel : {L"panel0", L"panel1"})
        addMethodCall(expected, L"WmiMonitorBrightnessMethods", L"WmiSetBrightness",
                      {L"Timeout=0 type 19", L"Brightness=255 type 17"}, panel);
    expected.push_back(kNext);
    CHECK_EQ(takeCalls(), expected);
    s->panels = {};
    CHECK_EQ(queryCurrentBrightness(s), -1);
    s->Release();

    s = new Services({30, 85}, true);
    CHECK_EQ(queryCurrentBrightness(s), -1);
    CHECK_EQ(takeCalls().size(), size_t(3)); // query, one instance, its Get: then it stops
    s->Release();
}

// The method runs on the first instance only, with the value as a 16-bit (CIM_UINT16) string.
WINTEST_CASE(laptopSwitchCallsItsMethod)
{
    const std::pair<int, const wchar_t *> rows[] = {
        {1, L"SetCamera"}, {2, L"SetWLan"}, {3, L"SetTP"}, {0, L"SetTP"}};
    for (const auto &[id, method] : rows) {
        CHECK_EQ(std::wstring(laptopSwitchMethod(id)), std::wstring(method));
        auto *s = new Services({0, 0});
        CHECK_EQ(callLaptopSwitch(s, id, id % 2), S_OK);
        Calls expected = {L"ExecQuery WQL Select * from CLEVO_GET 16"};
        addMethodCall(expected, L"CLEVO_GET", method,
                      {L"Data=" + std::to_wstring(id % 2) + L" type 18"}, L"panel0");
        CHECK_EQ(takeCalls(), expected);
        s->Release();
    }
    auto *none = new Services({});
    CHECK(callLaptopSwitch(none, 3, 1) != S_OK);
    CHECK_EQ(takeCalls().size(), size_t(2)); // the query and the empty Next
    none->Release();
}

// Read, compare and write monitor by monitor: only a new value within the maximum is written,
// only after a good read. Wine's real dxva2 call, without a DDC/CI monitor, is quiet and returns.
WINTEST_CASE(everyPhysicalMonitorIsReadComparedAndWritten)
{
    setVcpFeature(0x10, 55);
    ScriptedChannel channel;
    channel.monitors = {
        {true, 50, 100}, {true, 70, 100}, {false, 10, 100}, {true, 10, 70}, {true, 10, 69}};
    const std::vector<HANDLE> handles = {HANDLE(1), HANDLE(2), HANDLE(3), HANDLE(4), HANDLE(5)};
    setVcpOnMonitors(handles, channel, 0x10, 70);
    CHECK_EQ(channel.log,
             std::vector<std::string>({"read 1 16", "write 1 16 70", "read 2 16", "read 3 16",
                                       "read 4 16", "write 4 16 70", "read 5 16"}));
}

// Under Wine the null ALSA sink is the default playback device: reading works, setting the
// level is not implemented.
WINTEST_CASE(audioEndpointReadsTheNullSink)
{
    long status = 0;
    CHECK(endpointVolume(1, 0.0f, false, &status) <= 100);
    CHECK_EQ(status, S_OK);
    const unsigned mute = endpointVolume(4, 0.0f, false, &status);
    CHECK_EQ(status, S_OK);
    CHECK(mute == 999 || mute == 111);
    const std::string name = outputDeviceName();
    CHECK(!name.empty() && name != "No Audio Device");

    CHECK_EQ(endpointVolume(2, 0.5f, false, &status), 0u);
    CHECK_EQ(status, E_NOTIMPL);
    CHECK_EQ(endpointVolume(3, 0.0f, false, &status), 0u);
    CHECK_EQ(endpointVolume(7, 0.0f, false, &status), 0u);
    CHECK_EQ(status, E_INVALIDARG);
}

WINTEST_CASE(jackRule)
{
    // Mapping 3 is front left and right; connection type 1 the 3.5 mm jack.
    const std::tuple<unsigned long, int, bool, bool> rows[] = {
        {3, 1, true, true},   {3, 1, false, false}, {4, 1, true, false},
        {63, 1, true, false}, {3, 2, true, false},  {3, 0, true, false},
    };
    for (const auto &[mapping, connection, connected, headphones] : rows)
        CHECK_EQ(jackIsHeadphones(mapping, connection, connected), headphones);
}
