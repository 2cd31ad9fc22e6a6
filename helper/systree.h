#pragma once

#include <QString>
#include <QStringList>

#include <optional>

// The kernel's files as the helper sees them. Every path is fixed text or a name the kernel
// listed, joined under one root: "/" in service, a fake tree in tests.
class SysTree {
public:
    explicit SysTree(QString root = QStringLiteral("/"));

    QString path(const QString &relative) const;
    bool exists(const QString &relative) const;
    // The file's first line, trimmed; nothing when it cannot be read.
    std::optional<QString> read(const QString &relative) const;
    std::optional<qint64> readNumber(const QString &relative) const;
    // Writes without creating: a missing attribute fails as it does in sysfs. errno on failure.
    int write(const QString &relative, const QString &text) const;
    // Entries of a folder whose names match the wildcard, sorted.
    QStringList list(const QString &relativeDir, const QString &wildcard) const;

private:
    QString m_root;
};
