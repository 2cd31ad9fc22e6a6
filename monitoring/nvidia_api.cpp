#include "nvidia_api.h"

#include "gpu.h"

#include <QDeadlineTimer>
#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcGpu, "varnel.gpu", QtInfoMsg)

namespace {

// Below this memory clock the GPU is powered down; further queries would wake it.
constexpr unsigned kSleepingMemoryMHz = 201;

} // namespace

nvidia_api::nvidia_api(std::shared_ptr<GpuSensors> sensors, QObject *parent)
    : QThread(parent), m_sensors(std::move(sensors))
{
}

nvidia_api::~nvidia_api()
{
    stop();
    wait();
}

void nvidia_api::stop()
{
    QMutexLocker lock(&m_sleepLock);
    running = false;
    m_wake.wakeAll();
}

void nvidia_api::run()
{
    if (!running)
        return;
    for (;;) {
        pollOnce();
        // The one failed pass has shown the zeros; without a GPU nothing would ever change them.
        if (m_sensors->absentForGood())
            return;
        sleepUntilNextPass();
        if (!running)
            return;
    }
}

void nvidia_api::sleepUntilNextPass()
{
    QMutexLocker lock(&m_sleepLock);
    if (running)
        m_wake.wait(&m_sleepLock, QDeadlineTimer(m_interval));
}

void nvidia_api::reportFailure(const QString &message, bool unload)
{
    emit GPU1TEMP(0);
    emit GPU1LOAD(0);
    if (unload)
        m_sensors->unload();
    qCDebug(lcGpu).noquote() << message;
}

void nvidia_api::pollOnce()
{
    GpuSensors &gpu = *m_sensors;
    int count = 0;
    if (gpu.initialize() != 0) {
        reportFailure(QStringLiteral("NVIDIA API Error 1"), false);
    } else if (gpu.enumeratePhysicalGpus(&count) != 0) {
        reportFailure(QStringLiteral("NVIDIA API Error 2"), true);
    } else if (count == 0) {
        reportFailure(QStringLiteral("NVIDIA API Error 3"), true);
    } else {
        bool loadReport = true;
        for (int index = 0; index < count; ++index)
            visitGpu(index, &loadReport);
    }
    gpu.unload();
}

void nvidia_api::visitGpu(int index, bool *loadReport)
{
    GpuSensors &gpu = *m_sensors;
    unsigned graphicsKHz = 0;
    unsigned memoryKHz = 0;
    if (gpu.allClockFrequencies(index, &graphicsKHz, &memoryKHz) != 0) {
        reportFailure(QStringLiteral("NVIDIA API Error 4"), true);
        return;
    }
    const unsigned core = graphicsKHz / 1000;
    const unsigned memory = memoryKHz / 1000;
    if (memory < kSleepingMemoryMHz) {
        emit GPU1TEMP(0);
        emit GPU1LOAD(0);
        return;
    }

    if (gpu.dynamicPstatesInfo(index, &m_loadPresent, &m_loadPercent) != 0) {
        reportFailure(QStringLiteral("NVIDIA API Error 5"), true);
    } else {
        gpu.pstates20(index);
        gpu.currentPstate(index, &m_pstate);
        if (index == 0)
            emit GPU1PSTATE(m_pstate);
        else if (index == 1)
            emit GPU2PSTATE(m_pstate);
    }

    int load = 0;
    if (m_loadPresent)
        load = static_cast<int>(m_loadPercent);
    else
        *loadReport = false;
    if (*loadReport) {
        if (index == 0) {
            emit GPU1LOAD(load);
            emit GPU1CORECLOCK(int(core));
            emit GPU1MEMCLOCK(int(memory));
            emit GPU1LOAD(load);
        } else if (index == 1) {
            emit GPU2LOAD(load);
            emit GPU2CORECLOCK(int(core));
            emit GPU2MEMCLOCK(int(memory));
            emit GPU2LOAD(load);
        }
    }

    int celsius = 0;
    const int thermal = gpu.thermalSensor0(index, &celsius);
    if (thermal != 0) {
        const QString description = gpu.errorMessage(thermal);
        reportFailure(description.isEmpty() ? QStringLiteral("Error 7")
                                            : QStringLiteral("Error 7 ") + description,
                      false);
    } else if (index == 0) {
        emit GPU1TEMP(celsius);
    } else if (index == 1) {
        emit GPU2TEMP(celsius);
    }
}
