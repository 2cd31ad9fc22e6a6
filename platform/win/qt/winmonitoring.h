#pragma once

// Qt faces of the GPU, sampler and battery parts of the Windows backend.

#include "gpu.h"
#include "nvapi.h"
#include "qtprocess.h"
#include "sampler.h"
#include "systemsampler.h"

#include <QByteArray>

class QThread;

class WinGpuSensors : public GpuSensors {
public:
    int initialize() override { return m_api.initialize(); }
    int enumeratePhysicalGpus(int *count) override { return m_api.enumeratePhysicalGpus(count); }
    int allClockFrequencies(int gpu, unsigned *graphicsKHz, unsigned *memoryKHz) override
    {
        return m_api.allClockFrequencies(gpu, graphicsKHz, memoryKHz);
    }
    int dynamicPstatesInfo(int gpu, bool *present, unsigned *percent) override
    {
        return m_api.dynamicPstatesInfo(gpu, present, percent);
    }
    int pstates20(int gpu) override { return m_api.pstates20(gpu); }
    int currentPstate(int gpu, int *pstate) override { return m_api.currentPstate(gpu, pstate); }
    int thermalSensor0(int gpu, int *celsius) override
    {
        return m_api.thermalSensor0(gpu, celsius);
    }
    QString errorMessage(int status) override
    {
        return QString::fromStdString(m_api.errorMessage(status));
    }
    void unload() override { m_api.unload(); }

private:
    varnel::win::NvApi m_api;
};

class WinSystemSampler : public SystemSampler {
public:
    bool memoryStatus(quint64 *totalPhysical, quint64 *availablePhysical) override;
    bool systemTimes(quint64 *idle, quint64 *kernel, quint64 *user) override;
    QVector<InterfaceCounters> interfaceTable() override;
    quint64 freeBytesForUser() override { return varnel::win::freeBytesForCaller(); }

private:
    varnel::win::InterfaceTable m_table;
};

// A process that answers the battery widget's two wmic queries through WMI where wmic.exe is
// gone, off the GUI thread; every other command line runs as a real process, its program
// named by full path as the command runner names it.
class WinBatteryQueryProcess : public QtAsyncProcess {
    Q_OBJECT
public:
    using QtAsyncProcess::QtAsyncProcess;
    ~WinBatteryQueryProcess() override;

    void start(const QString &program, const QStringList &arguments) override;
    void startCommand(const QString &commandLine) override;
    bool isRunning() const override;
    QByteArray readAllStandardOutput() override;

private:
    QThread *m_worker = nullptr;
    QByteArray m_answer;
};
