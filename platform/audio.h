#pragma once

#include <QString>

// The default playback device.
class AudioEndpoint {
public:
    virtual ~AudioEndpoint() = default;
    enum Command { ReadVolume = 1, SetVolume = 2, SetMute = 3, ReadMute = 4 };
    // 1: volume in percent; 2: set scalar level 0..1; 3: set mute; 4: 999 muted, 111 not.
    // 0 when there is no default playback device (and for commands 2 and 3).
    virtual quint32 volumeOperation(int command, float level, bool mute) = 0;
    // "No Audio Device", "Realtek HD (Headphones)" or the device's friendly name.
    virtual QString outputDeviceName() = 0;
};
