#pragma once

#include "instanceblock.h"

#include <QSharedMemory>

// The block in named shared memory, which the system frees with its last user.
class SharedMemoryInstanceBlock : public InstanceBlockHost {
public:
    explicit SharedMemoryInstanceBlock(const QString &key);

    bool claimPrimary(qint64 pid) override;
    quint32 addSecondary() override;
    void release() override;
    QString serverName() const override { return m_key; }

private:
    InstanceBlock *block() { return static_cast<InstanceBlock *>(m_memory.data()); }

    QString m_key;
    QSharedMemory m_memory;
};
