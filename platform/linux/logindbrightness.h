#pragma once

#include <QString>

// Sets a device of a kernel subsystem ("backlight", "leds") through logind's
// Session.SetBrightness on the caller's own session, which needs no root. False where that is
// not possible (no system bus, no session, refused).
bool logindSetBrightness(const QString &subsystem, const QString &device, quint32 raw);
