#include "batteryreadings.h"

#include <QStringList>

namespace {

QString removeAll(QString text, const QStringList &pieces)
{
    for (const QString &piece : pieces) {
        while (text.contains(piece))
            text.remove(piece);
    }
    return text;
}

} // namespace

QString batteryStateText(int code)
{
    switch (code) {
    case 1:
        return QStringLiteral("On Battery");
    case 2:
        return QStringLiteral("AC Power");
    case 3:
        return QStringLiteral("Full Battery");
    case 4:
        return QStringLiteral("Low Battery");
    case 5:
        return QStringLiteral("Battery Critical");
    case 6:
        return QStringLiteral("Battery Charging");
    case 7:
        return QStringLiteral("Charging (High)");
    case 8:
        return QStringLiteral("Charging (Low)");
    case 9:
        return QStringLiteral("Charging (Critical)");
    case 11:
        return QStringLiteral("Partially Charged");
    default:
        return QStringLiteral("...");
    }
}

QString parseBatteryStatus(const QString &output)
{
    const QString digits = removeAll(output, {QStringLiteral("BatteryStatus"), QStringLiteral(" "),
                                              QStringLiteral("\r"), QStringLiteral("\n")});
    return batteryStateText(digits.toInt(nullptr, 10));
}

QString parseBatteryCharge(const QString &output)
{
    return removeAll(output.trimmed(),
                     {QStringLiteral("EstimatedChargeRemaining"), QStringLiteral(" "),
                      QStringLiteral("\r"), QStringLiteral("\n")}) +
           QLatin1Char('%');
}

QString toolOutputText(const QByteArray &bytes)
{
    if (bytes.startsWith("\xff\xfe")) {
        return QString::fromUtf16(reinterpret_cast<const ushort *>(bytes.constData() + 2),
                                  (bytes.size() - 2) / 2);
    }
    return QString::fromLocal8Bit(bytes);
}
