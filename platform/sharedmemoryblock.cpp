#include "sharedmemoryblock.h"

SharedMemoryInstanceBlock::SharedMemoryInstanceBlock(const QString &key) : m_key(key), m_memory(key)
{
}

bool SharedMemoryInstanceBlock::claimPrimary(qint64 pid)
{
    const bool created =
        !m_memory.isAttached() && m_memory.create(sizeof(InstanceBlock), QSharedMemory::ReadWrite);
    if (!created && !m_memory.isAttached() && !m_memory.attach(QSharedMemory::ReadWrite))
        return false;
    if (!m_memory.lock())
        return false;
    // Another start may have attached and claimed between create() and lock(): the flag is
    // read and written in one locked step, or two starts could both see it clear.
    InstanceBlock *b = block();
    const bool free = !b->primary;
    if (free) {
        if (created)
            b->secondary = 0;
        b->primary = true;
        b->primaryPid = pid;
    }
    m_memory.unlock();
    return free;
}

quint32 SharedMemoryInstanceBlock::addSecondary()
{
    if (!m_memory.isAttached() && !m_memory.attach(QSharedMemory::ReadWrite))
        return 0;
    if (!m_memory.lock())
        return 0;
    const quint32 count = ++block()->secondary;
    m_memory.unlock();
    return count;
}

void SharedMemoryInstanceBlock::release()
{
    if (!m_memory.isAttached() || !m_memory.lock())
        return;
    block()->primary = false;
    block()->primaryPid = -1;
    m_memory.unlock();
}
