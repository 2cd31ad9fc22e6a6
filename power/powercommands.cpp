#include "powercommands.h"

namespace powercmd {

namespace {

const char kDisplaySubgroup[] = "7516b95f-f776-4464-8c53-06167f40cc99";
const char kDisplayBrightness[] = "aded5e82-b909-4619-9949-f5d71dac0bcb";
const char kAdaptiveBrightness[] = "FBD9AA66-9553-4097-BA44-ED6E9D65EAB8";
const char kButtonsSubgroup[] = "4f971e89-eebd-4455-a8de-9e59040e7347";
const char kLidAction[] = "5ca83367-6e45-459f-a27b-476b1d01c936";

Pair valueIndexPair(const QString &setting, int value)
{
    const QString tail = QLatin1Char(' ') + setting + QLatin1Char(' ') + QString::number(value);
    return {QStringLiteral("powercfg -setacvalueindex SCHEME_CURRENT") + tail,
            QStringLiteral("powercfg -setdcvalueindex SCHEME_CURRENT") + tail};
}

QString displaySetting(const char *setting)
{
    return QLatin1String(kDisplaySubgroup) + QLatin1Char(' ') + QLatin1String(setting);
}

} // namespace

QString activateScheme()
{
    return QStringLiteral("powercfg -SetActive SCHEME_CURRENT");
}

Pair processorMinimum(int percent)
{
    return valueIndexPair(QStringLiteral("SUB_PROCESSOR PROCTHROTTLEMIN"), percent);
}

Pair processorMaximum(int percent)
{
    return valueIndexPair(QStringLiteral("SUB_PROCESSOR PROCTHROTTLEMAX"), percent);
}

Pair schemeBrightness(int percent)
{
    return valueIndexPair(displaySetting(kDisplayBrightness), percent);
}

int timeoutMinutes(int index)
{
    static const int minutes[] = {0, 5, 10, 15, 20, 30, 60, 120, 300};
    if (index < 0 || index >= int(sizeof(minutes) / sizeof(minutes[0])))
        return -1;
    return minutes[index];
}

Pair screenOff(int index)
{
    const int m = timeoutMinutes(index);
    if (m < 0)
        return {};
    return {QStringLiteral("powercfg -change -monitor-timeout-ac %1").arg(m),
            QStringLiteral("powercfg -change -monitor-timeout-dc %1").arg(m)};
}

Pair sleepAfter(int index)
{
    const int m = timeoutMinutes(index);
    if (m < 0)
        return {};
    // Two forms on purpose: the short timeouts use "-x" alone, the longer "-change -x".
    if (index <= 3)
        return {QStringLiteral("powercfg -x -standby-timeout-ac %1").arg(m),
                QStringLiteral("powercfg -x -standby-timeout-dc %1").arg(m)};
    return {QStringLiteral("powercfg -change -x -standby-timeout-ac %1").arg(m),
            QStringLiteral("powercfg -change -x -standby-timeout-dc %1").arg(m)};
}

int lidActionValue(int index)
{
    switch (index) {
    case 0:
        return 0;
    case 1:
        return 1;
    case 2:
        return 3; // shut down; 2 (hibernate) is never offered
    default:
        return -1;
    }
}

Pair lidClose(int index)
{
    const int v = lidActionValue(index);
    if (v < 0)
        return {};
    // Written without the dash before the sub-command, as the scheme tool accepts both.
    const QString tail = QStringLiteral(" SCHEME_CURRENT %1 %2 %3")
                             .arg(QLatin1String(kButtonsSubgroup), QLatin1String(kLidAction))
                             .arg(v);
    return {QStringLiteral("powercfg setacvalueindex") + tail,
            QStringLiteral("powercfg setdcvalueindex") + tail};
}

QString fanProfileCode(int index, const QString &current)
{
    if (index == 0)
        return QStringLiteral("none");
    if (index >= 1 && index <= 6)
        return QString::number(index);
    return current;
}

QStringList adaptiveBrightness(bool disable)
{
    const Pair pair = valueIndexPair(displaySetting(kAdaptiveBrightness), disable ? 0 : 1);
    return {pair.dc, pair.ac, activateScheme()};
}

} // namespace powercmd
