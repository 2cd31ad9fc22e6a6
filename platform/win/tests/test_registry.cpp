#include "wintest.h"

#include "../../../audio/soundevents.h"
#include "win_registry.h"
#include "win_text.h"

using namespace varnel::win;
using Type = RegistryValue::Type;
using List = std::vector<std::wstring>;

namespace {

std::wstring uniqueKey(const wchar_t *caseName, const wchar_t *root = L"HKEY_CURRENT_USER")
{
    return wintest::unique(std::wstring(root) + L"\\Software\\VarnelTests\\" + caseName);
}

std::wstring subKey(const std::wstring &key)
{
    return key.substr(key.find(L'\\') + 1);
}

// The value as read back, which must exist (and have the given type).
RegistryValue query(const std::wstring &key, const std::wstring &name, Type type = Type::None)
{
    RegistryValue value;
    CHECK_EQ(queryValue(key, name, value), ERROR_SUCCESS);
    if (type != Type::None)
        CHECK_EQ(value.type, type);
    return value;
}

// Stores data the way another program might have, bypassing the writers under test.
void setRaw(const std::wstring &key, const wchar_t *name, DWORD type, const std::wstring &data)
{
    CHECK_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, subKey(key).c_str(), name, type, data.data(),
                             static_cast<DWORD>(data.size() * sizeof(wchar_t))),
             ERROR_SUCCESS);
}

// The stored bytes as they are, read straight through the API ("" is the unnamed value).
std::wstring rawData(const std::wstring &key, const wchar_t *name)
{
    HKEY handle = nullptr;
    RegOpenKeyExW(HKEY_CURRENT_USER, subKey(key).c_str(), 0, KEY_QUERY_VALUE, &handle);
    wchar_t buffer[256] = {};
    DWORD size = sizeof(buffer);
    CHECK_EQ(
        RegQueryValueExW(handle, name, nullptr, nullptr, reinterpret_cast<BYTE *>(buffer), &size),
        ERROR_SUCCESS);
    RegCloseKey(handle);
    return std::wstring(buffer, size / sizeof(wchar_t));
}

} // namespace

WINTEST_CASE(valuesRoundTripWithTheirTypes)
{
    const std::wstring key = uniqueKey(L"values");
    for (std::uint32_t number : {0u, 60u, 0xFFFFFFFFu}) {
        CHECK_EQ(setDwordValue(key, L"TdrDelay", number), ERROR_SUCCESS);
        CHECK_EQ(query(key, L"TdrDelay", Type::Dword).dword, number);
    }
    for (const std::wstring text :
         {L"0", L"", L"C:\\WINDOWS\\media\\Windows Background.wav", L"caf\u00e9 \u4e2d"}) {
        CHECK_EQ(setStringValue(key, L"HiberbootEnabled", text), ERROR_SUCCESS);
        CHECK_EQ(query(key, L"HiberbootEnabled", Type::String).text, text);
    }
    // A value changes its type when written with another one.
    CHECK_EQ(setDwordValue(key, L"HiberbootEnabled", 1), ERROR_SUCCESS);
    query(key, L"HiberbootEnabled", Type::Dword);

    const std::vector<List> lists = {{L"HKKbdFltr", L"kbdclass"}, {}, {L" ", L"z", L"a", L"  "}};
    for (const List &list : lists) {
        CHECK_EQ(setMultiStringValue(key, L"UpperFilters", list), ERROR_SUCCESS);
        CHECK_EQ(query(key, L"UpperFilters", Type::MultiString).list, list);
    }
    // An empty entry would end the list early on the next read.
    CHECK_EQ(setMultiStringValue(key, L"UpperFilters", {L"a", L"", L"b"}), ERROR_INVALID_PARAMETER);
    CHECK_EQ(query(key, L"UpperFilters").list, lists.back());
    // The empty list is still a well-formed multi-string.
    CHECK_EQ(setMultiStringValue(key, L"UpperFilters", {}), ERROR_SUCCESS);
    CHECK(rawData(key, L"UpperFilters") == std::wstring(L"\0\0", 2));

    // Another writer's values without terminators read whole, and a gap ends a list.
    setRaw(key, L"NoEnd", REG_SZ, L"abc");
    CHECK_EQ(query(key, L"NoEnd").text, L"abc");
    setRaw(key, L"ListNoEnd", REG_MULTI_SZ, std::wstring(L"one\0two", 7));
    CHECK_EQ(query(key, L"ListNoEnd").list, (List{L"one", L"two"}));
    setRaw(key, L"ListGap", REG_MULTI_SZ, std::wstring(L"one\0\0two\0\0", 10));
    CHECK_EQ(query(key, L"ListGap").list, List{L"one"});
}

