#include "tuningformat.h"

QString milliwattsAsWatts(qint64 milliwatts)
{
    QString digits = QString::number(milliwatts);
    // The fixed text goes through the same stripping as every other figure, so it reads "1".
    if (milliwatts >= 1000000)
        digits = QStringLiteral("1000");
    else if (milliwatts < 1000)
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
