#pragma once

#include "commandtable.h"

#include <QString>

#include <memory>

class HelperClient;

// The tuning client's queries and writes, its service and its driver installer, carried out by
// the system helper: reads print the client's own table rows so the same parsers read them.
void addTuningCommands(CommandTable &table, std::shared_ptr<HelperClient> helper);
// A power mode's processor minimum and maximum.
void addProcessorLimitCommands(CommandTable &table, std::shared_ptr<HelperClient> helper);

namespace tuningtable {
// One row of the client's table, after its header; value, minimum and maximum as it prints them.
QString row(int id, const QString &name, const QString &value, const QString &minimum,
            const QString &maximum);
// Watts or seconds as the client prints them: three decimals at most, no trailing zeros.
QString number(double value, int minimumDecimals = 0);
// The physical cores of the first processor, from /proc/cpuinfo; 8 when it does not say.
int coreCount(const QString &cpuinfo);
} // namespace tuningtable
