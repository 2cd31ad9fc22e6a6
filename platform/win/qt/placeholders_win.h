#pragma once

// Backends for concerns the Windows backend does not cover yet: each behaves as the hardware
// being absent does on Windows.

#include "audio.h"
#include "devices.h"
#include "sleepnotifier.h"

class AbsentSwitches : public DeviceSwitches {
public:
    void setSwitch(int, int) override {}
};

class AbsentMonitors : public MonitorControl {
public:
    void setVcpFeature(quintptr, quint8, quint32) override {}
};

class AbsentKeyBlocker : public KeyBlocker {
public:
    bool install() override { return false; }
    void uninstall() override {}
};

class AbsentAudio : public AudioEndpoint {
public:
    quint32 volumeOperation(int, float, bool) override { return 0; }
    QString outputDeviceName() override { return QStringLiteral("No Audio Device"); }
};

class SilentSleepNotifier : public SleepNotifier {
public:
    bool decodeNativeMessage(const QByteArray &, void *, quint32 *, quintptr *) override
    {
        return false;
    }
};
