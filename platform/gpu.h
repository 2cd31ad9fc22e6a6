#pragma once

#include <QString>

// NVIDIA sensor queries in the shape of the driver interface: every call returns 0 on success.
// GPUs are addressed by their enumeration index. Called from the GPU polling thread only.
// A failing query leaves its outputs as they were: the polling loop keeps its query results
// between calls and relies on that.
class GpuSensors {
public:
    virtual ~GpuSensors() = default;
    virtual int initialize() = 0;
    virtual int enumeratePhysicalGpus(int *count) = 0;
    // Current graphics (domain 0) and memory (domain 4) clocks.
    virtual int allClockFrequencies(int gpu, unsigned *graphicsKHz, unsigned *memoryKHz) = 0;
    // Graphics-engine utilisation (domain 0) and whether the driver reports it at all.
    virtual int dynamicPstatesInfo(int gpu, bool *graphicsPresent, unsigned *graphicsPercent) = 0;
    virtual int pstates20(int gpu) = 0;
    virtual int currentPstate(int gpu, int *pstate) = 0;
    virtual int thermalSensor0(int gpu, int *celsius) = 0;
    virtual QString errorMessage(int status) = 0;
    // Releases the interface; harmless when it is not loaded.
    virtual void unload() = 0;
    // True once the backend knows the machine has no such GPU at all, so polling again would
    // only cost work (and wake-ups) for nothing.
    virtual bool absentForGood() const { return false; }
};
