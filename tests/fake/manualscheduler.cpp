#include "manualscheduler.h"

#include <QMetaObject>

void ManualScheduler::singleShot(int ms, QObject *receiver, const char *slot)
{
    history << QStringLiteral("%1 %2").arg(ms).arg(QString::fromLatin1(slot));
    pending.append({m_now + ms, ms, QString::fromLatin1(slot), receiver});
}

void ManualScheduler::advance(qint64 ms)
{
    const qint64 end = m_now + ms;
    for (;;) {
        int next = -1;
        for (int i = 0; i < pending.size(); ++i) {
            if (pending[i].due <= end && (next < 0 || pending[i].due < pending[next].due))
                next = i;
        }
        if (next < 0)
            break;
        const Pending call = pending.takeAt(next);
        m_now = qMax(m_now, call.due);
        if (call.receiver)
            QMetaObject::invokeMethod(call.receiver, call.slot.toLatin1().constData(),
                                      Qt::DirectConnection);
    }
    m_now = end;
}

int ManualScheduler::runAll(int limit)
{
    int fired = 0;
    while (!pending.isEmpty() && fired < limit) {
        int next = 0;
        for (int i = 1; i < pending.size(); ++i) {
            if (pending[i].due < pending[next].due)
                next = i;
        }
        const Pending call = pending.takeAt(next);
        m_now = qMax(m_now, call.due);
        if (call.receiver)
            QMetaObject::invokeMethod(call.receiver, call.slot.toLatin1().constData(),
                                      Qt::DirectConnection);
        ++fired;
    }
    return fired;
}
