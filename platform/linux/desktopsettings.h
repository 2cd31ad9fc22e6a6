#pragma once

#include <QString>
#include <QStringList>

// The desktop's own settings, where the session has them: GNOME's settings daemon and control
// centre, or KDE's system settings. Nothing here needs root.
class DesktopSettings {
public:
    virtual ~DesktopSettings() = default;
    // Switches the ambient-light sensor's control of the panel; false when the desktop has no
    // such setting.
    virtual bool setAmbientBrightness(bool enabled) = 0;
    virtual bool openDisplaySettings() = 0;
    virtual bool openPowerSettings() = 0;
};

// The real desktop: the settings daemon through its settings keys, the settings pages through
// the programs on PATH.
class SessionDesktopSettings : public DesktopSettings {
public:
    bool setAmbientBrightness(bool enabled) override;
    bool openDisplaySettings() override;
    bool openPowerSettings() override;

    // The first settings program that is installed, with its arguments for one page; empty
    // when none is.
    static QStringList displayCommand();
    static bool hasAmbientBrightness();
    static QStringList powerCommand();

private:
    static bool startDetached(const QStringList &command);
};
