#pragma once

#include <QString>
#include <QStringList>

// The power-scheme command lines: pure builders, one place for every literal, so a data-driven
// test covers each row. A field is written for mains (AC) first and battery (DC) second.
namespace powercmd {

struct Pair {
    QString ac;
    QString dc;
};

// Re-activates the active scheme so written values take effect.
QString activateScheme();

Pair processorMinimum(int percent);
Pair processorMaximum(int percent);
// The scheme's display brightness, 0..100.
Pair schemeBrightness(int percent);

// Combo index of the timeout boxes to minutes; -1 outside the list.
int timeoutMinutes(int index);
// Out-of-range indices give empty command lines: the processes fail at once, as intended.
Pair screenOff(int index);
Pair sleepAfter(int index);

// Lid-close combo index to the scheme's action value (0 nothing, 1 sleep, 3 shut down); -1
// outside the list.
int lidActionValue(int index);
Pair lidClose(int index);

// Fan combo index to the code the fan companion reads ("none", "1".."6"); other indices keep
// the current code.
QString fanProfileCode(int index, const QString &current);

// Adaptive brightness switched off (disable) or on, for both power sources, then re-activated.
QStringList adaptiveBrightness(bool disable);

} // namespace powercmd
