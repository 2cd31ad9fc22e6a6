#pragma once

// The Windows sound-event table the scheme combo writes, as plain data so that the Windows
// backend's own tests can write it against a real registry without Qt.

namespace soundevents {

// Default value "Default" of this key: ".Default" (stock sounds) or ".None" (no sounds).
inline constexpr char schemesKey[] = "HKEY_CURRENT_USER\\AppEvents\\Schemes";
inline constexpr char defaultValueName[] = "Default";
inline constexpr char stockMarker[] = ".Default";
inline constexpr char silentMarker[] = ".None";

// An event's sound is the default value of eventKeyPrefix + event + eventKeySuffix.
inline constexpr char eventKeyPrefix[] = "HKEY_CURRENT_USER\\AppEvents\\Schemes\\Apps\\.Default\\";
inline constexpr char eventKeySuffix[] = "\\.Current";

struct Event {
    const char *name;
    // nullptr: the stock scheme leaves the value alone, so a silenced event stays silent.
    const char *stockSound;
};

// In writing order. Several events share a stock file on purpose.
inline constexpr Event table[] = {
    {".Default", "C:\\WINDOWS\\media\\Windows Background.wav"},
    {"CriticalBatteryAlarm", "C:\\WINDOWS\\media\\Windows Foreground.wav"},
    {"DeviceConnect", "C:\\WINDOWS\\media\\Windows Hardware Insert.wav"},
    {"DeviceDisconnect", "C:\\WINDOWS\\media\\Windows Hardware Remove.wav"},
    {"DeviceFail", "C:\\WINDOWS\\media\\Windows Hardware Fail.wav"},
    {"FaxBeep", "C:\\WINDOWS\\media\\Windows Notify Email.wav"},
    {"LowBatteryAlarm", "C:\\WINDOWS\\media\\Windows Background.wav"},
    {"MailBeep", "C:\\WINDOWS\\media\\Windows Notify Email.wav"},
    {"MessageNudge", "C:\\WINDOWS\\media\\Windows Message Nudge.wav"},
    {"Notification.Default", "C:\\WINDOWS\\media\\Windows Notify System Generic.wav"},
    {"Notification.IM", "C:\\WINDOWS\\media\\Windows Notify Messaging.wav"},
    {"Notification.Mail", "C:\\WINDOWS\\media\\Windows Notify Email.wav"},
    {"Notification.Proximity", "C:\\WINDOWS\\media\\Windows Proximity Notification.wav"},
    {"Notification.Reminder", "C:\\WINDOWS\\media\\Windows Notify Calendar.wav"},
    {"Notification.SMS", "C:\\WINDOWS\\media\\Windows Notify Messaging.wav"},
    {"ProximityConnection", "C:\\WINDOWS\\media\\Windows Proximity Connection.wav"},
    {"SystemAsterisk", "C:\\WINDOWS\\media\\Windows Background.wav"},
    {"SystemExclamation", "C:\\WINDOWS\\media\\Windows Background.wav"},
    {"SystemHand", "C:\\WINDOWS\\media\\Windows Foreground.wav"},
    {"SystemNotification", "C:\\WINDOWS\\media\\Windows Background.wav"},
    {"WindowsLogon", nullptr},
    {"WindowsUAC", "C:\\WINDOWS\\media\\Windows User Account Control.wav"},
};

inline constexpr int count = sizeof(table) / sizeof(table[0]);

} // namespace soundevents
