#pragma once

#include <QString>

#include <optional>

// The texts the tuning controls show and write.

// Milliwatts as watts with a "." before the last three digits, trailing zeros and then a
// trailing "." stripped: 45000 -> "45", 45500 -> "45.5", 125 -> "0.125". One million and more
// is the fixed text "1000", stripped like the rest.
QString milliwattsAsWatts(qint64 milliwatts);

// The turbo power a slider position stands for (positions are 1/8 W): the position's watts, or
// the unlimited figure above the highest finite position.
QString turboPowerTextFor(int position, int turboPowerMax, const QString &turboPowerUnlimited);

// The undervolt written for a slider position: "0" for 0 and 1 (1 is written as 0 on purpose),
// otherwise "-" and the millivolts.
QString undervoltTextFor(int position);

// The slider position (1/8 W steps, truncated) for a watt figure read from outside (the client's
// row, the saved settings). Nothing for text that is not a finite figure from 0 to 4096 W, the
// client's own "unlimited": the conversion to a position is only defined within that range.
std::optional<int> turboPowerPosition(const QString &watts);
