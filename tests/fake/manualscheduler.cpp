#include "manualscheduler.h"

#include <QMetaObject>

void ManualScheduler::singleShot(int ms, QObject *receiver, const char *slot)
{
    history << QStringLiteral("%1 %2").arg(ms).arg(QString::fromLatin1(slot));
    pending.append({m_now + ms, QString::fromLatin1(slot), receiver});
}

bool ManualScheduler::fireNext(qint64 until)
{
    int next = -1;
    for (int i = 0; i < pending.size(); ++i) {
        if (pending[i].due <= until && (next < 0 || pending[i].due < pending[next].due))
            next = i;
    }
    if (next < 0)
        return false;
    const Pending call = pending.takeAt(next);
    m_now = qMax(m_now, call.due);
    if (call.receiver)
        QMetaObject::invokeMethod(call.receiver, call.slot.toLatin1().constData(),
                                  Qt::DirectConnection);
    return true;
}

void ManualScheduler::advance(qint64 ms)
{
    const qint64 end = m_now + ms;
    while (fireNext(end)) {
    }
    m_now = end;
}
