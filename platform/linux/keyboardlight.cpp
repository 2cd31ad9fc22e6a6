#include "keyboardlight.h"

#include "logindbrightness.h"
#include "sysfstext.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>

#include <cmath>

Q_LOGGING_CATEGORY(lcKeyboardLight, "varnel.platform.keyboardlight")

LedKeyboardLight::LedKeyboardLight(QString root, SessionWriter sessionWriter)
    : m_root(std::move(root)), m_sessionWriter(std::move(sessionWriter))
{
}

QString LedKeyboardLight::ledName() const
{
    const QStringList leds = QDir(m_root).entryList({QStringLiteral("*::kbd_backlight")},
                                                    QDir::Dirs | QDir::System, QDir::Name);
    return leds.isEmpty() ? QString() : leds.first();
}

void LedKeyboardLight::setLevel(int percent)
{
    const QString led = ledName();
    if (led.isEmpty())
        return;
    const QString folder = m_root + QLatin1Char('/') + led;
    const int max = readSysfsText(folder + QStringLiteral("/max_brightness")).toInt();
    if (max <= 0)
        return;
    // A keyboard light may well go fully dark, unlike the panel.
    const auto raw =
        static_cast<quint32>(std::lround(qBound(0, percent, 100) * double(max) / 100.0));
    if (m_sessionWriter && m_sessionWriter(led, raw))
        return;
    const QString path = folder + QStringLiteral("/brightness");
    QFile file(path);
    if (!QFileInfo(path).isWritable() || !file.open(QIODevice::WriteOnly) ||
        file.write(QByteArray::number(raw)) <= 0)
        qCDebug(lcKeyboardLight) << "cannot set the keyboard light" << led;
}

bool LedKeyboardLight::logindSetLed(const QString &led, quint32 raw)
{
    return logindSetBrightness(QStringLiteral("leds"), led, raw);
}
