#pragma once

#include "desktoppower.h"

#include <QString>

#include <optional>

// KDE Plasma's equivalents of the GNOME settings: the power manager's AC and battery profiles
// for a power mode's timeouts, KWin's Meta shortcut for the Windows-key blocker. Each writes
// the user's own configuration file and asks the running service to read it again.
class KdeTimeouts : public DesktopTimeouts {
public:
    explicit KdeTimeouts(QString configHome);
    bool available() override;
    bool setScreenOff(bool onBattery, int minutes) override;
    bool setSleepAfter(bool onBattery, int minutes) override;

private:
    QString m_file;
};

class KdeMetaKeyBlocker : public KeyBlocker {
public:
    explicit KdeMetaKeyBlocker(QString configHome);
    ~KdeMetaKeyBlocker() override;
    bool install() override;
    void uninstall() override;

private:
    QString m_file;
    bool m_installed = false;
    std::optional<QString> m_saved; // the user's own Meta action, if the file had one
};
