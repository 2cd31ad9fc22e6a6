#pragma once

#include <QString>
#include <QtGlobal>

#include <memory>

// The instance block shared between starts; its layout is fixed.
struct InstanceBlock {
    bool primary;
    quint32 secondary;
    qint64 primaryPid;
};
static_assert(sizeof(InstanceBlock) == 16, "the instance block is 16 bytes");

// Where the instance block lives, and the lock that settles which start is the first one.
class InstanceBlockHost {
public:
    virtual ~InstanceBlockHost() = default;
    // True for exactly one of any number of starts made at once: the one that finds no live
    // first instance. Its flag and process id are in the block before another start can look.
    virtual bool claimPrimary(qint64 pid) = 0;
    // Counts one more admitted secondary instance and returns the new count.
    virtual quint32 addSecondary() = 0;
    // The primary's clean shutdown: the block says that no first instance runs.
    virtual void release() = 0;
    // Name for the primary's local server, in a place only this user can reach; empty when
    // there is none.
    virtual QString serverName() const = 0;
};

// The block for the build's operating system, named by the instance key.
std::unique_ptr<InstanceBlockHost> nativeInstanceBlock(const QString &key);
