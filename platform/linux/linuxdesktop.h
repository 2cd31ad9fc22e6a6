#pragma once

#include "desktop.h"

class LinuxDesktop : public Desktop {
public:
    void openUrl(const QUrl &url) override;
    bool systemFileExists(const QString &path) override;
    bool copySystemFile(const QString &from, const QString &to) override;
};
