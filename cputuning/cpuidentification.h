#pragma once

#include <QString>

#include <optional>

// Which processor and laptop the program runs on, and which tuning profile belongs to them.

// The text of a "wmic ... get <header>" query as a bare value: every "\n\t\r" sequence and then
// every occurrence of the header word are removed (each until none is left), then the result is
// trimmed. The header is removed wherever it occurs, case-sensitively.
QString cleanWmicText(const QString &output, const QString &header);

// A row of the processor table: the profile file and how many per-core ratios it holds.
struct CpuProfileMatch {
    QString file;  // "cpuprofiles\\<name>.ini", relative to the install folder
    int cores = 0; // per-core keys "core1" ... read by Recommended
};

// The first row of the processor table whose test holds, or nothing for an unsupported
// processor. All tests are case-sensitive substring tests; some rows also look at the model.
std::optional<CpuProfileMatch> matchCpuProfile(const QString &cpuName, const QString &laptopModel);

// The turbo-power limits a profile gives, with the built-in defaults for missing values. A
// limit outside 8 ... 8000 (1 W ... 1000 W) counts as missing.
struct TurboLimits {
    int max = 0;       // highest finite slider position, 1/8 W steps
    QString unlimited; // watts sent for the top position
};
inline constexpr int kDefaultTurboPowerMax = 8000;
inline constexpr char kDefaultTurboPowerUnlimited[] = "4095.875";
TurboLimits turboLimitsWithDefaults(TurboLimits fromProfile);
