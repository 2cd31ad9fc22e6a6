#include "wintest.h"

#include "win_registry.h"

// The same filter rule the tuning tab applies, kept free of Qt for this test.
#include "../../../suite/upperfilters.h"

#include <windows.h>

using namespace varnel::win;
using Type = RegistryValue::Type;
using List = std::vector<std::wstring>;

// The tweaks' own keys: no other test program touches them, so they are used as they are.
namespace {

const std::wstring kGraphics = L"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\"
                               L"GraphicsDrivers";
const std::wstring kPower = L"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\"
                            L"Session Manager\\Power";
const std::wstring kKeyboardClass = L"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\"
                                    L"Class\\{4d36e96b-e325-11ce-bfc1-08002be10318}";
const std::wstring kMouseClass = L"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\"
                                 L"Class\\{4d36e96f-e325-11ce-bfc1-08002be10318}";

HKEY openMachineKey(const std::wstring &path, REGSAM access)
{
    const std::wstring sub = path.substr(path.find(L'\\') + 1);
    HKEY key = nullptr;
    CHECK_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, sub.c_str(), 0, nullptr, 0, access, nullptr, &key,
                             nullptr),
             ERROR_SUCCESS);
    return key;
}

// Stores bytes as another program might have, bypassing the writers under test.
void setRaw(const std::wstring &path, const wchar_t *name, DWORD type, const std::wstring &data)
{
    HKEY key = openMachineKey(path, KEY_SET_VALUE);
    CHECK_EQ(RegSetValueExW(key, name, 0, type, reinterpret_cast<const BYTE *>(data.data()),
                            static_cast<DWORD>(data.size() * sizeof(wchar_t))),
             ERROR_SUCCESS);
    RegCloseKey(key);
}

std::wstring rawBytes(const std::wstring &path, const wchar_t *name)
{
    HKEY key = openMachineKey(path, KEY_QUERY_VALUE);
    wchar_t buffer[256] = {};
    DWORD size = sizeof(buffer);
    CHECK_EQ(RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE *>(buffer), &size),
             ERROR_SUCCESS);
    RegCloseKey(key);
    return std::wstring(buffer, size / sizeof(wchar_t));
}

// The hot-key box, as the window runs it through the registry: read the list, and write it
// back only when the driver was in it.
void removeHotkeyFilter(const std::wstring &classKey, const std::wstring &driver)
{
    RegistryValue stored;
    List filters;
    if (queryValue(classKey, L"UpperFilters", stored) == ERROR_SUCCESS)
        filters = stored.list;
    if (removeFilterDriver(filters, driver))
        CHECK_EQ(setMultiStringValue(classKey, L"UpperFilters", filters), ERROR_SUCCESS);
}

List upperFilters(const std::wstring &classKey)
{
    RegistryValue value;
    CHECK_EQ(queryValue(classKey, L"UpperFilters", value), ERROR_SUCCESS);
    CHECK_EQ(value.type, Type::MultiString);
    return value.list;
}

} // namespace

WINTEST_CASE(longTdrDelayIsTwoDwordsOfSixtyAndUncheckingRemovesBoth)
{
    for (const wchar_t *name : {L"TdrDelay", L"TdrDdiDelay"})
        CHECK_EQ(setDwordValue(kGraphics, name, 60), ERROR_SUCCESS);
    for (const wchar_t *name : {L"TdrDelay", L"TdrDdiDelay"}) {
        RegistryValue value;
        CHECK_EQ(queryValue(kGraphics, name, value), ERROR_SUCCESS);
        CHECK_EQ(value.type, Type::Dword);
        CHECK_EQ(value.dword, 60u);
    }

    // Values someone else set go too, so the driver's defaults apply again.
    const DWORD other = 8;
    HKEY key = openMachineKey(kGraphics, KEY_SET_VALUE);
    CHECK_EQ(RegSetValueExW(key, L"TdrDelay", 0, REG_DWORD, reinterpret_cast<const BYTE *>(&other),
                            sizeof(other)),
             ERROR_SUCCESS);
    RegCloseKey(key);
    for (const wchar_t *name : {L"TdrDelay", L"TdrDdiDelay"}) {
        CHECK_EQ(deleteValue(kGraphics, name), ERROR_SUCCESS);
        CHECK(!valueExists(kGraphics, name));
    }
    CHECK(keyExists(kGraphics));
}

