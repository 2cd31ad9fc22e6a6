#pragma once

#include <QMutex>
#include <QThread>
#include <QWaitCondition>

#include <atomic>
#include <chrono>
#include <memory>

class GpuSensors;

// Polls up to two NVIDIA GPUs once a second on its own thread. Results leave the thread only as
// signals, which reach the window as queued calls.
class nvidia_api : public QThread {
    Q_OBJECT
public:
    explicit nvidia_api(std::shared_ptr<GpuSensors> sensors, QObject *parent = nullptr);
    // Qt aborts when a running thread object is destroyed, so the owner's end stops the loop.
    ~nvidia_api() override;

    // One pass of the loop body: initialise, visit every GPU, unload. No sleep.
    void pollOnce();
    // Ends the loop after the current pass, cutting its sleep short.
    void stop();
    // Time between passes; one second unless a test needs a sleep only stop() can end.
    void setPollInterval(std::chrono::milliseconds interval) { m_interval = interval; }

signals:
    void GPU1TEMP(int value);
    void GPU1LOAD(int value);
    void GPU1CORECLOCK(int value);
    void GPU1MEMCLOCK(int value);
    void GPU1PSTATE(int value);
    void GPU2TEMP(int value);
    void GPU2LOAD(int value);
    void GPU2CORECLOCK(int value);
    void GPU2MEMCLOCK(int value);
    void GPU2PSTATE(int value);

protected:
    void run() override;

private:
    void reportFailure(const QString &message, bool unload);
    void visitGpu(int index, bool *loadReport);
    void sleepUntilNextPass();

    std::shared_ptr<GpuSensors> m_sensors;
    std::atomic<bool> running{true};
    std::chrono::milliseconds m_interval{1000};

    // Query results persist between calls: a failed utilisation query leaves the previous
    // figures, which the load step then reports.
    bool m_loadPresent = false;
    unsigned m_loadPercent = 0;
    int m_pstate = 0;

    QMutex m_sleepLock;
    QWaitCondition m_wake;
};
