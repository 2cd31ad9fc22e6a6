#pragma once

#include <QString>

class CommandTable;

// The battery widget's two WMI queries answered from /sys/class/power_supply in the tool's own
// shape (a header line, a value line, a blank line), so the widget reads them unchanged. No
// battery gives the header alone, as the tool prints no value row then.
void addBatteryCommands(CommandTable &table, const QString &sysRoot = QStringLiteral("/sys"));

// The battery found under sysRoot, as Win32_Battery would report it.
struct BatteryReading {
    bool present = false;
    int status = 0; // BatteryStatus code
    int charge = 0; // EstimatedChargeRemaining, percent
};
BatteryReading readBattery(const QString &sysRoot);

// A power_supply "status" (with its "capacity_level") as a BatteryStatus code.
int batteryStatusCode(const QString &status, const QString &capacityLevel);
