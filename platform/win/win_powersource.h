#pragma once

namespace varnel::win {

// The AC-line status byte of GetSystemPowerStatus: 0 offline, 1 online, 255 unknown (also when
// the call fails).
int acLineStatus();

} // namespace varnel::win
