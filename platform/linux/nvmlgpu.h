#pragma once

#include "gpu.h"

#include <QString>
#include <QStringList>
#include <QVector>

// NVIDIA GPUs through NVML, loaded at run time (the library comes with the proprietary driver).
// NVML wakes every runtime-suspended GPU it touches, so the GPUs' power state is read from sysfs
// first: while any NVIDIA GPU sleeps, NVML is left alone and every GPU reports a memory clock of
// 0, which the polling loop takes as asleep.
class NvmlGpuSensors : public GpuSensors {
public:
    explicit NvmlGpuSensors(const QString &library = QStringLiteral("libnvidia-ml.so.1"),
                            const QString &sysRoot = QStringLiteral("/sys"));
    ~NvmlGpuSensors() override;
    NvmlGpuSensors(const NvmlGpuSensors &) = delete;
    NvmlGpuSensors &operator=(const NvmlGpuSensors &) = delete;

    int initialize() override;
    int enumeratePhysicalGpus(int *count) override;
    int allClockFrequencies(int gpu, unsigned *graphicsKHz, unsigned *memoryKHz) override;
    int dynamicPstatesInfo(int gpu, bool *graphicsPresent, unsigned *graphicsPercent) override;
    int pstates20(int gpu) override;
    int currentPstate(int gpu, int *pstate) override;
    int thermalSensor0(int gpu, int *celsius) override;
    QString errorMessage(int status) override;
    void unload() override;
    bool absentForGood() const override;

    // NVIDIA display controllers in sysfs (PCI addresses, in bus order) and whether any of them
    // is runtime-suspended.
    struct PciScan {
        QStringList devices;
        bool anySleeping = false;
    };
    static PciScan scanPci(const QString &sysRoot);
    // Whether any of the given NVIDIA devices is runtime-suspended.
    static bool anySleeping(const QString &sysRoot, const QStringList &devices);

private:
    struct Api;
    bool loadLibrary();
    void *device(int gpu) const;

    QString m_libraryName;
    QString m_sysRoot;
    void *m_library = nullptr;
    Api *m_api = nullptr;
    bool m_initialised = false;
    int m_sleepingGpus = 0; // > 0: this cycle answers without NVML
    // The bus is listed once: a display controller does not come and go while we run, and a
    // listing every second was most of the program's idle work.
    bool m_scanned = false;
    QStringList m_nvidiaDevices;
    QVector<void *> m_devices;
};
