#include "myeventfilter.h"

#include "scheduler.h"
#include "sleepnotifier.h"

#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcResume, "varnel.resume")

namespace {

bool isResumeCode(quintptr code)
{
    return code == powermsg::resumeSuspend || code == powermsg::resumeStandby ||
           code == powermsg::resumeAutomatic;
}

} // namespace

PowerMessageDecision decidePowerMessage(quint32 id, quintptr code, bool resumePending)
{
    PowerMessageDecision d;
    d.resumePending = resumePending;
    if (id == powermsg::deviceMessage)
        d.scheduleAwake2 = true;
    if (id == powermsg::powerBroadcast) {
        if (!isResumeCode(code)) {
            d.scheduleAwake = d.resumePending;
            d.resumePending = false;
            return d;
        }
        d.resumePending = true;
    }
    // A pending resume is consumed by the message that set it, or by the next one.
    if (d.resumePending) {
        d.scheduleAwake = true;
        d.resumePending = false;
    }
    return d;
}

MyEventFilter::MyEventFilter(std::shared_ptr<SleepNotifier> notifier,
                             std::shared_ptr<Scheduler> scheduler, QObject *parent)
    : QObject(parent), m_notifier(std::move(notifier)), m_scheduler(std::move(scheduler))
{
    // Backends without a native message loop deliver the same messages as a signal.
    if (m_notifier)
        connect(m_notifier.get(), &SleepNotifier::powerMessage, this,
                &MyEventFilter::handleMessage);
}

bool MyEventFilter::nativeEventFilter(const QByteArray &eventType, void *message, long *)
{
    quint32 id = 0;
    quintptr code = 0;
    if (m_notifier && m_notifier->decodeNativeMessage(eventType, message, &id, &code))
        handleMessage(id, code);
    return false;
}

void MyEventFilter::handleMessage(quint32 id, quintptr code)
{
    const PowerMessageDecision d = decidePowerMessage(id, code, m_resumePending);
    m_resumePending = d.resumePending;
    if (d.scheduleAwake2) {
        qCDebug(lcResume) << "device message: fixes again in 2 s";
        m_scheduler->singleShot(2000, this, "awake2");
    }
    if (d.scheduleAwake) {
        qCDebug(lcResume) << "resume: fixes and re-reads in 3 s";
        m_scheduler->singleShot(3000, this, "awake");
    }
}

void MyEventFilter::awake()
{
    emit emitawake();
}

void MyEventFilter::awake2()
{
    emit emitawake2();
}
