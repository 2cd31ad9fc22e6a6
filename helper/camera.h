#pragma once

#include "outcome.h"
#include "systree.h"

// The built-in camera: every USB device with a video-class interface (UVC), switched through
// its USB "authorized" attribute, which unbinds the device as an unplug would.
class Camera {
public:
    explicit Camera(SysTree tree) : m_tree(std::move(tree)) {}

    Outcome read(bool *enabled) const;
    Outcome set(bool enabled) const;

    static bool hasVideoInterface(const QByteArray &descriptors);

private:
    QStringList devices() const;

    SysTree m_tree;
};
