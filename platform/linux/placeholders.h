#pragma once

// Backends for concerns that have no Linux implementation yet: each behaves as the hardware
// being absent does on Windows.

#include "devices.h"

class AbsentKeyBlocker : public KeyBlocker {
public:
    bool install() override { return false; }
    void uninstall() override {}
};
