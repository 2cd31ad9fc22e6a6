#include "wintest.h"

#include "audio_endpoint.h"
#include "ddc_monitor.h"
#include "fakewbem.h"
#include "laptopswitch.h"
#include "win_brightness.h"

#include <map>
#include <utility>

using namespace varnel::win;
using Calls = std::vector<std::wstring>;

namespace {

const std::wstring kNext = L"Next -1 1";

Calls takeCalls()
{
    return std::exchange(fakewbem::calls, {});
}

// root\wmi with one instance per given brightness (named panel0, panel1, ...).
fakewbem::Services *services(std::vector<int> panels, bool failGet = false)
{
    auto *s = new fakewbem::Services;
    s->panels = std::move(panels);
    s->failGet = failGet;
    takeCalls();
    return s;
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

class ScriptedChannel : public VcpChannel {
public:
    struct Monitor {
        bool readable;
        DWORD current, maximum;
    };
    std::map<uintptr_t, Monitor> monitors;
    std::vector<std::string> log;

    bool read(HANDLE monitor, BYTE code, DWORD *current, DWORD *maximum) override
    {
        const auto n = reinterpret_cast<uintptr_t>(monitor);
        log.push_back("read " + std::to_string(n) + " " + std::to_string(code));
        *current = monitors.at(n).current;
        *maximum = monitors.at(n).maximum;
        return monitors.at(n).readable;
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
    fakewbem::Services *s = services({30, 85});
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

    s = services({30, 85}, true);
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
        fakewbem::Services *s = services({0, 0});
        CHECK_EQ(callLaptopSwitch(s, id, id % 2), S_OK);
        Calls expected = {L"ExecQuery WQL Select * from CLEVO_GET 16"};
        addMethodCall(expected, L"CLEVO_GET", method,
                      {L"Data=" + std::to_wstring(id % 2) + L" type 18"}, L"panel0");
        CHECK_EQ(takeCalls(), expected);
        s->Release();
    }
    fakewbem::Services *none = services({});
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
    channel.monitors = {{1, {true, 50, 100}},
                        {2, {true, 70, 100}},
                        {3, {false, 10, 100}},
                        {4, {true, 10, 70}},
                        {5, {true, 10, 69}}};
    std::vector<HANDLE> handles;
    for (const auto &monitor : channel.monitors)
        handles.push_back(reinterpret_cast<HANDLE>(monitor.first));
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
    struct Row {
        unsigned long mapping;
        int connection;
        bool connected, headphones;
    };
    // Mapping 3 is front left and right; connection type 1 the 3.5 mm jack.
    const Row rows[] = {
        {3, 1, true, true},   {3, 1, false, false}, {4, 1, true, false},
        {63, 1, true, false}, {3, 2, true, false},  {3, 0, true, false},
    };
    for (const Row &r : rows)
        CHECK_EQ(jackIsHeadphones(r.mapping, r.connection, r.connected), r.headphones);
}
