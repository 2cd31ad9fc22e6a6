#pragma once

#include <QFile>
#include <QString>

// The whole text of a small sysfs or procfs file, trimmed; empty when it cannot be read.
inline QString readSysfsText(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(file.readAll()).trimmed();
}
