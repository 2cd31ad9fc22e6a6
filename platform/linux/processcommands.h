#pragma once

#include "commandtable.h"

#include <QString>

#include <functional>

// Where the process and identification rows look, and how they end a process; tests point them
// at fixture trees and record the kills.
struct ProcessRoots {
    QString proc = QStringLiteral("/proc");
    QString dmi = QStringLiteral("/sys/class/dmi/id");
    // The user whose processes taskkill may end; negative: the user running the program.
    long long uid = -1;
    // Ends a process at once, as taskkill /f does; true when it went.
    std::function<bool(long long pid)> kill;
};

// "wmic cpu get Name", "wmic computersystem get model", "tasklist" and the two taskkill forms.
void addProcessCommands(CommandTable &table, ProcessRoots roots = ProcessRoots());
