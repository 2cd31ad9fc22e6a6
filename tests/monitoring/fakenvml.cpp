// A stand-in for libnvidia-ml with the entry points the GPU backend resolves. The test reaches
// the script through the exported fakeNvml object, after opening this library itself.

#include "fakenvml.h"

extern "C" {

__attribute__((visibility("default"))) FakeNvmlScript fakeNvml = {};

namespace {
void *handleOf(unsigned index)
{
    return reinterpret_cast<void *>(static_cast<unsigned long>(index) + 1);
}
unsigned indexOf(void *handle)
{
    return static_cast<unsigned>(reinterpret_cast<unsigned long>(handle) - 1);
}
// Counts the query; false for a handle the library never gave out.
bool query(void *handle)
{
    ++fakeNvml.queries;
    return handle && indexOf(handle) < fakeNvml.count && indexOf(handle) < 2;
}
} // namespace

#define EXPORT __attribute__((visibility("default")))

EXPORT int nvmlInit_v2()
{
    ++fakeNvml.initCalls;
    return fakeNvml.initResult;
}

EXPORT int nvmlShutdown()
{
    ++fakeNvml.shutdownCalls;
    return 0;
}

EXPORT int nvmlDeviceGetCount_v2(unsigned *count)
{
    ++fakeNvml.queries;
    *count = fakeNvml.count;
    return 0;
}

EXPORT int nvmlDeviceGetHandleByIndex_v2(unsigned index, void **device)
{
    ++fakeNvml.queries;
    if (index >= fakeNvml.count)
        return 2;
    *device = handleOf(index);
    return 0;
}

EXPORT int nvmlDeviceGetClockInfo(void *device, unsigned type, unsigned *mhz)
{
    if (!query(device))
        return 2;
    *mhz = type == 2 ? fakeNvml.memoryMHz[indexOf(device)] : fakeNvml.graphicsMHz[indexOf(device)];
    return 0;
}

struct Utilization {
    unsigned gpu;
    unsigned memory;
};

EXPORT int nvmlDeviceGetUtilizationRates(void *device, Utilization *rates)
{
    if (!query(device))
        return 2;
    if (fakeNvml.utilizationResult != 0)
        return fakeNvml.utilizationResult;
    rates->gpu = fakeNvml.utilization[indexOf(device)];
    rates->memory = 0;
    return 0;
}

EXPORT int nvmlDeviceGetPerformanceState(void *device, int *state)
{
    if (!query(device))
        return 2;
    *state = fakeNvml.pstate[indexOf(device)];
    return 0;
}

#ifndef FAKE_NVML_VERSIONED_TEMPERATURE_ONLY
EXPORT int nvmlDeviceGetTemperature(void *device, unsigned sensor, unsigned *celsius)
{
    if (!query(device) || sensor != 0)
        return 2;
    if (fakeNvml.temperatureResult != 0)
        return fakeNvml.temperatureResult;
    *celsius = fakeNvml.temperature[indexOf(device)];
    return 0;
}
#endif

struct TemperatureV1 {
    unsigned version;
    unsigned sensorType;
    int temperature;
};

EXPORT int nvmlDeviceGetTemperatureV(void *device, TemperatureV1 *reading)
{
    fakeNvml.lastTemperatureVersion = reading->version;
    if (!query(device) || reading->sensorType != 0)
        return 2;
    if (fakeNvml.temperatureResult != 0)
        return fakeNvml.temperatureResult;
    reading->temperature = static_cast<int>(fakeNvml.temperature[indexOf(device)]);
    return 0;
}

EXPORT const char *nvmlErrorString(int status)
{
    switch (status) {
    case 0:
        return "Success";
    case 2:
        return "Invalid Argument";
    case 3:
        return "Not Supported";
    case 9:
        return "Driver Not Loaded";
    default:
        return "Unknown Error";
    }
}

} // extern "C"
