#pragma once

// Backends for concerns the Windows backend does not cover yet: each behaves as the hardware
// being absent does on Windows.

#include "sleepnotifier.h"

class SilentSleepNotifier : public SleepNotifier {
public:
    bool decodeNativeMessage(const QByteArray &, void *, quint32 *, quintptr *) override
    {
        return false;
    }
};
