#pragma once

#include "commandtable.h"
#include "devices.h"

#include <QDBusUnixFileDescriptor>
#include <QString>

#include <memory>
#include <optional>

// A power mode's timeouts in the desktop's own settings (GNOME's idle delay and its settings
// daemon's sleep timeouts). Nothing here needs root.
class DesktopTimeouts {
public:
    virtual ~DesktopTimeouts() = default;
    virtual bool available() = 0;
    // 0 minutes is never. GNOME blanks the screen after one idle delay, on mains and battery.
    virtual bool setScreenOff(bool onBattery, int minutes) = 0;
    virtual bool setSleepAfter(bool onBattery, int minutes) = 0;
};

class GnomeTimeouts : public DesktopTimeouts {
public:
    bool available() override;
    bool setScreenOff(bool onBattery, int minutes) override;
    bool setSleepAfter(bool onBattery, int minutes) override;
};

// Holds logind's handle-lid-switch lock while the lid is to do nothing.
class LidSwitch {
public:
    virtual ~LidSwitch() = default;
    virtual void setIgnored(bool ignored) = 0;
};

class LogindLidSwitch : public LidSwitch {
public:
    void setIgnored(bool ignored) override;

private:
    QDBusUnixFileDescriptor m_inhibitor;
};

// The power scheme's screen-off, sleep and lid lines. A lid that shuts the machine down is
// the system helper's to set; here it only lets go of the lock.
void addDesktopPowerCommands(CommandTable &table, std::shared_ptr<DesktopTimeouts> timeouts,
                             std::shared_ptr<LidSwitch> lid);

// The Windows-key blocker as the desktop's Super-key setting (GNOME's overlay key): cleared
// while installed, given back on uninstall and when the program ends.
class OverlayKeyBlocker : public KeyBlocker {
public:
    ~OverlayKeyBlocker() override;
    bool install() override;
    void uninstall() override;
    static bool available();

private:
    std::optional<QString> m_saved;
};
