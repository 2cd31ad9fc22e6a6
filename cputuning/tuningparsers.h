#pragma once

#include <QString>

#include <optional>

// Parsers of the tuning client's table output. Each takes what one read query printed and, by
// removing fixed words and splitting the rest, finds the values of its row. Text that lacks the
// row yields nothing; a row split across two reads is therefore not recognised.

// The client's table header, removed by every parser.
extern const QString kClientTableHeader;

// Core Voltage Offset (query 34).
struct UndervoltReading {
    int sliderValue = 0;   // millivolts of undervolt, as a magnitude
    QString label;         // "0mV" or "-<mV>mV"
    QString readUndervolt; // "0" or "-<mV>"
};
std::optional<UndervoltReading> parseUndervolt(const QString &output);

// Turbo Boost Power Max (query 48). A value that is not a power from 0 to 4096 W gives no
// reading.
struct TurboPowerReading {
    QString label;          // the value as the client printed it, unit included
    int sliderValue = 0;    // 1/8 W steps
    QString readTurboPower; // watts with a comma as decimal separator
};
struct TurboPowerParse {
    bool decimalComma = false; // the output used commas, whether or not the row was found
    std::optional<TurboPowerReading> reading;
};
TurboPowerParse parseTurboPower(const QString &output);

// Turbo Boost Power Time Window (query 66).
struct TurboTimeReading {
    int maximum = 0; // the slider's new maximum, seconds
    QString label;   // the value followed by "Sec"
    int value = 0;   // whole seconds
};
std::optional<TurboTimeReading> parseTurboTime(const QString &output);

// "<n> Active Core(s)" (queries 29, 30, 31, 32, 42, 43, 96, 97 for n = 1 ... 8).
struct CoreRatioReading {
    int minimum = 0;
    int maximum = 0;
    int value = 0; // the turbo ratio
};
struct CoreRatioParse {
    bool invalidId = false; // no row, but the client answered "Invalid Id"
    std::optional<CoreRatioReading> reading;
};
CoreRatioParse parseCoreRatio(const QString &output, int activeCores);

// The row name the parser for that many active cores looks for.
QString coreRowName(int activeCores);
