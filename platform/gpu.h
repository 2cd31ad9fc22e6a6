#pragma once

#include <QString>

// NVIDIA sensor queries in the shape of the driver interface: every call returns 0 on success.
// GPUs are addressed by their enumeration index. Called from the GPU polling thread only.
class GpuSensors {
public:
    virtual ~GpuSensors() = default;
    virtual int initialize() = 0;
    virtual int enumeratePhysicalGpus(int *count) = 0;
    virtual int allClockFrequencies(int gpu, unsigned *graphicsKHz, unsigned *memoryKHz) = 0;
    virtual int dynamicPstatesInfo(int gpu, bool *graphicsPresent, unsigned *graphicsPercent) = 0;
    virtual int pstates20(int gpu) = 0;
    virtual int currentPstate(int gpu, int *pstate) = 0;
    virtual int thermalSensor0(int gpu, int *celsius) = 0;
    virtual QString errorMessage(int status) = 0;
    virtual void unload() = 0;
};
