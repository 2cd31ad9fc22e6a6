#include "wintest.h"

#include "win_registry.h"

#include <windows.h>

using namespace varnel::win;
using Type = RegistryValue::Type;

namespace {

// Test programs share one prefix and may run at the same time.
std::wstring uniqueKey(const wchar_t *root, const wchar_t *caseName)
{
    return std::wstring(root) + L"\\Software\\VarnelTests\\" + caseName + L"-" +
           std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(GetTickCount64());
}

std::wstring userKey(const wchar_t *caseName)
{
    return uniqueKey(L"HKEY_CURRENT_USER", caseName);
}

RegistryValue query(const std::wstring &key, const std::wstring &name)
{
    RegistryValue value;
    CHECK_EQ(queryValue(key, name, value), ERROR_SUCCESS);
    return value;
}

// Stores data the way another program might have, bypassing the writers under test.
void setRaw(const std::wstring &key, const wchar_t *name, DWORD type, const std::wstring &data)
{
    HKEY handle = nullptr;
    const std::wstring sub = key.substr(key.find(L'\\') + 1);
    CHECK_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, sub.c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr,
                             &handle, nullptr),
             ERROR_SUCCESS);
    CHECK_EQ(RegSetValueExW(handle, name, 0, type, reinterpret_cast<const BYTE *>(data.data()),
                            static_cast<DWORD>(data.size() * sizeof(wchar_t))),
             ERROR_SUCCESS);
    RegCloseKey(handle);
}

} // namespace

WINTEST_CASE(numbersAndStringsRoundTrip)
{
    const std::wstring key = userKey(L"scalars");
    for (std::uint32_t number : {0u, 60u, 0xFFFFFFFFu}) {
        CHECK_EQ(setDwordValue(key, L"TdrDelay", number), ERROR_SUCCESS);
        const RegistryValue value = query(key, L"TdrDelay");
        CHECK_EQ(value.type, Type::Dword);
        CHECK_EQ(value.dword, number);
    }
    for (const std::wstring text :
         {L"0", L"", L"C:\\WINDOWS\\media\\Windows Background.wav", L"caf\u00e9 \u4e2d"}) {
        CHECK_EQ(setStringValue(key, L"HiberbootEnabled", text), ERROR_SUCCESS);
        const RegistryValue value = query(key, L"HiberbootEnabled");
        CHECK_EQ(value.type, Type::String);
        CHECK_EQ(value.text, text);
    }
    // A value changes its type when written with another one.
    CHECK_EQ(setDwordValue(key, L"HiberbootEnabled", 1), ERROR_SUCCESS);
    CHECK_EQ(query(key, L"HiberbootEnabled").type, Type::Dword);
}

WINTEST_CASE(multiStringsRoundTripInOrder)
{
    const std::wstring key = userKey(L"multi");
    const std::vector<std::vector<std::wstring>> lists = {
        {L"HKKbdFltr", L"kbdclass"}, {}, {L"kbdclass"}, {L" ", L"z", L"a", L"  "}};
    for (const auto &list : lists) {
        CHECK_EQ(setMultiStringValue(key, L"UpperFilters", list), ERROR_SUCCESS);
        const RegistryValue value = query(key, L"UpperFilters");
        CHECK_EQ(value.type, Type::MultiString);
        CHECK_EQ(value.list, list);
    }
    // An empty entry would end the list early on the next read.
    CHECK_EQ(setMultiStringValue(key, L"UpperFilters", {L"a", L"", L"b"}), ERROR_INVALID_PARAMETER);
    CHECK_EQ(query(key, L"UpperFilters").list, lists.back());
}

WINTEST_CASE(valuesStoredWithoutTerminatorsReadWhole)
{
    const std::wstring key = userKey(L"raw");
    setRaw(key, L"NoEnd", REG_SZ, L"abc");
    CHECK_EQ(query(key, L"NoEnd").text, L"abc");
    setRaw(key, L"ListNoEnd", REG_MULTI_SZ, std::wstring(L"one\0two", 7));
    CHECK_EQ(query(key, L"ListNoEnd").list, (std::vector<std::wstring>{L"one", L"two"}));
    setRaw(key, L"ListGap", REG_MULTI_SZ, std::wstring(L"one\0\0two\0\0", 10));
    CHECK_EQ(query(key, L"ListGap").list, std::vector<std::wstring>{L"one"});
}

