#include "wintest.h"

#include "../../../audio/soundevents.h"
#include "win_registry.h"
#include "win_text.h"

#include <windows.h>

using namespace varnel::win;

namespace {

std::wstring wide(const char *text)
{
    return fromUtf8(text);
}

std::wstring eventKey(const char *event)
{
    return wide(soundevents::eventKeyPrefix) + wide(event) + wide(soundevents::eventKeySuffix);
}

// The key's unnamed value read straight through the API, not through the code under test.
std::wstring rawDefault(const std::wstring &key)
{
    const std::wstring sub = key.substr(key.find(L'\\') + 1);
    wchar_t data[512] = {};
    DWORD size = sizeof(data);
    const LSTATUS status =
        RegGetValueW(HKEY_CURRENT_USER, sub.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, data, &size);
    return status == ERROR_SUCCESS ? std::wstring(data) : std::wstring(L"<missing>");
}

// What choosing a scheme writes, in the table's order.
void writeScheme(bool silent)
{
    const std::wstring name = wide(soundevents::defaultValueName);
    CHECK_EQ(setStringValue(wide(soundevents::schemesKey), name,
                            wide(silent ? soundevents::silentMarker : soundevents::stockMarker)),
             ERROR_SUCCESS);
    for (const soundevents::Event &e : soundevents::table) {
        if (silent)
            CHECK_EQ(setStringValue(eventKey(e.name), name, L""), ERROR_SUCCESS);
        else if (e.stockSound)
            CHECK_EQ(setStringValue(eventKey(e.name), name, wide(e.stockSound)), ERROR_SUCCESS);
    }
}

} // namespace

// The prefix's own registry holds the stock scheme; both choices land on the unnamed values of
// the real keys, and the log-on sound stays silent after the way back.
WINTEST_CASE(eventTableBothWays)
{
    CHECK_EQ(soundevents::count, 22);
    writeScheme(true);
    CHECK_EQ(rawDefault(wide(soundevents::schemesKey)), std::wstring(L".None"));
    for (const soundevents::Event &e : soundevents::table)
        CHECK_EQ(rawDefault(eventKey(e.name)), std::wstring());

    writeScheme(false);
    CHECK_EQ(rawDefault(wide(soundevents::schemesKey)), std::wstring(L".Default"));
    for (const soundevents::Event &e : soundevents::table)
        CHECK_EQ(rawDefault(eventKey(e.name)), e.stockSound ? wide(e.stockSound) : std::wstring());
    CHECK_EQ(rawDefault(eventKey("Notification.IM")),
             std::wstring(L"C:\\WINDOWS\\media\\Windows Notify Messaging.wav"));
}

WINTEST_CASE(markerReadsBack)
{
    RegistryValue value;
    CHECK_EQ(setStringValue(wide(soundevents::schemesKey), L"Default", L".None"), ERROR_SUCCESS);
    CHECK_EQ(queryValue(wide(soundevents::schemesKey), L"Default", value), ERROR_SUCCESS);
    CHECK_EQ(value.text, std::wstring(L".None"));
}
