#pragma once

#include <QString>
#include <QtGlobal>

#include <functional>

// The laptop's device switches (1 camera, 2 wireless LAN, 3 touchpad; value 0 off, 1 on).
class DeviceSwitches {
public:
    // Told, once the answer has come, that a switch was refused and stays as it was.
    using Refused = std::function<void(int switchId, int value, const QString &why)>;

    virtual ~DeviceSwitches() = default;
    virtual void setSwitch(int switchId, int value) = 0;
    void onRefused(Refused handler) { m_refused = std::move(handler); }

protected:
    void refuse(int switchId, int value, const QString &why) const
    {
        if (m_refused)
            m_refused(switchId, value, why);
    }

private:
    Refused m_refused;
};

// External monitors over DDC/CI: read-compare-write of one VCP feature on every physical
// monitor behind the display that shows the given window.
class MonitorControl {
public:
    virtual ~MonitorControl() = default;
    virtual void setVcpFeature(quintptr windowId, quint8 code, quint32 value) = 0;
};

// Swallows the Windows (Super) keys while installed.
class KeyBlocker {
public:
    virtual ~KeyBlocker() = default;
    virtual bool install() = 0;
    virtual void uninstall() = 0;
};

// Mains power: 0 offline, 1 online, 255 unknown.
class PowerSource {
public:
    virtual ~PowerSource() = default;
    virtual int acLineStatus() = 0;
};

// The keyboard's backlight, where the program sets it itself (0..100). Elsewhere the level
// reaches the keyboard-light companion through the status record alone.
class KeyboardLight {
public:
    virtual ~KeyboardLight() = default;
    virtual void setLevel(int percent) = 0;
};

class CompanionKeyboardLight : public KeyboardLight {
public:
    void setLevel(int) override {}
};
