#include "wintest.h"

#include "fakewbem.h"
#include "win_brightness.h"
#include "win_registry.h"

using namespace varnel::win;

namespace {
const wchar_t kFlags[] = L"16"; // WBEM_FLAG_RETURN_IMMEDIATELY
const std::wstring kNext = L"Next -1 1";

std::vector<std::wstring> takeCalls()
{
    std::vector<std::wstring> out;
    out.swap(fakewbem::calls());
    return out;
}
} // namespace

// Wine's root\wmi answers the query with no instances.
WINTEST_CASE(wineHasNoPanel)
{
    CHECK_EQ(readPanelBrightness(), -1);
    writePanelBrightness(40); // returns quietly
    CHECK_EQ(readPanelBrightness(), -1);
}

WINTEST_CASE(readerTakesTheLastPanel)
{
    auto *services = new fakewbem::Services;
    services->panels = {30, 85};
    takeCalls();
    CHECK_EQ(queryCurrentBrightness(services), 85);
    const std::vector<std::wstring> expected = {
        std::wstring(L"ExecQuery WQL Select * from WmiMonitorBrightness ") + kFlags,
        kNext,
        L"panel0.Get CurrentBrightness",
        kNext,
        L"panel1.Get CurrentBrightness",
        kNext};
    CHECK_EQ(takeCalls(), expected);

    services->panels = {};
    CHECK_EQ(queryCurrentBrightness(services), -1);
    services->Release();
}

WINTEST_CASE(readerStopsAtAFailedGet)
{
    auto *services = new fakewbem::Services;
    services->panels = {30, 85};
    services->failGet = true;
    takeCalls();
    CHECK_EQ(queryCurrentBrightness(services), -1);
    CHECK_EQ(takeCalls().size(), size_t(3)); // query, one instance, its Get
    services->Release();
}

WINTEST_CASE(writerSetsEveryPanelWithStringValues)
{
    auto *services = new fakewbem::Services;
    services->panels = {30, 85};
    takeCalls();
    setBrightnessOnEveryPanel(services, 255);
    std::vector<std::wstring> expected = {
        std::wstring(L"ExecQuery WQL Select * from WmiMonitorBrightnessMethods ") + kFlags};
    for (const std::wstring panel : {L"panel0", L"panel1"}) {
        expected.push_back(kNext);
        expected.push_back(L"GetObject WmiMonitorBrightnessMethods");
        expected.push_back(L"class.GetMethod WmiSetBrightness");
        expected.push_back(L"signature.SpawnInstance 0");
        expected.push_back(L"in.Put Timeout=0 type 19");      // CIM_UINT32
        expected.push_back(L"in.Put Brightness=255 type 17"); // CIM_UINT8, no clamping here
        expected.push_back(panel + L".Get __PATH");
        expected.push_back(L"ExecMethod path:" + panel + L" WmiSetBrightness 0");
    }
    expected.push_back(kNext);
    CHECK_EQ(takeCalls(), expected);
    services->Release();
}

WINTEST_CASE(providerImagePathIsWritten)
{
    const std::wstring key = L"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\WmiAcpi";
    CHECK_EQ(setStringValue(key, L"MofImagePath", L"syswow64\\clevomof.dll"), 0L);
    RegistryValue value;
    CHECK_EQ(queryValue(key, L"MofImagePath", value), 0L);
    CHECK_EQ(value.text, std::wstring(L"syswow64\\clevomof.dll"));
}
