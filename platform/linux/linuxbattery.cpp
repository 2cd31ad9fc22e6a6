#include "linuxbattery.h"

#include "commandtable.h"
#include "sysfstext.h"

#include <QDir>

namespace {

// One property the way the tool prints it: the header padded to its column, the value below.
QString toolAnswer(const QString &header, const QString &value, bool present)
{
    const int width = header.size() + 2;
    QString out = header.leftJustified(width) + QStringLiteral("\r\r\n");
    if (present)
        out += value.leftJustified(width) + QStringLiteral("\r\r\n\r\r\n");
    return out;
}

} // namespace

int batteryStatusCode(const QString &status, const QString &capacityLevel)
{
    const bool critical = capacityLevel == QLatin1String("Critical");
    const bool low = capacityLevel == QLatin1String("Low");
    if (status == QLatin1String("Discharging"))
        return critical ? 5 : low ? 4 : 1;
    if (status == QLatin1String("Charging")) {
        if (critical)
            return 9;
        if (low)
            return 8;
        return capacityLevel == QLatin1String("High") ? 7 : 6;
    }
    if (status == QLatin1String("Full"))
        return 3;
    // "Not charging" (held below a charge limit) and "Unknown" are seen on mains power.
    return 2;
}

BatteryReading readBattery(const QString &sysRoot)
{
    BatteryReading reading;
    const QDir supplies(sysRoot + QStringLiteral("/class/power_supply"));
    const QStringList names =
        supplies.entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString &name : names) {
        const QString dir = supplies.filePath(name) + QLatin1Char('/');
        // Peripherals (a mouse, a headset) report their batteries with the device scope.
        if (readSysfsText(dir + QStringLiteral("type")) != QLatin1String("Battery") ||
            readSysfsText(dir + QStringLiteral("scope")) == QLatin1String("Device"))
            continue;
        reading.present = true;
        reading.status = batteryStatusCode(readSysfsText(dir + QStringLiteral("status")),
                                           readSysfsText(dir + QStringLiteral("capacity_level")));
        reading.charge = readSysfsText(dir + QStringLiteral("capacity")).toInt();
        break;
    }
    return reading;
}

void addBatteryCommands(CommandTable &table, const QString &sysRoot)
{
    table.add(QStringLiteral("(?i)WMIC Path Win32_Battery Get BatteryStatus"),
              [sysRoot](const QRegularExpressionMatch &) {
                  const BatteryReading battery = readBattery(sysRoot);
                  return toolAnswer(QStringLiteral("BatteryStatus"),
                                    QString::number(battery.status), battery.present);
              });
    table.add(QStringLiteral("(?i)WMIC Path Win32_Battery Get EstimatedChargeRemaining"),
              [sysRoot](const QRegularExpressionMatch &) {
                  const BatteryReading battery = readBattery(sysRoot);
                  return toolAnswer(QStringLiteral("EstimatedChargeRemaining"),
                                    QString::number(battery.charge), battery.present);
              });
}
