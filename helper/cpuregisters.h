#pragma once

#include "msrbus.h"
#include "outcome.h"

#include <QVector>

// Undervolt through the voltage-offset mailbox (MSR 0x150) and the turbo ratio for 1 ... 8
// active cores (MSR 0x1AD). Every write is read back.
class CpuRegisters {
public:
    static constexpr quint32 kVoltageMailbox = 0x150;
    static constexpr quint32 kTurboRatioLimit = 0x1AD;
    static constexpr int kMinOffsetMv = -250; // no overvolting, and no deeper than any part takes
    static constexpr int kMaxOffsetMv = 0;
    static constexpr int kMinRatio = 8;
    static constexpr int kMaxRatio = 80;

    explicit CpuRegisters(const MsrBus &bus) : m_bus(bus) {}

    Outcome readOffset(int *millivolts) const;
    Outcome setOffset(int millivolts, int *readBack) const;
    Outcome readRatios(QVector<int> *ratios) const;
    Outcome setRatio(int activeCores, int ratio, int *readBack) const;

    // The mailbox's command words, kept apart for their own tests.
    static quint64 offsetWriteCommand(int plane, int millivolts);
    static quint64 offsetReadCommand(int plane);
    static int offsetFromReply(quint64 reply);

private:
    Outcome usable() const;

    const MsrBus &m_bus;
};
