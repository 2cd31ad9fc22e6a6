#pragma once

#include <QObject>

// One-shot delays that name a slot. Tests swap in a scheduler that records and fires by hand.
class Scheduler {
public:
    virtual ~Scheduler() = default;
    // Invokes slot (a method name such as "ApplyCpuMin") on receiver after ms milliseconds.
    // Nothing happens if the receiver is gone by then.
    virtual void singleShot(int ms, QObject *receiver, const char *slot) = 0;
};

class TimerScheduler : public Scheduler {
public:
    void singleShot(int ms, QObject *receiver, const char *slot) override;
};
