#include "tuningformat.h"

#include <cmath>

QString milliwattsAsWatts(qint64 milliwatts)
{
    // A thousand watts and more is the fixed whole figure; only decimals lose their trailing
    // zeros, so it reads "1000" and not "1".
    if (milliwatts >= 1000000)
        return QStringLiteral("1000");
    QString digits = QString::number(milliwatts);
    if (milliwatts < 1000)
        digits = QStringLiteral("0.") + digits;
    else
        digits.insert(digits.size() - 3, QLatin1Char('.'));
    while (digits.endsWith(QLatin1Char('0')))
        digits.chop(1);
    if (digits.endsWith(QLatin1Char('.')))
        digits.chop(1);
    return digits;
}

QString turboPowerTextFor(int position, int turboPowerMax, const QString &turboPowerUnlimited)
{
    if (position > turboPowerMax)
        return turboPowerUnlimited;
    return milliwattsAsWatts(qint64(position) * 125);
}

QString undervoltTextFor(int position)
{
    if (position >= 2)
        return QStringLiteral("-") + QString::number(position);
    return QStringLiteral("0");
}

std::optional<int> turboPowerPosition(const QString &watts)
{
    const double kHighestWatts = 4096;
    bool ok = false;
    const double value = watts.toDouble(&ok);
    // toDouble() also takes "nan", "inf" and exponents; check before converting.
    if (!ok || !std::isfinite(value) || value < 0 || value > kHighestWatts)
        return std::nullopt;
    return static_cast<int>(value * 8);
}
