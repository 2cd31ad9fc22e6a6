#pragma once

// The script of the stand-in NVIDIA management library (fakenvml.cpp): the test opens the
// library, looks up the exported fakeNvml object and writes its answers there.
struct FakeNvmlScript {
    int initResult;
    unsigned count;
    unsigned graphicsMHz[2], memoryMHz[2];
    int utilizationResult;
    unsigned utilization[2];
    int pstate[2];
    unsigned temperature[2];
    int temperatureResult;
    // what happened
    int initCalls, shutdownCalls, queries;
    unsigned lastTemperatureVersion;
};
