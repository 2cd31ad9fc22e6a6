#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <memory>

class Scheduler;
class SleepNotifier;

// Window messages the filter reacts to, with the numbers Windows uses.
namespace powermsg {
inline constexpr quint32 deviceMessage = 49294;  // 0xC08E, a fixed registered-message number
inline constexpr quint32 powerBroadcast = 0x218; // WM_POWERBROADCAST
inline constexpr quintptr suspend = 4;           // PBT_APMSUSPEND
inline constexpr quintptr resumeSuspend = 7;     // PBT_APMRESUMESUSPEND
inline constexpr quintptr resumeStandby = 8;     // PBT_APMRESUMESTANDBY
inline constexpr quintptr resumeAutomatic = 18;  // PBT_APMRESUMEAUTOMATIC
} // namespace powermsg

// What one message asks for, given whether a resume was pending before it.
struct PowerMessageDecision {
    bool scheduleAwake = false;  // awake() in 3000 ms
    bool scheduleAwake2 = false; // awake2() in 2000 ms
    bool resumePending = false;  // the flag after the message
};

PowerMessageDecision decidePowerMessage(quint32 id, quintptr code, bool resumePending);

// Watches the platform's messages for a resume from sleep (and the device message) and, a few
// seconds later, tells the window to run its fixes again. It never swallows a message.
class MyEventFilter : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT
public:
    MyEventFilter(std::shared_ptr<SleepNotifier> notifier, std::shared_ptr<Scheduler> scheduler,
                  QObject *parent = nullptr);

    bool nativeEventFilter(const QByteArray &eventType, void *message, long *result) override;
    // One message, from the native loop or from a backend that produces its own.
    void handleMessage(quint32 id, quintptr code);

signals:
    void emitawake();
    void emitawake2();

public slots:
    void awake();
    void awake2();

private:
    std::shared_ptr<SleepNotifier> m_notifier;
    std::shared_ptr<Scheduler> m_scheduler;
    bool m_resumePending = false;
};
