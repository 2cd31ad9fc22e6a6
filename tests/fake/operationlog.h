#pragma once

#include <QString>
#include <QStringList>

#include <memory>

// Every operation the fake platform sees, in order, as readable text ("run: powercfg ...").
struct OperationLog {
    QStringList entries;

    void add(const QString &entry) { entries << entry; }
    void clear() { entries.clear(); }
    // Entries that start with prefix, in order.
    QStringList withPrefix(const QString &prefix) const;
    int indexOf(const QString &entry) const { return entries.indexOf(entry); }
};

using SharedLog = std::shared_ptr<OperationLog>;
