#pragma once

#include "instanceblock.h"

#include <QStringList>

// The instance block as a small file in a folder only this user can write to, mapped into
// every start. The first instance holds an exclusive lock on the file for its whole life, so
// the kernel settles which start is first and forgets a first instance the moment it dies
// (killed, a zombie, or its process id reused). Nothing in the shared temporary folder, and
// nothing another user owns, is trusted.
class FileInstanceBlock : public InstanceBlockHost {
public:
    // directory empty: there is no trusted place, and every start runs on its own rather than
    // being locked out.
    FileInstanceBlock(const QString &directory, const QString &key);
    ~FileInstanceBlock() override;

    bool claimPrimary(qint64 pid) override;
    quint32 addSecondary() override;
    void release() override;
    QString serverName() const override;

    QString blockPath() const;

private:
    int openOwnFile(bool create) const;
    bool map(int fd);

    QString m_directory;
    QString m_key;
    int m_fd = -1;
    InstanceBlock *m_block = nullptr;
};

// The first of the candidate folders that is a real folder owned by this user that no one else
// can write to. A missing candidate is made with mode 0700 first.
QString privateInstanceDirectory(const QStringList &candidates);

// The candidates in order: the session's runtime folder, then a folder of this user's in the
// temporary folder, then one in the cache folder.
QStringList instanceDirectoryCandidates();
