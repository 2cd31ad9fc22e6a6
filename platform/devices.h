#pragma once

#include <QString>
#include <QtGlobal>

#include <functional>

// The laptop's device switches (1 camera, 2 wireless LAN, 3 touchpad; value 0 off, 1 on).
class DeviceSwitches {
public:
    // Told where a switch answers later: why is empty when it took effect, else the reason it
    // was refused (the switch then stays as it was).
    using Answered = std::function<void(int switchId, int value, const QString &why)>;

    virtual ~DeviceSwitches() = default;
    virtual void setSwitch(int switchId, int value) = 0;
    void onAnswered(Answered handler) { m_answered = std::move(handler); }

protected:
    void answer(int switchId, int value, const QString &why) const
    {
        if (m_answered)
            m_answered(switchId, value, why);
    }

private:
    Answered m_answered;
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