// The sound scheme's marker is the unnamed value of its key.
WINTEST_CASE(defaultNamesTheUnnamedValue)
{
    const std::wstring key = fromUtf8(soundevents::schemesKey);
    const std::wstring name = fromUtf8(soundevents::defaultValueName);
    CHECK_EQ(setStringValue(key, name, L".None"), ERROR_SUCCESS);
    CHECK(rawData(key, L"") == std::wstring(L".None\0", 6));
    CHECK_EQ(query(key, L".").text, L".None");
    CHECK(!valueExists(key, L"Default2"));
    CHECK_EQ(setStringValue(key, name, L".Default"), ERROR_SUCCESS);
    CHECK_EQ(query(key, L"").text, L".Default");
}

// The tweaks' own keys, with blanks in their paths; Wine grants machine-wide writes.
WINTEST_CASE(machineWritesCreateTheirKeys)
{
    const std::wstring key = uniqueKey(L"GraphicsDrivers", L"HKEY_LOCAL_MACHINE");
    CHECK(!keyExists(key));
    CHECK_EQ(setDwordValue(key, L"TdrDdiDelay", 60), ERROR_SUCCESS);
    CHECK(keyExists(key));
    CHECK_EQ(query(key, L"TdrDdiDelay").dword, 60u);

    const std::wstring power =
        L"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Power";
    RegistryValue before;
    const bool existed = queryValue(power, L"HiberbootEnabled", before) == ERROR_SUCCESS;
    CHECK_EQ(setStringValue(power, L"HiberbootEnabled", L"0"), ERROR_SUCCESS);
    CHECK_EQ(query(power, L"HiberbootEnabled").text, L"0");
    if (!existed)
        CHECK_EQ(deleteValue(power, L"HiberbootEnabled"), ERROR_SUCCESS);
    else if (before.type == Type::Dword)
        CHECK_EQ(setDwordValue(power, L"HiberbootEnabled", before.dword), ERROR_SUCCESS);
}

WINTEST_CASE(pathsAndMissingValuesAreReported)
{
    const std::wstring key = uniqueKey(L"paths");
    const std::wstring sub = subKey(key);
    CHECK_EQ(deleteValue(key, L"Enabled"), ERROR_FILE_NOT_FOUND);
    CHECK_EQ(setDwordValue(key, L"Enabled", 1), ERROR_SUCCESS);
    std::wstring slashed = L"HKCU/" + sub + L"\\";
    for (wchar_t &c : slashed)
        c = c == L'\\' ? L'/' : c;
    CHECK_EQ(query(slashed, L"Enabled").dword, 1u);
    CHECK_EQ(query(L"hkey_current_user\\\\" + sub, L"Enabled").dword, 1u);

    RegistryValue value;
    CHECK_EQ(queryValue(L"HKEY_CLASSES_ROOT\\Software", L"x", value), ERROR_INVALID_PARAMETER);
    CHECK_EQ(setDwordValue(L"SYSTEM\\CurrentControlSet", L"x", 1), ERROR_INVALID_PARAMETER);
    CHECK_EQ(queryValue(key + L"\\Missing", L"Enabled", value), ERROR_FILE_NOT_FOUND);

    CHECK_EQ(deleteValue(key, L"TdrDdiDelay"), ERROR_FILE_NOT_FOUND);
    CHECK(valueExists(key, L"Enabled"));
    value = query(key, L"Enabled");
    CHECK_EQ(deleteValue(key, L"Enabled"), ERROR_SUCCESS);
    CHECK(!valueExists(key, L"Enabled"));
    CHECK_EQ(queryValue(key, L"Enabled", value), ERROR_FILE_NOT_FOUND);
    CHECK_EQ(value.type, Type::None); // nothing left of the earlier read
    CHECK(keyExists(key));
}