WINTEST_CASE(deletingReportsWhatWasMissing)
{
    const std::wstring key = userKey(L"delete");
    CHECK_EQ(deleteValue(key, L"TdrDelay"), ERROR_FILE_NOT_FOUND);
    CHECK_EQ(setDwordValue(key, L"TdrDelay", 60), ERROR_SUCCESS);
    CHECK_EQ(deleteValue(key, L"TdrDdiDelay"), ERROR_FILE_NOT_FOUND);
    CHECK(valueExists(key, L"TdrDelay"));
    CHECK_EQ(deleteValue(key, L"TdrDelay"), ERROR_SUCCESS);
    CHECK(!valueExists(key, L"TdrDelay"));
    RegistryValue value;
    CHECK_EQ(queryValue(key, L"TdrDelay", value), ERROR_FILE_NOT_FOUND);
    CHECK_EQ(value.type, Type::None);
}

WINTEST_CASE(defaultNamesTheUnnamedValue)
{
    const std::wstring key = userKey(L"unnamed");
    CHECK_EQ(setStringValue(key, L"Default", L".None"), ERROR_SUCCESS);

    HKEY handle = nullptr;
    const std::wstring sub = key.substr(key.find(L'\\') + 1);
    CHECK_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, sub.c_str(), 0, KEY_QUERY_VALUE, &handle),
             ERROR_SUCCESS);
    wchar_t buffer[32] = {};
    DWORD size = sizeof(buffer);
    CHECK_EQ(
        RegQueryValueExW(handle, L"", nullptr, nullptr, reinterpret_cast<BYTE *>(buffer), &size),
        ERROR_SUCCESS);
    RegCloseKey(handle);
    CHECK_EQ(std::wstring(buffer), L".None");
    CHECK_EQ(query(key, L".").text, L".None");
    CHECK(!valueExists(key, L"Default2"));
    CHECK_EQ(deleteValue(key, L"Default"), ERROR_SUCCESS);
    CHECK(!valueExists(key, L"Default"));
}

WINTEST_CASE(machineWriteCreatesTheKey)
{
    const std::wstring key = uniqueKey(L"HKEY_LOCAL_MACHINE", L"GraphicsDrivers");
    CHECK(!keyExists(key));
    CHECK_EQ(setDwordValue(key, L"TdrDdiDelay", 60), ERROR_SUCCESS);
    CHECK(keyExists(key));
    CHECK_EQ(query(key, L"TdrDdiDelay").dword, 60u);
}

WINTEST_CASE(pathsAreReadTheWayTheProgramWritesThem)
{
    const std::wstring key = userKey(L"paths");
    CHECK_EQ(setDwordValue(key, L"Enabled", 1), ERROR_SUCCESS);
    std::wstring slashed = L"HKCU/" + key.substr(key.find(L'\\') + 1) + L"\\";
    for (wchar_t &c : slashed)
        c = c == L'\\' ? L'/' : c;
    CHECK_EQ(query(slashed, L"Enabled").dword, 1u);
    CHECK_EQ(query(L"hkey_current_user\\\\" + key.substr(key.find(L'\\') + 1), L"Enabled").dword,
             1u);

    RegistryValue value;
    CHECK_EQ(queryValue(L"HKEY_CLASSES_ROOT\\Software", L"x", value), ERROR_INVALID_PARAMETER);
    CHECK_EQ(setDwordValue(L"SYSTEM\\CurrentControlSet", L"x", 1), ERROR_INVALID_PARAMETER);
    CHECK_EQ(queryValue(key + L"\\Missing", L"Enabled", value), ERROR_FILE_NOT_FOUND);
}
