#include "nvapi.h"

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <vector>

namespace varnel::win {

namespace {

struct ClockDomain {
    uint32_t isPresent : 1;
    uint32_t reserved : 31;
    uint32_t frequencyKHz;
};
struct ClockFrequencies {
    uint32_t version;
    uint32_t clockType; // 0: current frequencies
    ClockDomain domain[32];
};
static_assert(sizeof(ClockFrequencies) == 264, "clock frequencies layout");

struct Utilization {
    uint32_t isPresent : 1;
    uint32_t reserved : 31;
    uint32_t percentage;
};
struct DynamicPstatesInfo {
    uint32_t version;
    uint32_t flags;
    Utilization utilization[8];
};
static_assert(sizeof(DynamicPstatesInfo) == 72, "dynamic P-states layout");

struct ThermalSensor {
    int32_t controller;
    int32_t defaultMinTemp;
    int32_t defaultMaxTemp;
    int32_t currentTemp;
    int32_t target;
};
struct ThermalSettings {
    uint32_t version;
    uint32_t count;
    ThermalSensor sensor[3];
};
static_assert(sizeof(ThermalSettings) == 68, "thermal settings layout");

constexpr int kGraphicsDomain = 0;
constexpr int kMemoryDomain = 4;
constexpr int32_t kControllerGpuInternal = 1;
constexpr int32_t kTargetGpu = 1;

using Initialize = int (*)();
using Unload = int (*)();
using ErrorMessage = int (*)(int, char *);
using EnumPhysicalGpus = int (*)(void **, uint32_t *);
using AllClockFrequencies = int (*)(void *, ClockFrequencies *);
using DynamicPstates = int (*)(void *, DynamicPstatesInfo *);
using Pstates20 = int (*)(void *, void *);
using CurrentPstate = int (*)(void *, int32_t *);
using ThermalSettingsCall = int (*)(void *, uint32_t, ThermalSettings *);

template <typename Function> Function as(void *address)
{
    return reinterpret_cast<Function>(address);
}

} // namespace

NvApi::NvApi(QueryInterface queryInterface)
    : m_query(queryInterface), m_injected(queryInterface != nullptr)
{
}

NvApi::~NvApi()
{
    if (m_library)
        FreeLibrary(static_cast<HMODULE>(m_library));
}

void *NvApi::entry(unsigned id)
{
    return m_query ? m_query(id) : nullptr;
}

int NvApi::initialize()
{
    if (!m_query && !m_injected) {
        if (!m_library)
            m_library = LoadLibraryW(L"nvapi64.dll");
        if (!m_library)
            return kLibraryNotFound;
        m_query = reinterpret_cast<QueryInterface>(reinterpret_cast<void *>(
            GetProcAddress(static_cast<HMODULE>(m_library), "nvapi_QueryInterface")));
        if (!m_query)
            return kLibraryNotFound;
    }
    auto call = as<Initialize>(entry(kInitializeId));
    return call ? call() : kNoImplementation;
}

int NvApi::enumeratePhysicalGpus(int *count)
{
    auto call = as<EnumPhysicalGpus>(entry(kEnumPhysicalGpusId));
    if (!call)
        return kNoImplementation;
    void *handles[kMaxPhysicalGpus] = {};
    uint32_t found = 0;
    const int status = call(handles, &found);
    if (status != 0)
        return status;
    m_count = found > kMaxPhysicalGpus ? kMaxPhysicalGpus : static_cast<int>(found);
    std::memcpy(m_handles, handles, sizeof(handles));
    *count = m_count;
    return 0;
}

void *NvApi::gpuHandle(int gpu) const
{
    return gpu >= 0 && gpu < m_count ? m_handles[gpu] : nullptr;
}

int NvApi::allClockFrequencies(int gpu, unsigned *graphicsKHz, unsigned *memoryKHz)
{
    auto call = as<AllClockFrequencies>(entry(kAllClockFrequenciesId));
    if (!call)
        return kNoImplementation;
    ClockFrequencies clocks{};
    clocks.version = kClockFrequenciesVersion;
    const int status = call(gpuHandle(gpu), &clocks);
    if (status == 0) {
        *graphicsKHz = clocks.domain[kGraphicsDomain].frequencyKHz;
        *memoryKHz = clocks.domain[kMemoryDomain].frequencyKHz;
    }
    return status;
}

int NvApi::dynamicPstatesInfo(int gpu, bool *graphicsPresent, unsigned *graphicsPercent)
{
    auto call = as<DynamicPstates>(entry(kDynamicPstatesInfoExId));
    if (!call)
        return kNoImplementation;
    DynamicPstatesInfo info{};
    info.version = kDynamicPstatesVersion;
    const int status = call(gpuHandle(gpu), &info);
    if (status == 0) {
        *graphicsPresent = info.utilization[0].isPresent != 0;
        *graphicsPercent = info.utilization[0].percentage;
    }
    return status;
}

int NvApi::pstates20(int gpu)
{
    auto call = as<Pstates20>(entry(kPstates20Id));
    if (!call)
        return kNoImplementation;
    std::vector<uint32_t> info((kPstates20Version & 0xFFFF) / sizeof(uint32_t), 0);
    info[0] = kPstates20Version;
    return call(gpuHandle(gpu), info.data());
}

int NvApi::currentPstate(int gpu, int *pstate)
{
    auto call = as<CurrentPstate>(entry(kCurrentPstateId));
    if (!call)
        return kNoImplementation;
    int32_t state = 0;
    const int status = call(gpuHandle(gpu), &state);
    if (status == 0)
        *pstate = state;
    return status;
}

int NvApi::thermalSensor0(int gpu, int *celsius)
{
    auto call = as<ThermalSettingsCall>(entry(kThermalSettingsId));
    if (!call)
        return kNoImplementation;
    ThermalSettings settings{};
    settings.version = kThermalSettingsVersion;
    settings.sensor[0].controller = kControllerGpuInternal;
    settings.sensor[0].target = kTargetGpu;
    const int status = call(gpuHandle(gpu), 0, &settings);
    if (status == 0)
        *celsius = settings.sensor[0].currentTemp;
    return status;
}

std::string NvApi::errorMessage(int status)
{
    auto call = as<ErrorMessage>(entry(kErrorMessageId));
    char text[64] = {};
    if (call && call(status, text) == 0)
        return std::string(text, strnlen(text, sizeof(text)));
    if (status == kLibraryNotFound)
        return "NVAPI library not found";
    return "NVAPI error " + std::to_string(status);
}

void NvApi::unload()
{
    if (auto call = as<Unload>(entry(kUnloadId)))
        call();
}

} // namespace varnel::win
