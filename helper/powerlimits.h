#pragma once

#include "msrbus.h"
#include "outcome.h"
#include "systree.h"

// The processor package's power limits through powercap's intel-rapl package domain: the
// long-term limit (the turbo power) and its time window (the turbo time).
class PowerLimits {
public:
    static constexpr quint32 kMinMilliwatts = 1000;    // 1 W, the slider's lowest step
    static constexpr quint32 kMaxMilliwatts = 4096000; // above the "unlimited" figure
    static constexpr quint32 kMinWindowMs = 1;
    static constexpr quint32 kMaxWindowMs = 128000;

    static constexpr quint32 kPackagePowerLimit = 0x610;

    // The registers, where readable, tell a firmware lock before a write is tried.
    PowerLimits(SysTree tree, const MsrBus *registers)
        : m_tree(std::move(tree)), m_registers(registers)
    {
    }

    Outcome read(quint32 *longTermMilliwatts, quint32 *windowMs) const;
    Outcome setLongTerm(quint32 milliwatts, quint32 *readBack) const;
    Outcome setWindow(quint32 windowMs, quint32 *readBack) const;
    Outcome setShortTerm(quint32 milliwatts, quint32 *readBack) const;

private:
    QString packageDomain() const;
    QString constraint(const QString &domain, const QString &name) const;
    Outcome writeAttribute(const QString &constraintName, const QString &attribute, qint64 value,
                           const QString &what) const;
    Outcome readAttribute(const QString &constraintName, const QString &attribute,
                          qint64 *value) const;

    bool lockedByFirmware() const;

    SysTree m_tree;
    const MsrBus *m_registers;
};
