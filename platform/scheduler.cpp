#include "scheduler.h"

#include <QByteArray>
#include <QMetaObject>
#include <QPointer>
#include <QTimer>

void TimerScheduler::singleShot(int ms, QObject *receiver, const char *slot)
{
    QPointer<QObject> target(receiver);
    const QByteArray name(slot);
    QTimer::singleShot(ms, receiver, [target, name] {
        if (target)
            QMetaObject::invokeMethod(target, name.constData(), Qt::DirectConnection);
    });
}
