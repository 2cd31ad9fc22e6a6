#include "gpulabels.h"

QString gpuTemperatureText(int celsius)
{
    return QString::number(celsius) + QChar(0x00BA) + QLatin1Char('C');
}

QString gpuClockText(int mhz)
{
    return QString::number(mhz) + QStringLiteral(" Mhz");
}

QString gpuMemoryClockText(int mhz)
{
    return mhz != 0 ? QStringLiteral("Disabled") : gpuClockText(0);
}

QString gpuPstateText(int pstate)
{
    return QLatin1Char('P') + QString::number(pstate);
}
