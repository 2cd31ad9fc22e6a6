#pragma once

#include "sampler.h"

#include <QString>
#include <QVector>
#include <QtGlobal>

// The resources widget's arithmetic, free of widgets and platform calls.

// Memory in use, in percent of the physical total (both taken in whole MiB first).
// -1 when the total is below one MiB.
int memoryUsePercent(quint64 totalBytes, quint64 availableBytes);

// Difference of two cumulative processor times as the widget takes it: a counter that went
// backwards yields old - new - 1, one that stood still 0, and only the low 32 bits count.
quint32 timeDelta(quint64 now, quint64 before);

// Processor times as the platform reports them: idle, kernel (idle included) and user.
struct ProcessorTimes {
    quint64 idle = 0;
    quint64 kernel = 0;
    quint64 user = 0;
};

// A previous idle time with a zero 32-bit half counts as no sample yet.
bool isUsableSample(const ProcessorTimes &previous);

// Busy share of the interval in whole percent, 0 to 100, or -1 when the interval holds no time.
int processorLoad(const ProcessorTimes &now, const ProcessorTimes &before);

// Received and sent octets of the first busy interface of each type, in table order: the same
// adapter appears once per filter layer, and only its first appearance counts.
struct OctetSums {
    quint32 received = 0;
    quint32 sent = 0;
};
OctetSums firstBusyPerType(const QVector<InterfaceCounters> &table);

// Bytes per second between two samples taken elapsedSeconds apart (the counters are 32-bit).
qint64 octetRate(quint32 now, quint32 before, double elapsedSeconds);

// "<upload><unit>|<download><unit>", both values scaled to the same unit (B/s up to GB/s).
QString formatRates(qint64 download, qint64 upload);
