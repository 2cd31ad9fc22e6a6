#pragma once

#include <QString>

// Keys of the general settings file that hold the last applied per-core ratios.
inline QString coreMultiKey(int cores)
{
    return QStringLiteral("core%1multi").arg(cores);
}
