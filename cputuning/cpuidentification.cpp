#include "cpuidentification.h"

#include <QVector>

namespace {

QString removeAll(QString text, const QString &what)
{
    while (text.contains(what))
        text.remove(what);
    return text;
}

struct TableRow {
    const char *name;     // the processor name has this
    const char *modelHas; // nullptr: no test
    const char *modelLacks[2];
    const char *file;
    int cores;
};

// Top to bottom; the first row that holds wins. The gaps are deliberate: an "8850H" in a model
// with "P95" matches nothing, and row 3 comes before rows 5 and 6 so that at start-up (when the
// model is still empty) an "8750H" always takes its limits from the plain profile.
const TableRow kRows[] = {
    {"7700K", nullptr, {}, "7700K", 4},
    {"7700HQ", nullptr, {}, "7700HQ", 0},
    {"8750H", nullptr, {"P95", "N8xxEP6"}, "8750H", 6},
    {"8850H", nullptr, {"P95", nullptr}, "8850H", 6},
    {"8750H", "P95", {}, "8750H_P950", 6},
    {"8750H", "N8xxEP6", {}, "8750H_N8", 6},
    {"8700K", nullptr, {}, "8700K", 6},
    {"9900K", nullptr, {}, "9900K", 8},
    {"8086K", nullptr, {}, "8086K", 6},
    {"8600K", nullptr, {}, "8600K", 6},
    {"6700K", nullptr, {}, "6700K", 4},
    {"8700 CPU @ 3.20", nullptr, {}, "8700", 6},
    {"9700K", nullptr, {}, "9700K", 8},
    {"9750H", nullptr, {}, "9750H", 6},
    {"10875", nullptr, {}, "10875H", 8},
};

bool holds(const TableRow &row, const QString &cpuName, const QString &model)
{
    if (!cpuName.contains(QLatin1String(row.name)))
        return false;
    if (row.modelHas && !model.contains(QLatin1String(row.modelHas)))
        return false;
    for (const char *lacked : row.modelLacks) {
        if (lacked && model.contains(QLatin1String(lacked)))
            return false;
    }
    return true;
}

} // namespace

QString cleanWmicText(const QString &output, const QString &header)
{
    return removeAll(removeAll(output, QStringLiteral("\n\t\r")), header).trimmed();
}

std::optional<CpuProfileMatch> matchCpuProfile(const QString &cpuName, const QString &laptopModel)
{
    for (const TableRow &row : kRows) {
        if (holds(row, cpuName, laptopModel))
            return CpuProfileMatch{
                QStringLiteral("cpuprofiles\\%1.ini").arg(QLatin1String(row.file)), row.cores};
    }
    return std::nullopt;
}

TurboLimits turboLimitsWithDefaults(TurboLimits limits)
{
    // The slider's range is 8 ... max + 1: a max outside 8 ... 8000 (1 W ... 1000 W) would jam it
    // at 1 W, or overflow, so it counts as missing.
    if (limits.max < 8 || limits.max > kDefaultTurboPowerMax)
        limits.max = kDefaultTurboPowerMax;
    if (limits.unlimited.isEmpty())
        limits.unlimited = QLatin1String(kDefaultTurboPowerUnlimited);
    return limits;
}
