#include "nvmlgpu.h"

#include "sysfstext.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>

#include <dlfcn.h>

#include <type_traits>

Q_LOGGING_CATEGORY(lcNvml, "varnel.gpu.nvml", QtInfoMsg)

namespace {

// NVML's return codes that this backend gives itself.
constexpr int kUninitialised = 1;
constexpr int kNotSupported = 3;
constexpr int kNotFound = 6;
constexpr int kLibraryNotFound = 12;

constexpr unsigned kClockGraphics = 0;
constexpr unsigned kClockMemory = 2;
constexpr unsigned kTemperatureGpu = 0;

struct Utilization {
    unsigned gpu;
    unsigned memory;
};

struct TemperatureV1 {
    unsigned version;
    unsigned sensorType;
    int temperature;
};

} // namespace

struct NvmlGpuSensors::Api {
    using Device = void *;
    int (*init)() = nullptr;
    int (*shutdown)() = nullptr;
    int (*count)(unsigned *) = nullptr;
    int (*handleByIndex)(unsigned, Device *) = nullptr;
    int (*clockInfo)(Device, unsigned, unsigned *) = nullptr;
    int (*utilization)(Device, Utilization *) = nullptr;
    int (*performanceState)(Device, int *) = nullptr;
    int (*temperature)(Device, unsigned, unsigned *) = nullptr;
    int (*temperatureV)(Device, TemperatureV1 *) = nullptr;
    const char *(*errorString)(int) = nullptr;
};

NvmlGpuSensors::NvmlGpuSensors(const QString &library, const QString &sysRoot)
    : m_libraryName(library), m_sysRoot(sysRoot)
{
}

NvmlGpuSensors::~NvmlGpuSensors()
{
    unload();
    delete m_api;
    if (m_library)
        dlclose(m_library);
}

NvmlGpuSensors::PciScan NvmlGpuSensors::scanPci(const QString &sysRoot)
{
    PciScan scan;
    const QDir bus(sysRoot + QStringLiteral("/bus/pci/devices"));
    const QStringList addresses =
        bus.entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString &address : addresses) {
        const QString dir = bus.filePath(address) + QLatin1Char('/');
        // Vendor 0x10de; class 0x03xxxx is a display controller (VGA or 3D).
        if (readSysfsText(dir + QStringLiteral("vendor")) != QLatin1String("0x10de") ||
            !readSysfsText(dir + QStringLiteral("class")).startsWith(QLatin1String("0x03")))
            continue;
        scan.devices << address;
    }
    scan.anySleeping = anySleeping(sysRoot, scan.devices);
    return scan;
}

bool NvmlGpuSensors::anySleeping(const QString &sysRoot, const QStringList &devices)
{
    for (const QString &address : devices) {
        const QString state = readSysfsText(sysRoot + QStringLiteral("/bus/pci/devices/") +
                                            address + QStringLiteral("/power/runtime_status"));
        if (state == QLatin1String("suspended") || state == QLatin1String("suspending"))
            return true;
    }
    return false;
}

bool NvmlGpuSensors::loadLibrary()
{
    if (m_api)
        return true;
    if (!m_library)
        m_library = dlopen(QFile::encodeName(m_libraryName).constData(), RTLD_NOW);
    if (!m_library)
        return false;
    auto *api = new Api;
    auto resolve = [this](auto &slot, const char *name) {
        slot = reinterpret_cast<std::remove_reference_t<decltype(slot)>>(dlsym(m_library, name));
        return slot != nullptr;
    };
    bool complete = resolve(api->init, "nvmlInit_v2") && resolve(api->shutdown, "nvmlShutdown") &&
                    resolve(api->count, "nvmlDeviceGetCount_v2") &&
                    resolve(api->handleByIndex, "nvmlDeviceGetHandleByIndex_v2") &&
                    resolve(api->clockInfo, "nvmlDeviceGetClockInfo") &&
                    resolve(api->utilization, "nvmlDeviceGetUtilizationRates") &&
                    resolve(api->performanceState, "nvmlDeviceGetPerformanceState") &&
                    resolve(api->errorString, "nvmlErrorString");
    // Recent drivers deprecate the plain temperature query in favour of the versioned one.
    const bool legacy = resolve(api->temperature, "nvmlDeviceGetTemperature");
    const bool versioned = resolve(api->temperatureV, "nvmlDeviceGetTemperatureV");
    complete = complete && (legacy || versioned);
    if (!complete) {
        qCDebug(lcNvml) << "incomplete NVML library" << m_libraryName;
        delete api;
        return false;
    }
    m_api = api;
    return true;
}

