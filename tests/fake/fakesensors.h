#pragma once

#include "gpu.h"
#include "sampler.h"

#include <QMutex>
#include <QMutexLocker>
#include <QStringList>
#include <QVector>

// Scripted GPUs answering from the fields below (0 = success), each call recorded ("clocks 1");
// the polling thread calls in while a window test runs, so script them before the window.
class FakeGpu : public GpuSensors {
public:
    struct Card {
        int clockResult = 0;
        unsigned graphicsKHz = 0;
        unsigned memoryKHz = 0;
        int pstatesResult = 0;
        bool loadPresent = true;
        unsigned loadPercent = 0;
        int pstate = 0;
        int thermalResult = 0;
        int temperature = 0;
    };

    int initialize() override
    {
        record(QStringLiteral("initialize"));
        return initResult;
    }
    int enumeratePhysicalGpus(int *count) override
    {
        record(QStringLiteral("enumerate"));
        if (enumResult == 0)
            *count = cards.size();
        return enumResult;
    }
    int allClockFrequencies(int gpu, unsigned *graphicsKHz, unsigned *memoryKHz) override
    {
        const Card &c = card(gpu, QStringLiteral("clocks"));
        if (c.clockResult == 0) {
            *graphicsKHz = c.graphicsKHz;
            *memoryKHz = c.memoryKHz;
        }
        return c.clockResult;
    }
    int dynamicPstatesInfo(int gpu, bool *present, unsigned *percent) override
    {
        const Card &c = card(gpu, QStringLiteral("dynamic"));
        if (c.pstatesResult == 0) {
            *present = c.loadPresent;
            *percent = c.loadPercent;
        }
        return c.pstatesResult;
    }
    int pstates20(int gpu) override
    {
        card(gpu, QStringLiteral("pstates20"));
        return 0;
    }
    int currentPstate(int gpu, int *pstate) override
    {
        *pstate = card(gpu, QStringLiteral("pstate")).pstate;
        return 0;
    }
    int thermalSensor0(int gpu, int *celsius) override
    {
        const Card &c = card(gpu, QStringLiteral("thermal"));
        if (c.thermalResult == 0)
            *celsius = c.temperature;
        return c.thermalResult;
    }
    QString errorMessage(int status) override
    {
        return QStringLiteral("fake error %1").arg(status);
    }
    void unload() override { record(QStringLiteral("unload")); }

    QStringList calls() const
    {
        QMutexLocker lock(&m_lock);
        return m_calls;
    }

    int initResult = -1; // no GPU unless a test says otherwise
    int enumResult = 0;
    QVector<Card> cards;

private:
    void record(const QString &call)
    {
        QMutexLocker lock(&m_lock);
        m_calls << call;
    }
    const Card &card(int gpu, const QString &call)
    {
        record(call + QLatin1Char(' ') + QString::number(gpu));
        return cards.at(gpu);
    }

    mutable QMutex m_lock;
    QStringList m_calls;
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
