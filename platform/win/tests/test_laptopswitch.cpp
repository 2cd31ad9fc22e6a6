#include "wintest.h"

#include "fakewbem.h"
#include "laptopswitch.h"

#include <wbemidl.h>

using namespace varnel::win;

namespace {
std::vector<std::wstring> takeCalls()
{
    std::vector<std::wstring> out;
    out.swap(fakewbem::calls());
    return out;
}
} // namespace

WINTEST_CASE(methodNames)
{
    CHECK_EQ(std::wstring(laptopSwitchMethod(1)), std::wstring(L"SetCamera"));
    CHECK_EQ(std::wstring(laptopSwitchMethod(2)), std::wstring(L"SetWLan"));
    CHECK_EQ(std::wstring(laptopSwitchMethod(3)), std::wstring(L"SetTP"));
    CHECK_EQ(std::wstring(laptopSwitchMethod(0)), std::wstring(L"SetTP"));
}

// The call sequence on the first instance only, with the value as a 16-bit string argument.
WINTEST_CASE(callSequence)
{
    auto *services = new fakewbem::Services;
    services->panels = {0, 0};
    takeCalls();
    CHECK_EQ(callLaptopSwitch(services, 1, 0), S_OK);
    const std::vector<std::wstring> expected = {L"ExecQuery WQL Select * from CLEVO_GET 16",
                                                L"Next -1 1",
                                                L"GetObject CLEVO_GET",
                                                L"class.GetMethod SetCamera",
                                                L"signature.SpawnInstance 0",
                                                L"in.Put Data=0 type 18",
                                                L"panel0.Get __PATH",
                                                L"ExecMethod path:panel0 SetCamera 0"};
    CHECK_EQ(takeCalls(), expected);
    services->Release();
}

WINTEST_CASE(noInstanceCallsNothing)
{
    auto *services = new fakewbem::Services;
    takeCalls();
    CHECK(callLaptopSwitch(services, 3, 1) != S_OK);
    CHECK_EQ(takeCalls().size(), size_t(2)); // the query and the empty Next
    services->Release();
}

// Wine has no such class: the switch fails quietly.
WINTEST_CASE(wineHasNoLaptopClass)
{
    CHECK(setLaptopSwitch(1, 1) != S_OK);
}
