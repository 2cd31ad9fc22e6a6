#include "wintest.h"

#include "fakewbem.h"
#include "laptopswitch.h"
#include "win_brightness.h"

#include <algorithm>
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

// The calls that run one method on one instance; the value is given as a string of `type`.
Calls methodCall(const std::wstring &cls, const std::wstring &method, const std::wstring &puts,
                 const std::wstring &instance)
{
    Calls out = {L"GetObject " + cls, L"class.GetMethod " + method, L"signature.SpawnInstance 0"};
    for (size_t at = 0, end; at < puts.size(); at = end + 1) {
        end = std::min(puts.find(L';', at), puts.size());
        out.push_back(L"in.Put " + puts.substr(at, end - at));
    }
    out.push_back(instance + L".Get __PATH");
    out.push_back(L"ExecMethod path:" + instance + L" " + method + L" 0");
    return out;
}

} // namespace

// Wine's root\wmi has neither the panel's instances nor the laptop's class: both stay quiet.
WINTEST_CASE(wineHasNoPanelNorLaptopClass)
{
    CHECK_EQ(readPanelBrightness(), -1);
    writePanelBrightness(40);
    CHECK_EQ(readPanelBrightness(), -1);
    CHECK(setLaptopSwitch(1, 1) != S_OK);
}

WINTEST_CASE(brightnessReaderTakesTheLastPanel)
{
    fakewbem::Services *s = services({30, 85});
    CHECK_EQ(queryCurrentBrightness(s), 85);
    CHECK_EQ(takeCalls(), (Calls{L"ExecQuery WQL Select * from WmiMonitorBrightness 16", kNext,
                                 L"panel0.Get CurrentBrightness", kNext,
                                 L"panel1.Get CurrentBrightness", kNext}));
    s->panels = {};
    CHECK_EQ(queryCurrentBrightness(s), -1);
    s->Release();

    s = services({30, 85}, true);
    CHECK_EQ(queryCurrentBrightness(s), -1);
    CHECK_EQ(takeCalls().size(), size_t(3)); // query, one instance, its Get: then it stops
    s->Release();
}

// Timeout as CIM_UINT32 (19), the level as CIM_UINT8 (17), unclamped.
WINTEST_CASE(brightnessWriterSetsEveryPanel)
{
    fakewbem::Services *s = services({30, 85});
    setBrightnessOnEveryPanel(s, 255);
    Calls expected = {L"ExecQuery WQL Select * from WmiMonitorBrightnessMethods 16"};
    for (const wchar_t *panel : {L"panel0", L"panel1"}) {
        expected.push_back(kNext);
        for (const std::wstring &call :
             methodCall(L"WmiMonitorBrightnessMethods", L"WmiSetBrightness",
                        L"Timeout=0 type 19;Brightness=255 type 17", panel))
            expected.push_back(call);
    }
    expected.push_back(kNext);
    CHECK_EQ(takeCalls(), expected);
    s->Release();
}

// The method runs on the first instance only, with the value as a 16-bit (CIM_UINT16) string.
WINTEST_CASE(laptopSwitchCallsItsMethod)
{
    const struct {
        int id;
        const wchar_t *method;
    } rows[] = {{1, L"SetCamera"}, {2, L"SetWLan"}, {3, L"SetTP"}, {0, L"SetTP"}};
    for (const auto &row : rows) {
        CHECK_EQ(std::wstring(laptopSwitchMethod(row.id)), std::wstring(row.method));
        fakewbem::Services *s = services({0, 0});
        CHECK_EQ(callLaptopSwitch(s, row.id, row.id % 2), S_OK);
        Calls expected = {L"ExecQuery WQL Select * from CLEVO_GET 16", kNext};
        for (const std::wstring &call :
             methodCall(L"CLEVO_GET", row.method,
                        L"Data=" + std::to_wstring(row.id % 2) + L" type 18", L"panel0"))
            expected.push_back(call);
        CHECK_EQ(takeCalls(), expected);
        s->Release();
    }
    fakewbem::Services *none = services({});
    CHECK(callLaptopSwitch(none, 3, 1) != S_OK);
    CHECK_EQ(takeCalls().size(), size_t(2)); // the query and the empty Next
    none->Release();
}
