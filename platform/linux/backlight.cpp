#include "backlight.h"

#include "logindbrightness.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>

#include <cmath>

Q_LOGGING_CATEGORY(lcBacklight, "varnel.platform.backlight")

namespace {

int typeRank(const QString &type)
{
    if (type == QLatin1String("firmware"))
        return 0;
    if (type == QLatin1String("platform"))
        return 1;
    if (type == QLatin1String("raw"))
        return 2;
    return 3;
}

int readNumber(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    bool ok = false;
    const int value = file.readAll().trimmed().toInt(&ok);
    return ok ? value : -1;
}

QString readText(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(file.readAll().trimmed());
}

} // namespace

int backlightPercentToRaw(int percent, int max)
{
    if (max <= 0)
        return 0;
    const int clamped = qBound(0, percent, 100);
    // Raw 0 switches many panels off altogether; the lowest level keeps the screen readable.
    return qMax(1, static_cast<int>(std::lround(clamped * double(max) / 100.0)));
}

int backlightRawToPercent(int raw, int max)
{
    if (max <= 0 || raw < 0)
        return -1;
    return static_cast<int>(std::lround(qMin(raw, max) * 100.0 / double(max)));
}

SysfsBacklight::SysfsBacklight(QString root, SessionWriter sessionWriter)
    : m_root(std::move(root)), m_sessionWriter(std::move(sessionWriter))
{
}

bool SysfsBacklight::findDevice(Device *device) const
{
    const QStringList names =
        QDir(m_root).entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::System, QDir::Name);
    int bestRank = 4;
    for (const QString &name : names) {
        const QString folder = m_root + QLatin1Char('/') + name;
        const int max = readNumber(folder + QStringLiteral("/max_brightness"));
        if (max <= 0)
            continue;
        const int rank = typeRank(readText(folder + QStringLiteral("/type")));
        if (rank >= bestRank)
            continue;
        bestRank = rank;
        device->name = name;
        device->max = max;
        device->raw = readNumber(folder + QStringLiteral("/brightness"));
    }
    return bestRank < 4;
}

QString SysfsBacklight::deviceName() const
{
    Device device;
    return findDevice(&device) ? device.name : QString();
}

int SysfsBacklight::read()
{
    Device device;
    if (!findDevice(&device) || device.raw < 0)
        return -1;
    if (device.name == m_writtenDevice && device.raw == m_writtenRaw)
        return m_writtenPercent;
    return backlightRawToPercent(device.raw, device.max);
}

void SysfsBacklight::write(quint32 level)
{
    Device device;
    if (!findDevice(&device))
        return;
    const int percent = static_cast<int>(qMin<quint32>(level, 100));
    const int raw = backlightPercentToRaw(percent, device.max);
    bool written = m_sessionWriter && m_sessionWriter(device.name, static_cast<quint32>(raw));
    if (!written) {
        const QString path =
            m_root + QLatin1Char('/') + device.name + QStringLiteral("/brightness");
        QFile file(path);
        if (QFileInfo(path).isWritable() && file.open(QIODevice::WriteOnly)) {
            written = file.write(QByteArray::number(raw)) > 0;
            file.close();
        }
    }
    if (!written) {
        qCDebug(lcBacklight) << "cannot set the backlight of" << device.name;
        return;
    }
    m_writtenDevice = device.name;
    m_writtenRaw = raw;
    m_writtenPercent = percent;
}

bool SysfsBacklight::logindSetBrightness(const QString &device, quint32 raw)
{
    return ::logindSetBrightness(QStringLiteral("backlight"), device, raw);
}
