#pragma once

#include "systree.h"

#include <QList>

// Model-specific registers of each CPU. Return values are errno, 0 on success.
class MsrBus {
public:
    virtual ~MsrBus() = default;
    virtual QList<int> cpus() const = 0;
    virtual int read(int cpu, quint32 reg, quint64 *value) const = 0;
    virtual int write(int cpu, quint32 reg, quint64 value) const = 0;
};

// /dev/cpu/N/msr: the register number is the file offset.
class DevMsrBus : public MsrBus {
public:
    explicit DevMsrBus(SysTree tree) : m_tree(std::move(tree)) {}

    QList<int> cpus() const override;
    int read(int cpu, quint32 reg, quint64 *value) const override;
    int write(int cpu, quint32 reg, quint64 value) const override;

private:
    SysTree m_tree;
};
