#pragma once

#include "sampler.h"

#include <QString>

// The resources widget's figures from /proc, /sys and statvfs. The roots are parameters so that
// tests can point them at fixture trees.
class LinuxSampler : public SystemSampler {
public:
    explicit LinuxSampler(const QString &procRoot = QStringLiteral("/proc"),
                          const QString &sysRoot = QStringLiteral("/sys"),
                          const QString &volume = QStringLiteral("/"));

    bool memoryStatus(quint64 *totalPhysical, quint64 *availablePhysical) override;
    bool systemTimes(quint64 *idle, quint64 *kernel, quint64 *user) override;
    // Interfaces with a backing device, in interface-index order. Virtual ones (loopback,
    // bridges, tunnels) carry traffic that a device already counted, so they are left out.
    // Wireless ones report ARPHRD_IEEE80211 so that Wi-Fi and Ethernet count as two types.
    QVector<InterfaceCounters> interfaceTable() override;
    quint64 freeBytesForUser() override;

private:
    QString m_procRoot;
    QString m_sysRoot;
    QString m_volume;
};

// The first line of /proc/stat ("cpu  user nice system idle iowait irq softirq ...") as
// idle, kernel (idle included) and user times in 100 ns units, given the clock ticks per second.
bool parseProcStat(const QByteArray &text, long ticksPerSecond, quint64 *idle, quint64 *kernel,
                   quint64 *user);
