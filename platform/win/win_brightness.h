#pragma once

#include <cstdint>

struct IWbemServices;

namespace varnel::win {

// The built-in panel's brightness through the monitor driver's WMI classes in root\wmi. Every
// call holds the whole conversation afresh (COM, locator, services, query) and releases it.

// The panel's CurrentBrightness (0..255 as the driver reports it; 0..100 in practice), the last
// instance winning when there are several; -1 when WMI cannot be reached or has no instance.
int readPanelBrightness();
// Sets every panel through WmiSetBrightness; failures are silent.
void writePanelBrightness(std::uint32_t level);

// The parts after connecting, on a services proxy that is already set up.
int queryCurrentBrightness(IWbemServices *services);
void setBrightnessOnEveryPanel(IWbemServices *services, std::uint32_t level);

} // namespace varnel::win
