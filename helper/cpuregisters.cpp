#include "cpuregisters.h"

#include <cmath>
#include <cstring>

namespace {

// The core and the cache share one voltage rail on these parts; offsetting one alone is ignored.
constexpr int kPlanes[] = {0, 2};

Outcome registerFailed(const QString &what, int error)
{
    return Outcome::refuse(helpererror::notSupported,
                           QStringLiteral("The processor refused access to the %1: %2.")
                               .arg(what, QString::fromLocal8Bit(std::strerror(error))));
}

} // namespace

quint64 CpuRegisters::offsetWriteCommand(int plane, int millivolts)
{
    // The offset is an 11-bit two's complement count of 1/1.024 mV in bits 21-31.
    const qint64 units = std::lround(millivolts * 1.024);
    return 0x8000001100000000ULL | (quint64(plane) << 40) | ((quint64(units) & 0x7FF) << 21);
}

quint64 CpuRegisters::offsetReadCommand(int plane)
{
    return 0x8000001000000000ULL | (quint64(plane) << 40);
}

int CpuRegisters::offsetFromReply(quint64 reply)
{
    qint64 units = qint64((reply >> 21) & 0x7FF);
    if (units & 0x400)
        units -= 0x800;
    return int(std::lround(double(units) / 1.024));
}

Outcome CpuRegisters::usable() const
{
    if (m_bus.cpus().isEmpty())
        return Outcome::refuse(helpererror::notSupported,
                               QStringLiteral("The processor's registers cannot be reached here "
                                              "(the msr module is not loaded)."));
    return Outcome::done();
}

Outcome CpuRegisters::readOffset(int *millivolts) const
{
    if (Outcome outcome = usable(); !outcome.ok())
        return outcome;
    const int cpu = m_bus.cpus().first();
    quint64 reply = 0;
    int error = m_bus.write(cpu, kVoltageMailbox, offsetReadCommand(0));
    if (!error)
        error = m_bus.read(cpu, kVoltageMailbox, &reply);
    if (error)
        return registerFailed(QStringLiteral("voltage offset"), error);
    // A mailbox that answers clears its busy bit; one that does not has no offset to give.
    if (reply & (1ULL << 63))
        return Outcome::refuse(helpererror::notSupported,
                               QStringLiteral("This processor does not report a voltage offset."));
    *millivolts = offsetFromReply(reply);
    return Outcome::done();
}

Outcome CpuRegisters::setOffset(int millivolts, int *readBack) const
{
    if (millivolts < kMinOffsetMv || millivolts > kMaxOffsetMv)
        return Outcome::refuse(helpererror::outOfRange,
                               QStringLiteral("%1 mV is not a voltage offset between %2 and %3 mV.")
                                   .arg(millivolts)
                                   .arg(kMinOffsetMv)
                                   .arg(kMaxOffsetMv));
    if (Outcome outcome = usable(); !outcome.ok())
        return outcome;
    const int cpu = m_bus.cpus().first();
    for (int plane : kPlanes) {
        if (const int error =
                m_bus.write(cpu, kVoltageMailbox, offsetWriteCommand(plane, millivolts)))
            return registerFailed(QStringLiteral("voltage offset"), error);
    }
    if (Outcome outcome = readOffset(readBack); !outcome.ok())
        return outcome;
    // Parts with undervolting locked by their firmware take the write and keep their offset.
    if (std::abs(*readBack - millivolts) > 1)
        return Outcome::refuse(helpererror::notAccepted,
                               QStringLiteral("The processor kept its voltage offset at %1 mV; "
                                              "undervolting is locked on this machine.")
                                   .arg(*readBack));
    return Outcome::done();
}

Outcome CpuRegisters::readRatios(QVector<int> *ratios) const
{
    if (Outcome outcome = usable(); !outcome.ok())
        return outcome;
    quint64 value = 0;
    if (const int error = m_bus.read(m_bus.cpus().first(), kTurboRatioLimit, &value))
        return registerFailed(QStringLiteral("turbo ratios"), error);
    ratios->clear();
    for (int i = 0; i < 8; ++i)
        ratios->append(int((value >> (8 * i)) & 0xFF));
    return Outcome::done();
}

Outcome CpuRegisters::setRatio(int activeCores, int ratio, int *readBack) const
{
    if (activeCores < 1 || activeCores > 8)
        return Outcome::refuse(
            helpererror::outOfRange,
            QStringLiteral("%1 is not a count of active cores between 1 and 8.").arg(activeCores));
    if (ratio < kMinRatio || ratio > kMaxRatio)
        return Outcome::refuse(helpererror::outOfRange,
                               QStringLiteral("%1 is not a turbo ratio between %2 and %3.")
                                   .arg(ratio)
                                   .arg(kMinRatio)
                                   .arg(kMaxRatio));
    QVector<int> ratios;
    if (Outcome outcome = readRatios(&ratios); !outcome.ok())
        return outcome;
    ratios[activeCores - 1] = ratio;
    quint64 value = 0;
    for (int i = 0; i < 8; ++i)
        value |= quint64(ratios.at(i)) << (8 * i);
    // The register is per package; writing it on every CPU covers machines with several.
    for (int cpu : m_bus.cpus()) {
        if (const int error = m_bus.write(cpu, kTurboRatioLimit, value))
            return registerFailed(QStringLiteral("turbo ratios"), error);
    }
    if (Outcome outcome = readRatios(&ratios); !outcome.ok())
        return outcome;
    *readBack = ratios.at(activeCores - 1);
    if (*readBack != ratio)
        return Outcome::refuse(helpererror::notAccepted,
                               QStringLiteral("The processor kept its turbo ratio at %1; its "
                                              "ratios are locked.")
                                   .arg(*readBack));
    return Outcome::done();
}
