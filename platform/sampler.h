#pragma once

#include <QVector>
#include <QtGlobal>

struct InterfaceCounters {
    quint32 type = 0; // interface type (IANA ifType on Windows, ARPHRD on Linux)
    quint32 inOctets = 0;
    quint32 outOctets = 0;
};

// Figures for the resources widget.
class SystemSampler {
public:
    virtual ~SystemSampler() = default;
    virtual bool memoryStatus(quint64 *totalPhysical, quint64 *availablePhysical) = 0;
    // Cumulative idle, kernel (including idle) and user times of all processors, in 100 ns
    // units. The widget's arithmetic looks at 32-bit halves of these, so the unit matters.
    virtual bool systemTimes(quint64 *idle, quint64 *kernel, quint64 *user) = 0;
    // Rows in the platform's table order. Interfaces that only mirror another one's traffic
    // may be left out.
    virtual QVector<InterfaceCounters> interfaceTable() = 0;
    // Bytes available to the user on the system volume.
    virtual quint64 freeBytesForUser() = 0;
};
