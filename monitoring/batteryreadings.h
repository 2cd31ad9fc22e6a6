#pragma once

#include <QByteArray>
#include <QString>

// Reading the battery widget's two query outputs (WMI's Win32_Battery, one header line and one
// value line), free of widgets and processes.

// The text shown for a Win32_Battery BatteryStatus code; "..." for a code without one.
QString batteryStateText(int code);

// The status text from the whole output of the BatteryStatus query.
QString parseBatteryStatus(const QString &output);

// The charge text ("87%") from the whole output of the EstimatedChargeRemaining query; the
// text is not checked for being a number, so an empty reading gives "%".
QString parseBatteryCharge(const QString &output);

// Tool output as text: wmic writes UTF-16 with a byte order mark into some pipes.
QString toolOutputText(const QByteArray &bytes);
