#pragma once

#include "scheduler.h"

#include <QList>
#include <QPointer>
#include <QString>
#include <QStringList>

// Records one-shot delays instead of waiting; the test fires them by hand, in due order.
class ManualScheduler : public Scheduler {
public:
    void singleShot(int ms, QObject *receiver, const char *slot) override;

    struct Pending {
        qint64 due; // ms since the scheduler's clock start
        QString slot;
        QPointer<QObject> receiver;
    };

    // "delay slot" for everything scheduled so far, fired or not, in scheduling order.
    QStringList history;
    QList<Pending> pending;

    // Advances the clock by ms, firing everything due on the way, earliest first (ties in
    // scheduling order). Calls scheduled while firing are honoured if they fall in the window.
    void advance(qint64 ms);

private:
    bool fireNext(qint64 until); // the earliest call due by then, if any
    qint64 m_now = 0;
};
