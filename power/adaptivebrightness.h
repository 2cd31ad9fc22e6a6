#pragma once

#include "settingsfiles.h"

class CommandRunner;

// Switches the scheme's adaptive brightness off (disable) or on, hidden and without waiting,
// and remembers the choice in "AdaptiveBrightness".
void applyAdaptiveBrightness(CommandRunner &commands, const Settings &settings, bool disable);
