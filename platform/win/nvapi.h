#pragma once

#include <string>

namespace varnel::win {

// NVIDIA's driver interface, reached through the one export of nvapi64.dll
// (nvapi_QueryInterface) with the published entry-point ids. Every call returns NVAPI's status,
// 0 on success; a failing query leaves its outputs as they were. GPUs are addressed by their
// index in the last enumeration.
class NvApi {
public:
    using QueryInterface = void *(*)(unsigned int id);

    // queryInterface: for tests, an entry-point source that stands in for the driver's library.
    explicit NvApi(QueryInterface queryInterface = nullptr);
    ~NvApi();
    NvApi(const NvApi &) = delete;
    NvApi &operator=(const NvApi &) = delete;

    int initialize();
    int enumeratePhysicalGpus(int *count);
    int allClockFrequencies(int gpu, unsigned *graphicsKHz, unsigned *memoryKHz);
    int dynamicPstatesInfo(int gpu, bool *graphicsPresent, unsigned *graphicsPercent);
    int pstates20(int gpu);
    int currentPstate(int gpu, int *pstate);
    int thermalSensor0(int gpu, int *celsius);
    std::string errorMessage(int status);
    void unload();

    // Statuses of NVAPI's own numbering for failures found before the driver is asked.
    static constexpr int kError = -1;
    static constexpr int kLibraryNotFound = -2;
    static constexpr int kNoImplementation = -3;
    static constexpr int kNotInitialised = -4;
    static constexpr int kInvalidArgument = -5;

    // Entry-point ids and structure version words.
    static constexpr unsigned kInitializeId = 0x0150E828;
    static constexpr unsigned kUnloadId = 0xD22BDD7E;
    static constexpr unsigned kErrorMessageId = 0x6C2D048C;
    static constexpr unsigned kEnumPhysicalGpusId = 0xE5AC921F;
    static constexpr unsigned kAllClockFrequenciesId = 0xDCB616C3;
    static constexpr unsigned kDynamicPstatesInfoExId = 0x60DED2ED;
    static constexpr unsigned kPstates20Id = 0x6FF81213;
    static constexpr unsigned kCurrentPstateId = 0x927DA4F6;
    static constexpr unsigned kThermalSettingsId = 0xE3640A56;
    static constexpr unsigned kClockFrequenciesVersion = 0x10108;
    static constexpr unsigned kDynamicPstatesVersion = 0x10048;
    static constexpr unsigned kPstates20Version = 0x31CF8;
    static constexpr unsigned kThermalSettingsVersion = 0x20044;
    static constexpr int kMaxPhysicalGpus = 64;

private:
    void *entry(unsigned id);
    void *gpuHandle(int gpu) const;

    void *m_library = nullptr;
    QueryInterface m_query = nullptr;
    bool m_injected = false;
    void *m_handles[kMaxPhysicalGpus] = {};
    int m_count = 0;
};

} // namespace varnel::win
