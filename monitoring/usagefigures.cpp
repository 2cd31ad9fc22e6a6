#include "usagefigures.h"

#include <QSet>
#include <QStringList>

#include <cmath>

int memoryUsePercent(quint64 totalBytes, quint64 availableBytes)
{
    const quint64 total = totalBytes >> 20;
    const quint64 available = availableBytes >> 20;
    if (total == 0)
        return -1;
    return static_cast<int>((total - available) * 100 / total);
}

quint32 timeDelta(quint64 now, quint64 before)
{
    // A counter that stood still moved by nothing; the old - new - 1 rule made that 2^32 - 1
    // and the load thousands of percent below zero.
    if (now == before)
        return 0;
    return static_cast<quint32>(now > before ? now - before : before - now - 1);
}

bool isUsableSample(const ProcessorTimes &previous)
{
    return quint32(previous.idle) != 0 && quint32(previous.idle >> 32) != 0;
}

int processorLoad(const ProcessorTimes &now, const ProcessorTimes &before)
{
    const quint64 idle = timeDelta(now.idle, before.idle);
    const quint64 busyAndIdle =
        quint64(timeDelta(now.kernel, before.kernel)) + timeDelta(now.user, before.user);
    if (busyAndIdle == 0)
        return -1;
    const double share =
        (static_cast<double>(busyAndIdle) - static_cast<double>(idle)) / busyAndIdle * 100;
    // Counters sampled a moment apart can disagree by a little; a share is never outside 0-100.
    return static_cast<int>(qBound(0.0, share, 100.0));
}

OctetSums firstBusyPerType(const QVector<InterfaceCounters> &table)
{
    OctetSums sums;
    QSet<quint32> seenTypes;
    for (const InterfaceCounters &row : table) {
        if (seenTypes.contains(row.type))
            continue;
        if (row.inOctets == 0 && row.outOctets == 0)
            continue;
        seenTypes.insert(row.type);
        sums.received += row.inOctets;
        sums.sent += row.outOctets;
    }
    return sums;
}

qint64 octetRate(quint32 now, quint32 before, double elapsedSeconds)
{
    return static_cast<qint64>(static_cast<quint32>(now - before) / elapsedSeconds);
}

namespace {

// One step up the unit ladder: value / 1024, cut (not rounded) to two decimals.
double scaleDown(double value)
{
    return std::trunc(value * (1.0 / 1024) * 100) / 100;
}

} // namespace

QString formatRates(qint64 download, qint64 upload)
{
    static const QStringList larger = {QStringLiteral("KB/s"), QStringLiteral("MB/s"),
                                       QStringLiteral("GB/s")};
    QString unit = QStringLiteral("B/s");
    double down = static_cast<double>(download);
    double up = static_cast<double>(upload);
    for (const QString &next : larger) {
        if (down < 1024 && up < 1024)
            break;
        unit = next;
        down = scaleDown(down);
        up = scaleDown(up);
    }
    return QStringLiteral("%1%2|%3%2").arg(QString::number(up), unit, QString::number(down));
}