WINTEST_CASE(fastStartupIsStoredAsTheTextZeroOrOne)
{
    RegistryValue before;
    const bool existed = queryValue(kPower, L"HiberbootEnabled", before) == ERROR_SUCCESS;
    for (const wchar_t *text : {L"0", L"1"}) {
        CHECK_EQ(setStringValue(kPower, L"HiberbootEnabled", text), ERROR_SUCCESS);
        RegistryValue value;
        CHECK_EQ(queryValue(kPower, L"HiberbootEnabled", value), ERROR_SUCCESS);
        CHECK_EQ(value.type, Type::String);
        CHECK_EQ(value.text, std::wstring(text));
    }
    if (!existed)
        CHECK_EQ(deleteValue(kPower, L"HiberbootEnabled"), ERROR_SUCCESS);
    else if (before.type == Type::Dword)
        CHECK_EQ(setDwordValue(kPower, L"HiberbootEnabled", before.dword), ERROR_SUCCESS);
}

WINTEST_CASE(hotkeyFiltersLeaveEveryOtherDriverInOrder)
{
    setRaw(kKeyboardClass, L"UpperFilters", REG_MULTI_SZ,
           std::wstring(L"kbdclass\0HKKbdFltr\0i8042prt\0HKKbdFltr\0\0", 39));
    setRaw(kMouseClass, L"UpperFilters", REG_MULTI_SZ,
           std::wstring(L"HKMouFltr\0mouclass\0\0", 20));

    removeHotkeyFilter(kKeyboardClass, L"HKKbdFltr");
    removeHotkeyFilter(kMouseClass, L"HKMouFltr");

    CHECK_EQ(upperFilters(kKeyboardClass), (List{L"kbdclass", L"i8042prt"}));
    CHECK_EQ(upperFilters(kMouseClass), List{L"mouclass"});

    // Only the class's own driver goes; case matters.
    setRaw(kKeyboardClass, L"UpperFilters", REG_MULTI_SZ,
           std::wstring(L"HKMouFltr\0hkkbdfltr\0HKKbdFltr\0\0", 31));
    removeHotkeyFilter(kKeyboardClass, L"HKKbdFltr");
    CHECK_EQ(upperFilters(kKeyboardClass), (List{L"HKMouFltr", L"hkkbdfltr"}));
}

WINTEST_CASE(aListWithoutTheFilterIsNotRewritten)
{
    // Stored with a single terminator: a rewrite would add the second one.
    const std::wstring stored(L"kbdclass\0", 9);
    setRaw(kKeyboardClass, L"UpperFilters", REG_MULTI_SZ, stored);
    removeHotkeyFilter(kKeyboardClass, L"HKKbdFltr");
    CHECK(rawBytes(kKeyboardClass, L"UpperFilters") == stored);

    // A class without the value keeps having none.
    if (valueExists(kMouseClass, L"UpperFilters"))
        CHECK_EQ(deleteValue(kMouseClass, L"UpperFilters"), ERROR_SUCCESS);
    removeHotkeyFilter(kMouseClass, L"HKMouFltr");
    CHECK(!valueExists(kMouseClass, L"UpperFilters"));
}

WINTEST_CASE(aFilterAloneLeavesAnEmptyList)
{
    setRaw(kMouseClass, L"UpperFilters", REG_MULTI_SZ, std::wstring(L"HKMouFltr\0\0", 11));
    removeHotkeyFilter(kMouseClass, L"HKMouFltr");
    CHECK(upperFilters(kMouseClass).empty());
    // The empty list is still a well-formed multi-string.
    CHECK(rawBytes(kMouseClass, L"UpperFilters") == std::wstring(L"\0\0", 2));
}
