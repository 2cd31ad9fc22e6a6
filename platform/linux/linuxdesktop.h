#pragma once

#include "desktop.h"

#include <functional>

class LinuxDesktop : public Desktop {
public:
    // The tuning utility's service files stand for the system helper here.
    explicit LinuxDesktop(std::function<bool()> helperAvailable = [] { return false; })
        : m_helperAvailable(std::move(helperAvailable))
    {
    }
    void openUrl(const QUrl &url) override;
    bool systemFileExists(const QString &path) override;
    bool copySystemFile(const QString &from, const QString &to) override;
    // Wayland always composites; on X11 a compositor owns the _NET_WM_CM_S<screen> selection.
    bool translucentWindows() override;
    QString windowsToolsUnavailable() const override;

private:
    std::function<bool()> m_helperAvailable;
};