int NvmlGpuSensors::initialize()
{
    if (!m_scanned) {
        m_nvidiaDevices = scanPci(m_sysRoot).devices;
        m_scanned = true;
    }
    if (m_nvidiaDevices.isEmpty())
        return kNotFound;
    if (anySleeping(m_sysRoot, m_nvidiaDevices)) {
        m_sleepingGpus = m_nvidiaDevices.size();
        return 0;
    }
    if (!loadLibrary())
        return kLibraryNotFound;
    const int status = m_api->init();
    m_initialised = status == 0;
    return status;
}

int NvmlGpuSensors::enumeratePhysicalGpus(int *count)
{
    if (m_sleepingGpus > 0) {
        *count = m_sleepingGpus;
        return 0;
    }
    if (!m_initialised)
        return kUninitialised;
    unsigned found = 0;
    int status = m_api->count(&found);
    if (status != 0)
        return status;
    m_devices.clear();
    for (unsigned i = 0; i < found; ++i) {
        void *handle = nullptr;
        status = m_api->handleByIndex(i, &handle);
        if (status != 0)
            return status;
        m_devices << handle;
    }
    *count = m_devices.size();
    return 0;
}

void *NvmlGpuSensors::device(int gpu) const
{
    if (!m_initialised || gpu < 0 || gpu >= m_devices.size())
        return nullptr;
    return m_devices.at(gpu);
}

int NvmlGpuSensors::allClockFrequencies(int gpu, unsigned *graphicsKHz, unsigned *memoryKHz)
{
    if (m_sleepingGpus > 0) {
        *graphicsKHz = 0;
        *memoryKHz = 0;
        return 0;
    }
    void *handle = device(gpu);
    if (!handle)
        return kUninitialised;
    unsigned graphics = 0;
    unsigned memory = 0;
    int status = m_api->clockInfo(handle, kClockGraphics, &graphics);
    if (status == 0)
        status = m_api->clockInfo(handle, kClockMemory, &memory);
    if (status != 0)
        return status;
    *graphicsKHz = graphics * 1000;
    *memoryKHz = memory * 1000;
    return 0;
}

int NvmlGpuSensors::dynamicPstatesInfo(int gpu, bool *graphicsPresent, unsigned *graphicsPercent)
{
    void *handle = device(gpu);
    if (!handle)
        return kUninitialised;
    Utilization rates{};
    const int status = m_api->utilization(handle, &rates);
    if (status == kNotSupported) {
        *graphicsPresent = false;
        return 0;
    }
    if (status != 0)
        return status;
    *graphicsPresent = true;
    *graphicsPercent = rates.gpu;
    return 0;
}

int NvmlGpuSensors::pstates20(int gpu)
{
    // NVML has no counterpart and the loop ignores the answer.
    return device(gpu) ? 0 : kUninitialised;
}

int NvmlGpuSensors::currentPstate(int gpu, int *pstate)
{
    void *handle = device(gpu);
    if (!handle)
        return kUninitialised;
    int state = 0;
    const int status = m_api->performanceState(handle, &state);
    if (status == 0)
        *pstate = state;
    return status;
}

int NvmlGpuSensors::thermalSensor0(int gpu, int *celsius)
{
    void *handle = device(gpu);
    if (!handle)
        return kUninitialised;
    if (m_api->temperature) {
        unsigned value = 0;
        const int status = m_api->temperature(handle, kTemperatureGpu, &value);
        if (status == 0)
            *celsius = static_cast<int>(value);
        return status;
    }
    TemperatureV1 reading{};
    reading.version = static_cast<unsigned>(sizeof(TemperatureV1)) | (1u << 24);
    reading.sensorType = kTemperatureGpu;
    const int status = m_api->temperatureV(handle, &reading);
    if (status == 0)
        *celsius = reading.temperature;
    return status;
}

QString NvmlGpuSensors::errorMessage(int status)
{
    if (m_api)
        return QString::fromUtf8(m_api->errorString(status));
    switch (status) {
    case kNotFound:
        return QStringLiteral("no NVIDIA GPU");
    case kLibraryNotFound:
        return QStringLiteral("NVML library not found");
    default:
        return QStringLiteral("NVML error %1").arg(status);
    }
}

bool NvmlGpuSensors::absentForGood() const
{
    return m_scanned && m_nvidiaDevices.isEmpty();
}

void NvmlGpuSensors::unload()
{
    if (m_initialised)
        m_api->shutdown();
    m_initialised = false;
    m_sleepingGpus = 0;
    m_devices.clear();
}
