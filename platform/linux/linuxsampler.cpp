#include "linuxsampler.h"

#include "sysfstext.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>

#include <sys/statvfs.h>
#include <unistd.h>

namespace {

// ARPHRD_IEEE80211 from <linux/if_arp.h>.
constexpr quint32 kWirelessType = 801;

QByteArray readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

quint64 readNumber(const QString &path, bool *ok = nullptr)
{
    return readSysfsText(path).toULongLong(ok);
}

} // namespace

LinuxSampler::LinuxSampler(const QString &procRoot, const QString &sysRoot, const QString &volume)
    : m_procRoot(procRoot), m_sysRoot(sysRoot), m_volume(volume)
{
}

bool LinuxSampler::memoryStatus(quint64 *totalPhysical, quint64 *availablePhysical)
{
    bool haveTotal = false;
    bool haveAvailable = false;
    QFile meminfo(m_procRoot + QStringLiteral("/meminfo"));
    if (!meminfo.open(QIODevice::ReadOnly))
        return false;
    // Both figures come first; the fifty-odd lines after them are never needed.
    // atEnd() cannot be asked: procfs files report a size of 0.
    while (!(haveTotal && haveAvailable)) {
        const QByteArray line = meminfo.readLine();
        if (line.isEmpty())
            break;
        const QList<QByteArray> fields = line.simplified().split(' ');
        if (fields.size() < 2)
            continue;
        bool ok = false;
        const quint64 bytes = fields.at(1).toULongLong(&ok) * 1024;
        if (!ok)
            continue;
        if (fields.at(0) == "MemTotal:") {
            *totalPhysical = bytes;
            haveTotal = true;
        } else if (fields.at(0) == "MemAvailable:") {
            *availablePhysical = bytes;
            haveAvailable = true;
        }
    }
    return haveTotal && haveAvailable;
}

bool parseProcStat(const QByteArray &text, long ticksPerSecond, quint64 *idle, quint64 *kernel,
                   quint64 *user)
{
    const QList<QByteArray> fields = text.left(text.indexOf('\n')).simplified().split(' ');
    if (fields.size() < 8 || fields.at(0) != "cpu" || ticksPerSecond <= 0)
        return false;
    quint64 value[7];
    for (int i = 0; i < 7; ++i) {
        bool ok = false;
        value[i] = fields.at(i + 1).toULongLong(&ok);
        if (!ok)
            return false;
    }
    enum { User, Nice, System, Idle, IoWait, Irq, SoftIrq };
    const quint64 unit = 10000000 / static_cast<quint64>(ticksPerSecond);
    const quint64 idleTicks = value[Idle] + value[IoWait];
    *idle = idleTicks * unit;
    *kernel = (value[System] + value[Irq] + value[SoftIrq] + idleTicks) * unit;
    *user = (value[User] + value[Nice]) * unit;
    return true;
}

bool LinuxSampler::systemTimes(quint64 *idle, quint64 *kernel, quint64 *user)
{
    return parseProcStat(readFile(m_procRoot + QStringLiteral("/stat")), sysconf(_SC_CLK_TCK), idle,
                         kernel, user);
}

QVector<InterfaceCounters> LinuxSampler::interfaceTable()
{
    const QString netRoot = m_sysRoot + QStringLiteral("/class/net/");
    QMap<quint64, InterfaceCounters> byIndex;
    const QStringList names = QDir(netRoot).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &name : names) {
        const QString dir = netRoot + name;
        if (!QFileInfo::exists(dir + QStringLiteral("/device")))
            continue;
        bool indexOk = false;
        const quint64 index = readNumber(dir + QStringLiteral("/ifindex"), &indexOk);
        if (!indexOk)
            continue;
        InterfaceCounters row;
        const bool wireless = QFileInfo::exists(dir + QStringLiteral("/wireless")) ||
                              QFileInfo::exists(dir + QStringLiteral("/phy80211"));
        row.type = wireless ? kWirelessType
                            : static_cast<quint32>(readNumber(dir + QStringLiteral("/type")));
        // The table holds 32-bit counters, as the widget's arithmetic expects.
        row.inOctets =
            static_cast<quint32>(readNumber(dir + QStringLiteral("/statistics/rx_bytes")));
        row.outOctets =
            static_cast<quint32>(readNumber(dir + QStringLiteral("/statistics/tx_bytes")));
        byIndex.insert(index, row);
    }
    return byIndex.values().toVector();
}

quint64 LinuxSampler::freeBytesForUser()
{
    struct statvfs info {};
    if (statvfs(QFile::encodeName(m_volume).constData(), &info) != 0)
        return 0;
    return static_cast<quint64>(info.f_bavail) * info.f_frsize;
}
