#pragma once

#include "devices.h"

#include <QString>

#include <functional>

// The keyboard backlight LED (/sys/class/leds/*::kbd_backlight). Set through logind's
// Session.SetBrightness, which needs no root; the sysfs file directly only where the user may
// write it.
class LedKeyboardLight : public KeyboardLight {
public:
    using SessionWriter = std::function<bool(const QString &led, quint32 raw)>;

    explicit LedKeyboardLight(QString root = QStringLiteral("/sys/class/leds"),
                              SessionWriter sessionWriter = logindSetLed);

    void setLevel(int percent) override;
    // The LED's folder name, or empty when the keyboard has no backlight.
    QString ledName() const;

    static bool logindSetLed(const QString &led, quint32 raw);

private:
    QString m_root;
    SessionWriter m_sessionWriter;
};
