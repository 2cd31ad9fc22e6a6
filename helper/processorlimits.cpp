#include "processorlimits.h"

#include <QRegularExpression>

#include <cstring>

namespace {

const QString pstateDir = QStringLiteral("sys/devices/system/cpu/intel_pstate/");
const QString cpuDir = QStringLiteral("sys/devices/system/cpu");

Outcome outOfRange(int percent)
{
    return Outcome::refuse(
        helpererror::outOfRange,
        QStringLiteral("%1% is not a processor limit between 0 and 100%.").arg(percent));
}

Outcome writeFailed(const QString &what, int error)
{
    return Outcome::refuse(helpererror::failed,
                           QStringLiteral("The kernel refused %1: %2.")
                               .arg(what, QString::fromLocal8Bit(std::strerror(error))));
}

} // namespace

bool ProcessorLimits::usesPstate() const
{
    // intel_pstate's percent limits govern its active and passive modes alike; switched off, it
    // refuses them and cpufreq's own limits apply.
    return m_tree.exists(pstateDir + QStringLiteral("max_perf_pct")) &&
           m_tree.read(pstateDir + QStringLiteral("status")).value_or(QString()) !=
               QLatin1String("off");
}

QStringList ProcessorLimits::cpufreqFolders() const
{
    static const QRegularExpression cpuName(QStringLiteral("^cpu[0-9]+$"));
    QStringList folders;
    for (const QString &name : m_tree.list(cpuDir, QStringLiteral("cpu*"))) {
        const QString folder = cpuDir + QLatin1Char('/') + name + QStringLiteral("/cpufreq/");
        if (cpuName.match(name).hasMatch() &&
            m_tree.exists(folder + QStringLiteral("cpuinfo_max_freq")))
            folders << folder;
    }
    return folders;
}

Outcome ProcessorLimits::read(int *minimum, int *maximum) const
{
    if (usesPstate()) {
        const auto low = m_tree.readNumber(pstateDir + QStringLiteral("min_perf_pct"));
        const auto high = m_tree.readNumber(pstateDir + QStringLiteral("max_perf_pct"));
        if (low && high) {
            *minimum = int(*low);
            *maximum = int(*high);
            return Outcome::done();
        }
    }
    const QStringList folders = cpufreqFolders();
    if (folders.isEmpty())
        return Outcome::refuse(helpererror::notSupported,
                               QStringLiteral("This machine has no processor frequency control."));
    // The first CPU speaks for all: every write sets them alike.
    const QString &folder = folders.first();
    const auto top = m_tree.readNumber(folder + QStringLiteral("cpuinfo_max_freq"));
    const auto low = m_tree.readNumber(folder + QStringLiteral("scaling_min_freq"));
    const auto high = m_tree.readNumber(folder + QStringLiteral("scaling_max_freq"));
    if (!top || *top <= 0 || !low || !high)
        return Outcome::refuse(helpererror::notSupported,
                               QStringLiteral("The processor's frequency limits cannot be read."));
    *minimum = int((*low * 100 + *top / 2) / *top);
    *maximum = int((*high * 100 + *top / 2) / *top);
    return Outcome::done();
}

Outcome ProcessorLimits::setMinimum(int percent, int *readBack) const
{
    if (percent < 0 || percent > 100)
        return outOfRange(percent);
    if (usesPstate()) {
        if (const int error =
                m_tree.write(pstateDir + QStringLiteral("min_perf_pct"), QString::number(percent)))
            return writeFailed(QStringLiteral("the processor minimum"), error);
    } else if (Outcome outcome = setFrequencyShare(true, percent); !outcome.ok()) {
        return outcome;
    }
    int maximum = 0;
    return read(readBack, &maximum);
}

Outcome ProcessorLimits::setMaximum(int percent, int *readBack) const
{
    if (percent < 0 || percent > 100)
        return outOfRange(percent);
    if (usesPstate()) {
        if (const int error =
                m_tree.write(pstateDir + QStringLiteral("max_perf_pct"), QString::number(percent)))
            return writeFailed(QStringLiteral("the processor maximum"), error);
    } else if (Outcome outcome = setFrequencyShare(false, percent); !outcome.ok()) {
        return outcome;
    }
    int minimum = 0;
    return read(&minimum, readBack);
}

Outcome ProcessorLimits::setFrequencyShare(bool minimum, int percent) const
{
    const QStringList folders = cpufreqFolders();
    if (folders.isEmpty())
        return Outcome::refuse(helpererror::notSupported,
                               QStringLiteral("This machine has no processor frequency control."));
    for (const QString &folder : folders) {
        const auto top = m_tree.readNumber(folder + QStringLiteral("cpuinfo_max_freq"));
        const qint64 bottom =
            m_tree.readNumber(folder + QStringLiteral("cpuinfo_min_freq")).value_or(0);
        if (!top || *top <= 0)
            return Outcome::refuse(helpererror::notSupported,
                                   QStringLiteral("The processor's top frequency is unknown."));
        const qint64 khz = qBound(bottom, *top * percent / 100, *top);
        // cpufreq refuses a minimum above the maximum; like a power scheme, the maximum wins.
        if (minimum) {
            const qint64 ceiling =
                m_tree.readNumber(folder + QStringLiteral("scaling_max_freq")).value_or(*top);
            if (const int error = m_tree.write(folder + QStringLiteral("scaling_min_freq"),
                                               QString::number(qMin(khz, ceiling))))
                return writeFailed(QStringLiteral("the processor minimum"), error);
        } else {
            const qint64 floor =
                m_tree.readNumber(folder + QStringLiteral("scaling_min_freq")).value_or(bottom);
            if (khz < floor) {
                if (const int error = m_tree.write(folder + QStringLiteral("scaling_min_freq"),
                                                   QString::number(khz)))
                    return writeFailed(QStringLiteral("the processor minimum"), error);
            }
            if (const int error =
                    m_tree.write(folder + QStringLiteral("scaling_max_freq"), QString::number(khz)))
                return writeFailed(QStringLiteral("the processor maximum"), error);
        }
    }
    return Outcome::done();
}
