#pragma once

#include "commandtable.h"

// The settings pages and apps the volume and device tabs open, as this desktop's programs.
// The latency fix tool and devcon have no counterpart: they stay unknown, like missing programs.
void addDeviceCommands(CommandTable &table);
