#pragma once

// Backends for concerns that have no Linux implementation yet: each behaves as the hardware
// being absent does on Windows.

#include "audio.h"
#include "brightness.h"
#include "devices.h"
#include "gpu.h"
#include "sampler.h"
#include "sleepnotifier.h"

class AbsentPanel : public PanelBrightness {
public:
    int read() override { return -1; }
    void write(quint32) override {}
    bool providerInstalled() override { return true; }
};

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

class UnknownPowerSource : public PowerSource {
public:
    int acLineStatus() override { return 255; }
};

class AbsentAudio : public AudioEndpoint {
public:
    quint32 volumeOperation(int, float, bool) override { return 0; }
    QString outputDeviceName() override { return QStringLiteral("No Audio Device"); }
};

class AbsentGpu : public GpuSensors {
public:
    int initialize() override { return -1; }
    int enumeratePhysicalGpus(int *count) override
    {
        *count = 0;
        return -1;
    }
    int allClockFrequencies(int, unsigned *, unsigned *) override { return -1; }
    int dynamicPstatesInfo(int, bool *, unsigned *) override { return -1; }
    int pstates20(int) override { return -1; }
    int currentPstate(int, int *) override { return -1; }
    int thermalSensor0(int, int *) override { return -1; }
    QString errorMessage(int) override { return QString(); }
    void unload() override {}
};

class AbsentSampler : public SystemSampler {
public:
    bool memoryStatus(quint64 *, quint64 *) override { return false; }
    bool systemTimes(quint64 *, quint64 *, quint64 *) override { return false; }
    QVector<InterfaceCounters> interfaceTable() override { return {}; }
    quint64 freeBytesForUser() override { return 0; }
};

class SilentSleepNotifier : public SleepNotifier {
public:
    bool decodeNativeMessage(const QByteArray &, void *, quint32 *, quintptr *) override
    {
        return false;
    }
};
