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
    for (int pass = 0; pass < 2; ++pass) {
        if (!m_listed) {
            m_lineSupplies.clear();
            const QStringList names = QDir(m_root).entryList(
                QDir::Dirs | QDir::NoDotAndDotDot | QDir::System, QDir::Name);
            for (const QString &name : names) {
                const QByteArray type =
                    readTrimmed(m_root + QLatin1Char('/') + name + QStringLiteral("/type"));
                if (type == "Mains" || type == "USB")
                    m_lineSupplies << name;
            }
            m_listed = true;
        }
        bool gone = false;
        for (const QString &name : qAsConst(m_lineSupplies)) {
            const QString folder = m_root + QLatin1Char('/') + name;
            if (readTrimmed(folder + QStringLiteral("/online")) == "1")
                return 1;
            gone = gone || !QFile::exists(folder + QStringLiteral("/type"));
        }
        if (!gone)
            break;
        m_listed = false;
    }
    return m_lineSupplies.isEmpty() ? 255 : 0;
}
