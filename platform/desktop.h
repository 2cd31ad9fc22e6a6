#pragma once

#include <QString>
#include <QUrl>

// The user's desktop: default browser, and files outside the install folder.
class Desktop {
public:
    virtual ~Desktop() = default;
    virtual void openUrl(const QUrl &url) = 0;
    // Whether a file at a system path (for example under "C://Program Files") exists.
    virtual bool systemFileExists(const QString &path) = 0;
    virtual bool copySystemFile(const QString &from, const QString &to) = 0;
    // Whether a window's transparent parts show what lies behind it (a compositor runs).
    virtual bool translucentWindows() { return true; }
    // Why Windows tools kept beside the program (ThrottleStop) cannot run here; empty where they
    // can.
    virtual QString windowsToolsUnavailable() const { return QString(); }
};
