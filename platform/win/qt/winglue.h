#pragma once

// Qt faces of the plain Windows backend: conversions only, the work is in platform/win.

#include "commandrunner.h"
#include "desktop.h"
#include "identity.h"
#include "registry.h"

class WinCommandRunner : public CommandRunner {
public:
    QString runAndRead(const QString &commandLine, int timeoutMs) override;
    void start(const QString &commandLine) override;
    void startShown(const QString &commandLine, ShowMode mode) override;
    void startDetached(const QString &program, const QStringList &arguments,
                       const QString &workingDirectory) override;
    AsyncProcess *createProcess(QObject *parent) override;
};

// Maps values as the native settings format does: int -> DWORD, QStringList -> multi-string,
// anything else -> its text.
class WinRegistry : public Registry {
public:
    QVariant value(const QString &key, const QString &name, const QVariant &defaultValue) override;
    void setValue(const QString &key, const QString &name, const QVariant &value) override;
    void remove(const QString &key, const QString &name) override;
    bool contains(const QString &key, const QString &name) override;
};

class WinIdentity : public UserIdentity {
public:
    QString userName() override;
};

class WinDesktop : public Desktop {
public:
    void openUrl(const QUrl &url) override;
    bool systemFileExists(const QString &path) override;
    bool copySystemFile(const QString &from, const QString &to) override;
};
