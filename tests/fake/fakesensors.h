#pragma once

#include "gpu.h"
#include "sampler.h"

// Scripted GPU: every call answers from the fields below (0 = success).
class FakeGpu : public GpuSensors {
public:
    int initialize() override { return initResult; }
    int enumeratePhysicalGpus(int *count) override
    {
        *count = gpuCount;
        return enumResult;
    }
    int allClockFrequencies(int, unsigned *graphicsKHz, unsigned *memoryKHz) override
    {
        *graphicsKHz = graphicsKHzValue;
        *memoryKHz = memoryKHzValue;
        return clockResult;
    }
    int dynamicPstatesInfo(int, bool *present, unsigned *percent) override
    {
        *present = loadPresent;
        *percent = loadPercent;
        return pstatesResult;
    }
    int pstates20(int) override { return 0; }
    int currentPstate(int, int *pstate) override
    {
        *pstate = pstateValue;
        return 0;
    }
    int thermalSensor0(int, int *celsius) override
    {
        *celsius = temperature;
        return thermalResult;
    }
    QString errorMessage(int) override { return QStringLiteral("fake error"); }
    void unload() override {}

    int initResult = -1; // no GPU unless a test says otherwise
    int enumResult = 0;
    int gpuCount = 0;
    int clockResult = 0;
    unsigned graphicsKHzValue = 0;
    unsigned memoryKHzValue = 0;
    int pstatesResult = 0;
    bool loadPresent = true;
    unsigned loadPercent = 0;
    int pstateValue = 0;
    int thermalResult = 0;
    int temperature = 0;
};

class FakeSampler : public SystemSampler {
public:
    bool memoryStatus(quint64 *total, quint64 *available) override
    {
        *total = totalPhysical;
        *available = availablePhysical;
        return memoryOk;
    }
    bool systemTimes(quint64 *idle, quint64 *kernel, quint64 *user) override
    {
        *idle = idleTime;
        *kernel = kernelTime;
        *user = userTime;
        return timesOk;
    }
    QVector<InterfaceCounters> interfaceTable() override { return interfaces; }
    quint64 freeBytesForUser() override { return freeBytes; }

    bool memoryOk = true;
    quint64 totalPhysical = 16ull << 30;
    quint64 availablePhysical = 8ull << 30;
    bool timesOk = true;
    quint64 idleTime = 0, kernelTime = 0, userTime = 0;
    QVector<InterfaceCounters> interfaces;
    quint64 freeBytes = 100ull << 30;
};
