#pragma once

#include "textfile.h"

#include <QTemporaryDir>

// A laptop's /sys and /dev as files under a temporary root, for the system helper's verbs.
class FakeSysTree {
public:
    QString root() const { return m_dir.path(); }

    void put(const QString &relative, const QByteArray &content) const
    {
        writeFile(m_dir.filePath(relative), content);
    }
    QByteArray get(const QString &relative) const
    {
        return readFile(m_dir.filePath(relative)).trimmed();
    }

    // A register of /dev/cpu/N/msr: the register number is the offset.
    void putMsr(int cpu, quint32 reg, quint64 value) const
    {
        const QString path = m_dir.filePath(QStringLiteral("dev/cpu/%1/msr").arg(cpu));
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        file.open(QIODevice::ReadWrite);
        file.seek(reg);
        file.write(reinterpret_cast<const char *>(&value), sizeof value);
    }
    quint64 msr(int cpu, quint32 reg) const
    {
        QFile file(m_dir.filePath(QStringLiteral("dev/cpu/%1/msr").arg(cpu)));
        quint64 value = 0;
        if (file.open(QIODevice::ReadOnly) && file.seek(reg))
            file.read(reinterpret_cast<char *>(&value), sizeof value);
        return value;
    }

    // Four CPUs under intel_pstate at 10 ... 100%, or under cpufreq alone at 0.8 ... 3.2 GHz.
    void putPstate() const
    {
        put(QStringLiteral("sys/devices/system/cpu/intel_pstate/status"), "active\n");
        put(QStringLiteral("sys/devices/system/cpu/intel_pstate/min_perf_pct"), "10\n");
        put(QStringLiteral("sys/devices/system/cpu/intel_pstate/max_perf_pct"), "100\n");
    }
    void putCpufreq(int cpus = 2) const
    {
        for (int cpu = 0; cpu < cpus; ++cpu) {
            const QString dir = QStringLiteral("sys/devices/system/cpu/cpu%1/cpufreq/").arg(cpu);
            put(dir + QStringLiteral("cpuinfo_max_freq"), "3200000\n");
            put(dir + QStringLiteral("cpuinfo_min_freq"), "800000\n");
            put(dir + QStringLiteral("scaling_max_freq"), "3200000\n");
            put(dir + QStringLiteral("scaling_min_freq"), "800000\n");
        }
    }
    // The package domain with a 45 W long-term limit over 28 s and a 90 W short-term one.
    void putRapl() const
    {
        const QString dir = QStringLiteral("sys/class/powercap/intel-rapl:0/");
        put(dir + QStringLiteral("name"), "package-0\n");
        put(dir + QStringLiteral("constraint_0_name"), "long_term\n");
        put(dir + QStringLiteral("constraint_0_power_limit_uw"), "45000000\n");
        put(dir + QStringLiteral("constraint_0_time_window_us"), "27983872\n");
        put(dir + QStringLiteral("constraint_1_name"), "short_term\n");
        put(dir + QStringLiteral("constraint_1_power_limit_uw"), "90000000\n");
        put(QStringLiteral("sys/class/powercap/intel-rapl:0:0/name"), "core\n");
    }
    // A USB device; a camera has a video-class (0x0e) interface among its descriptors.
    void putUsbDevice(const QString &name, bool camera, bool authorized = true) const
    {
        QByteArray descriptors = QByteArray::fromHex("12010002000000405e04f70700010102030109020000"
                                                     "020100a032");
        descriptors += QByteArray::fromHex(camera ? "09040000010e010000" : "090400000103010100");
        const QString dir = QStringLiteral("sys/bus/usb/devices/") + name + QLatin1Char('/');
        put(dir + QStringLiteral("descriptors"), descriptors);
        put(dir + QStringLiteral("authorized"), authorized ? "1\n" : "0\n");
    }

private:
    QTemporaryDir m_dir;
};
