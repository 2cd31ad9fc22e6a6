#pragma once

#include <memory>

class CommandTable;
class DesktopSettings;

// The power-scheme and settings-page command lines that have a desktop counterpart: adaptive
// brightness, re-activating the scheme, and the display and power settings pages. Processor
// limits, timeouts and the lid action need a privileged helper and stay unknown (a missing
// program) until there is one.
void addPowerCommands(CommandTable &table, std::shared_ptr<DesktopSettings> desktop);
