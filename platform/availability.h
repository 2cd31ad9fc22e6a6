#pragma once

#include <QString>

// Things a control can do only where the machine offers them.
enum class Feature {
    PanelBacklight,  // the built-in panel's brightness
    NvidiaGpu,       // GPU sensors
    ProcessorLimits, // minimum and maximum processor state of a power mode
    LidShutdown,     // "Shutdown" as the lid action
    CameraSwitch,    // the laptop's camera switch
    CpuTuning,       // undervolt, turbo power and time, core ratios
    WindowsOnlyFix,  // registry fixes and helper tools that exist only on Windows
    SuperKeyBlocker, // the Windows (Super) key blocker
    ScreenTimeouts,  // screen-off and sleep timeouts of a power mode
    TouchpadSwitch,  // the touchpad's on/off switch
    AmbientLight,    // adaptive (light-sensor) brightness
    MonitorControl,  // external monitors' brightness over DDC/CI
    EventSounds,     // the sound scheme (stock sounds or none)
    KeyboardLight,   // the keyboard backlight set by the program itself
    SystemTray,      // a tray to hide the window in
};

// Whether a control's action has an equivalent on the running machine. A control whose
// answer is not empty is disabled and shows the answer as its tool tip.
class Availability {
public:
    virtual ~Availability() = default;
    // Empty when the feature works here; otherwise why not, in plain words.
    virtual QString whyUnavailable(Feature feature) = 0;
    // The same for a program or settings page the window starts by command line
    // ("Remote.exe", "updates\\Update.exe", "explorer ms-settings:sound").
    virtual QString whyCannotStart(const QString &commandLine) = 0;
};

// A platform where every control does what it says as it stands.
class EverythingAvailable : public Availability {
public:
    QString whyUnavailable(Feature) override { return QString(); }
    QString whyCannotStart(const QString &) override { return QString(); }
};
