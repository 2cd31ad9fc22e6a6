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
    QString windowsToolsUnavailable() const override;

private:
    std::function<bool()> m_helperAvailable;
};
