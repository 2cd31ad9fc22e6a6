#pragma once

#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <memory>

// Every operation the fake platform sees, in order, as readable text ("run: powercfg ...").
struct OperationLog {
    QStringList entries;

    void add(const QString &entry) { entries << entry; }
    void clear() { entries.clear(); }
    int indexOf(const QString &entry) const { return entries.indexOf(entry); }
    QStringList matching(const QString &pattern) const
    {
        return entries.filter(QRegularExpression(pattern));
    }
    QStringList withPrefix(const QString &prefix) const
    {
        return matching(QLatin1Char('^') + QRegularExpression::escape(prefix));
    }
};

using SharedLog = std::shared_ptr<OperationLog>;
