#pragma once

struct IWbemServices;

namespace varnel::win {

// The laptop's own switches through its WMI class CLEVO_GET in root\wmi: 1 camera, 2 wireless
// LAN, 3 (and anything else) touchpad; value 0 off, 1 on. Failures are silent to the program;
// the result says which HRESULT ended the call (S_OK when the method ran).
long setLaptopSwitch(int switchId, int value);

// "SetCamera", "SetWLan" or "SetTP".
const wchar_t *laptopSwitchMethod(int switchId);

// The part after connecting, on a services proxy that is already set up.
long callLaptopSwitch(IWbemServices *services, int switchId, int value);

} // namespace varnel::win
