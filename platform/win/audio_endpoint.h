#pragma once

#include <string>

namespace varnel::win {

// The default playback device through Core Audio. Every call does its own CoInitialize, finds
// the default render console endpoint, uses it and releases everything.

// 1: volume in percent (scalar x 100, +0.5, truncated); 2: set the scalar level; 3: set mute;
// 4: 999 muted, 111 not. 0 without a default device and for commands 2 and 3. status, when
// given, receives the HRESULT of the endpoint call itself (S_FALSE without a device).
unsigned endpointVolume(int command, float level, bool mute, long *status = nullptr);

// "No Audio Device", "Realtek HD (Headphones)" for a Realtek device whose jack reports
// connected stereo 3.5 mm headphones, or the device's friendly name (UTF-8).
std::string outputDeviceName();

// Whether one jack description means headphones: front left and right (3), a 3.5 mm jack (1),
// connected.
bool jackIsHeadphones(unsigned long channelMapping, int connectionType, bool connected);

} // namespace varnel::win
