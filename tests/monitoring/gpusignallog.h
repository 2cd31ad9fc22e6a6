#pragma once

#include "nvidia_api.h"

#include <QMetaMethod>
#include <QStringList>

// Every signal of the GPU loop as "NAME value", in the order emitted.
struct GpuSignalLog {
    explicit GpuSignalLog(nvidia_api &loop) : loop(loop)
    {
        using N = nvidia_api;
        for (auto signal :
             {&N::GPU1TEMP, &N::GPU1LOAD, &N::GPU1CORECLOCK, &N::GPU1MEMCLOCK, &N::GPU1PSTATE,
              &N::GPU2TEMP, &N::GPU2LOAD, &N::GPU2CORECLOCK, &N::GPU2MEMCLOCK, &N::GPU2PSTATE}) {
            const QString name = QMetaMethod::fromSignal(signal).name();
            QObject::connect(&loop, signal, [this, name](int value) {
                entries << name + ' ' + QString::number(value);
            });
        }
    }
    QStringList poll()
    {
        entries.clear();
        loop.pollOnce();
        return entries;
    }
    // The signals one GPU's pass emits, in order.
    static QStringList pass(int gpu, int celsius, int load, int core, int memory, int pstate)
    {
        const QString g = QStringLiteral("GPU%1").arg(gpu);
        return {g + "PSTATE " + QString::number(pstate),  g + "LOAD " + QString::number(load),
                g + "CORECLOCK " + QString::number(core), g + "MEMCLOCK " + QString::number(memory),
                g + "LOAD " + QString::number(load),      g + "TEMP " + QString::number(celsius)};
    }

    nvidia_api &loop;
    QStringList entries;
};
