#include "powersupply.h"

#include <QDir>
#include <QFile>

namespace {
QByteArray readTrimmed(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll().trimmed();
}
} // namespace

int SysfsPowerSupply::acLineStatus()
{
    const QStringList names =
        QDir(m_root).entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::System, QDir::Name);
    bool anyLine = false;
    for (const QString &name : names) {
        const QString folder = m_root + QLatin1Char('/') + name;
        const QByteArray type = readTrimmed(folder + QStringLiteral("/type"));
        if (type != "Mains" && type != "USB")
            continue;
        anyLine = true;
        if (readTrimmed(folder + QStringLiteral("/online")) == "1")
            return 1;
    }
    return anyLine ? 0 : 255;
}
