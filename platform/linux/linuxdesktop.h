#pragma once

#include "desktop.h"

class LinuxDesktop : public Desktop {
public:
    void openUrl(const QUrl &url) override;
    bool systemFileExists(const QString &path) override;
    bool copySystemFile(const QString &from, const QString &to) override;
    // Wayland always composites; on X11 a compositor owns the _NET_WM_CM_S<screen> selection.
    bool translucentWindows() override;
};
