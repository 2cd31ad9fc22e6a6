#pragma once

#include <QString>
#include <QStringList>

#include <memory>

// Every operation the fake platform sees, in order, as readable text ("run: powercfg ...").
struct OperationLog {
    QStringList entries;

    void add(const QString &entry) { entries << entry; }
    void clear() { entries.clear(); }
    int indexOf(const QString &entry) const { return entries.indexOf(entry); }
    QStringList withPrefix(const QString &prefix) const
    {
        QStringList out;
        for (const QString &e : entries) {
            if (e.startsWith(prefix))
                out << e;
        }
        return out;
    }
};

using SharedLog = std::shared_ptr<OperationLog>;
