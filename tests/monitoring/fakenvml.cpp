#include "fakenvml.h"

#define EXPORT __attribute__((visibility("default")))

extern "C" {

EXPORT FakeNvmlScript fakeNvml = {};

namespace {
unsigned indexOf(void *handle)
{
    return unsigned(reinterpret_cast<unsigned long>(handle) - 1);
}
// Counts the query; false for a handle the library never gave out.
bool query(void *handle)
{
    ++fakeNvml.queries;
    return handle && indexOf(handle) < fakeNvml.count && indexOf(handle) < 2;
}
struct TemperatureV1 {
    unsigned version, sensorType;
    int temperature;
};
} // namespace

EXPORT int nvmlInit_v2()
{
    return ++fakeNvml.initCalls, fakeNvml.initResult;
}
EXPORT int nvmlShutdown()
{
    return ++fakeNvml.shutdownCalls, 0;
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
    *device = reinterpret_cast<void *>(index + 1ul); // never null
    return 0;
}
EXPORT int nvmlDeviceGetClockInfo(void *device, unsigned type, unsigned *mhz)
{
    if (!query(device))
        return 2;
    *mhz = (type == 2 ? fakeNvml.memoryMHz : fakeNvml.graphicsMHz)[indexOf(device)];
    return 0;
}
EXPORT int nvmlDeviceGetUtilizationRates(void *device, unsigned rates[2]) // GPU, memory
{
    if (!query(device))
        return 2;
    if (fakeNvml.utilizationResult == 0)
        rates[0] = fakeNvml.utilization[indexOf(device)], rates[1] = 0;
    return fakeNvml.utilizationResult;
}
EXPORT int nvmlDeviceGetPerformanceState(void *device, int *state)
{
    if (!query(device))
        return 2;
    *state = fakeNvml.pstate[indexOf(device)];
    return 0;
}
static int temperature(void *device, unsigned sensor, int *celsius)
{
    if (!query(device) || sensor != 0)
        return 2;
    if (fakeNvml.temperatureResult == 0)
        *celsius = int(fakeNvml.temperature[indexOf(device)]);
    return fakeNvml.temperatureResult;
}
#ifndef FAKE_NVML_VERSIONED_TEMPERATURE_ONLY
EXPORT int nvmlDeviceGetTemperature(void *device, unsigned sensor, unsigned *celsius)
{
    return temperature(device, sensor, reinterpret_cast<int *>(celsius));
}
#endif
EXPORT int nvmlDeviceGetTemperatureV(void *device, TemperatureV1 *reading)
{
    fakeNvml.lastTemperatureVersion = reading->version;
    return temperature(device, reading->sensorType, &reading->temperature);
}
EXPORT const char *nvmlErrorString(int status)
{
    return status == 9 ? "Driver Not Loaded" : "Unknown Error";
}

} // extern "C"
