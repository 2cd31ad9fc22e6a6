#pragma once

#include "availability.h"

#include <functional>
#include <memory>
#include <optional>

class CommandTable;

// What this Linux machine offers, from probes that the native bundle points at sysfs, the
// system bus and the desktop, and that tests point at anything.
class LinuxAvailability : public Availability {
public:
    struct Probes {
        std::function<bool()> backlight;       // a panel backlight device exists
        std::function<bool()> nvidiaGpu;       // an NVIDIA display controller is on the bus
        std::function<bool()> nvidiaLibrary;   // the driver's monitoring library loads
        std::function<bool()> systemHelper;    // the root helper can be started
        std::function<bool()> superKeySetting; // the desktop has a Super-key setting
        std::function<bool()> desktopTimeouts; // the desktop takes idle and sleep timeouts
        std::function<bool()> touchpadSetting; // the desktop switches the touchpad
        std::function<bool()> ambientSetting;  // the desktop has adaptive brightness
        std::function<bool()> monitorChannel;  // libddcutil loads and an I2C bus is usable
        std::function<bool()> eventSounds;     // the desktop switches its event sounds
        std::function<bool()> keyboardLight;   // the keyboard has a backlight LED
        std::function<bool()> systemTray;      // the desktop shows tray icons
        QString installFolder;
    };

    LinuxAvailability(Probes probes, std::shared_ptr<const CommandTable> table);

    QString whyUnavailable(Feature feature) override;
    QString whyCannotStart(const QString &commandLine) override;

    static Probes nativeProbes();

private:
    // Probes that ask a bus, the driver or the desktop run once.
    static bool once(std::optional<bool> &answer, const std::function<bool()> &check);

    Probes m_probes;
    std::shared_ptr<const CommandTable> m_table;
    std::optional<bool> m_gpu, m_gpuLibrary, m_helper, m_superKey, m_timeouts, m_touchpad,
        m_ambient, m_ddc, m_sounds;
};
