#pragma once

// Qt faces of the plain Windows backend's audio and device concerns: conversions only.

#include "audio.h"
#include "audio_endpoint.h"
#include "ddc_monitor.h"
#include "devices.h"
#include "keyhook.h"
#include "laptopswitch.h"

#include <QString>

class WinAudioEndpoint : public AudioEndpoint {
public:
    quint32 volumeOperation(int command, float level, bool mute) override
    {
        return varnel::win::endpointVolume(command, level, mute);
    }
    QString outputDeviceName() override
    {
        return QString::fromStdString(varnel::win::outputDeviceName());
    }
};

class WinDeviceSwitches : public DeviceSwitches {
public:
    void setSwitch(int switchId, int value) override
    {
        varnel::win::setLaptopSwitch(switchId, value);
    }
};

// The monitor is the one under the foreground window, which is the window whose slider moves.
class WinMonitorControl : public MonitorControl {
public:
    void setVcpFeature(quintptr, quint8 code, quint32 value) override
    {
        varnel::win::setVcpFeature(code, value);
    }
};

// One hook at most: a second install while one is in place would leave a hook that no
// uninstall reaches.
class WinKeyBlocker : public KeyBlocker {
public:
    ~WinKeyBlocker() override { uninstall(); }
    bool install() override
    {
        if (!m_hook)
            m_hook = varnel::win::installWindowsKeyHook(GetModuleHandleW(nullptr));
        return m_hook != nullptr;
    }
    void uninstall() override
    {
        varnel::win::removeWindowsKeyHook(m_hook);
        m_hook = nullptr;
    }

private:
    HHOOK m_hook = nullptr;
};
