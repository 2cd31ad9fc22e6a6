#include "wintest.h"

#include "nvapi.h"

#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

using namespace varnel::win;

namespace {

// A driver stand-in behind the query-interface entry: records the version words and fills the
// structures at the offsets the driver uses.
struct FakeDriver {
    std::vector<std::string> calls;
    std::vector<uint32_t> versions = std::vector<uint32_t>(4);
    std::vector<int32_t> thermalRequest; // sensor index, controller, target
    unsigned failing = 0;                // id whose call fails with -5
    bool loadPresent = true;
} driver;

void *const kGpu0 = reinterpret_cast<void *>(0x1000);

int status(unsigned id)
{
    return driver.failing == id ? -5 : 0;
}

template <typename Function> std::pair<unsigned, void *> entry(unsigned id, Function function)
{
    return {id, reinterpret_cast<void *>(+function)};
}

void *fakeQuery(unsigned id)
{
    const std::pair<unsigned, void *> entries[] = {
        entry(NvApi::kInitializeId,
              [] {
                  driver.calls.push_back("initialize");
                  return status(NvApi::kInitializeId);
              }),
        entry(NvApi::kUnloadId, [] { return driver.calls.push_back("unload"), 0; }),
        entry(NvApi::kEnumPhysicalGpusId,
              [](void **handles, uint32_t *count) {
                  handles[0] = kGpu0;
                  handles[1] = reinterpret_cast<void *>(0x2000);
                  *count = 2;
                  return status(NvApi::kEnumPhysicalGpusId);
              }),
        entry(NvApi::kAllClockFrequenciesId,
              [](void *gpu, uint32_t *clocks) {
                  driver.versions[0] = clocks[0];
                  // domain n sits at byte 8 + 8n: flags word, then the frequency in kHz
                  clocks[2] = clocks[2 + 2 * 4] = 1;
                  clocks[3] = gpu == kGpu0 ? 1530999 : 300000;
                  clocks[3 + 2 * 4] = gpu == kGpu0 ? 7001000 : 405000;
                  return status(NvApi::kAllClockFrequenciesId);
              }),
        entry(NvApi::kDynamicPstatesInfoExId,
              [](void *, uint32_t *info) {
                  driver.versions[1] = info[0];
                  info[2] = driver.loadPresent ? 1 : 0;
                  info[3] = 42;
                  return status(NvApi::kDynamicPstatesInfoExId);
              }),
        entry(NvApi::kPstates20Id,
              [](void *, uint32_t *info) {
                  driver.versions[2] = info[0];
                  // The buffer is as long as its version word says; the driver may write all of it.
                  std::memset(info + 1, 0xAB, 0x1CF8 - 4);
                  return 0;
              }),
        entry(NvApi::kCurrentPstateId,
              [](void *gpu, int32_t *state) { return *state = gpu == kGpu0 ? 0 : 8, 0; }),
        entry(NvApi::kThermalSettingsId,
              [](void *, uint32_t sensorIndex, int32_t *settings) {
                  driver.versions[3] = static_cast<uint32_t>(settings[0]);
                  driver.thermalRequest = {static_cast<int32_t>(sensorIndex), settings[2],
                                           settings[6]};
                  settings[2 + 3] = 64; // sensor 0's current temperature
                  return status(NvApi::kThermalSettingsId);
              }),
        entry(NvApi::kErrorMessageId, [](int code, char *text) {
            return std::snprintf(text, 64, "fake status %d", code), 0;
        })};
    for (const auto &[entryId, function] : entries) {
        if (entryId == id)
            return function;
    }
    return nullptr;
}

} // namespace

WINTEST_CASE(missingDriverLibraryFailsEveryStep)
{
    // Wine ships no nvapi64.dll: this is the machine without an NVIDIA driver.
    NvApi api;
    const int status = api.initialize();
    CHECK_EQ(status, NvApi::kLibraryNotFound);
    int count = -1, celsius = 5;
    unsigned graphics = 7, memory = 7;
    CHECK(api.enumeratePhysicalGpus(&count) != 0);
    CHECK(api.allClockFrequencies(0, &graphics, &memory) != 0);
    CHECK(api.thermalSensor0(0, &celsius) != 0);
    CHECK(count == -1 && memory == 7 && celsius == 5);
    CHECK_EQ(api.errorMessage(status), std::string("NVAPI library not found"));
    api.unload();
    CHECK_EQ(api.initialize(), NvApi::kLibraryNotFound); // and again on the next cycle
}

WINTEST_CASE(queriesUseTheIdsVersionWordsAndLayouts)
{
    NvApi api(fakeQuery);
    CHECK_EQ(api.initialize(), 0);
    int count = 0, pstate = -1, celsius = 0;
    CHECK_EQ(api.enumeratePhysicalGpus(&count), 0);
    CHECK_EQ(count, 2);

    unsigned graphics = 0, memory = 0, percent = 0;
    CHECK_EQ(api.allClockFrequencies(0, &graphics, &memory), 0);
    CHECK_EQ((std::vector<unsigned>{graphics, memory}), (std::vector<unsigned>{1530999, 7001000}));
    CHECK_EQ(api.allClockFrequencies(1, &graphics, &memory), 0);
    CHECK_EQ((std::vector<unsigned>{graphics, memory}), (std::vector<unsigned>{300000, 405000}));
    bool present = false;
    CHECK_EQ(api.dynamicPstatesInfo(0, &present, &percent), 0);
    CHECK(present && percent == 42);
    CHECK_EQ(api.pstates20(0), 0);
    CHECK_EQ(api.currentPstate(1, &pstate), 0);
    CHECK_EQ(pstate, 8);
    CHECK_EQ(api.thermalSensor0(0, &celsius), 0);
    CHECK_EQ(celsius, 64);
    api.unload();

    CHECK_EQ(driver.versions, (std::vector<uint32_t>{0x10108, 0x10048, 0x31CF8, 0x20044}));
    CHECK_EQ(driver.thermalRequest, (std::vector<int32_t>{0, 1, 1}));
    CHECK_EQ(driver.calls, (std::vector<std::string>{"initialize", "unload"}));

    // A failing query leaves its outputs as they were.
    CHECK_EQ(api.initialize(), 0);
    CHECK_EQ(api.enumeratePhysicalGpus(&count), 0);
    driver.failing = NvApi::kDynamicPstatesInfoExId;
    percent = 17;
    CHECK_EQ(api.dynamicPstatesInfo(0, &present, &percent), -5);
    CHECK(present && percent == 17);
    driver.failing = NvApi::kThermalSettingsId;
    celsius = 3;
    CHECK_EQ(api.thermalSensor0(0, &celsius), -5);
    CHECK_EQ(celsius, 3);
    CHECK_EQ(api.errorMessage(-5), std::string("fake status -5"));

    driver.failing = 0;
    driver.loadPresent = false;
    CHECK_EQ(api.dynamicPstatesInfo(0, &present, &percent), 0);
    CHECK(!present);
}
