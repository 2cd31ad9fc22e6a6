#include "camera.h"

#include <QFile>
#include <QRegularExpression>

#include <cstring>

namespace {
const QString usbDevices = QStringLiteral("sys/bus/usb/devices/");
} // namespace

// Read from the raw descriptors rather than the interface folders, which vanish while a camera
// is switched off, so that a switched-off camera can be found again.
bool Camera::hasVideoInterface(const QByteArray &descriptors)
{
    constexpr char interfaceType = 4;
    constexpr char videoClass = 0x0e;
    for (int at = 0; at + 1 < descriptors.size();) {
        const int length = quint8(descriptors.at(at));
        if (length < 2)
            return false;
        if (descriptors.at(at + 1) == interfaceType && length >= 9 && at + 5 < descriptors.size() &&
            descriptors.at(at + 5) == videoClass)
            return true;
        at += length;
    }
    return false;
}

QStringList Camera::devices() const
{
    // Devices are named "<bus>-<port>[.<port>...]"; root hubs and interfaces are not.
    static const QRegularExpression deviceName(QStringLiteral("^[0-9]+-[0-9.]+$"));
    QStringList cameras;
    for (const QString &name : m_tree.list(usbDevices, QStringLiteral("*-*"))) {
        if (!deviceName.match(name).hasMatch())
            continue;
        QFile file(m_tree.path(usbDevices + name + QStringLiteral("/descriptors")));
        if (file.open(QIODevice::ReadOnly) && hasVideoInterface(file.read(65536)))
            cameras << name;
    }
    return cameras;
}

Outcome Camera::read(bool *enabled) const
{
    const QStringList cameras = devices();
    if (cameras.isEmpty())
        return Outcome::refuse(helpererror::notSupported,
                               QStringLiteral("No USB camera was found on this machine."));
    *enabled = m_tree.read(usbDevices + cameras.first() + QStringLiteral("/authorized")) ==
               QLatin1String("1");
    return Outcome::done();
}

Outcome Camera::set(bool enabled) const
{
    const QStringList cameras = devices();
    if (cameras.isEmpty())
        return Outcome::refuse(helpererror::notSupported,
                               QStringLiteral("No USB camera was found on this machine."));
    for (const QString &device : cameras) {
        if (const int error = m_tree.write(usbDevices + device + QStringLiteral("/authorized"),
                                           enabled ? QStringLiteral("1") : QStringLiteral("0")))
            return Outcome::refuse(helpererror::failed,
                                   QStringLiteral("The kernel refused to switch the camera: %1.")
                                       .arg(QString::fromLocal8Bit(std::strerror(error))));
    }
    return Outcome::done();
}
