#pragma once

#include <QtGlobal>

// The laptop's built-in panel.
class PanelBrightness {
public:
    virtual ~PanelBrightness() = default;
    // Current level 0..100 (the driver may report up to 255); -1 when it cannot be read.
    virtual int read() = 0;
    // Sets the level; failures are silent.
    virtual void write(quint32 level) = 0;
    // Whether the maker's brightness/switch provider is present (always true where the
    // platform needs no such provider).
    virtual bool providerInstalled() = 0;
};
