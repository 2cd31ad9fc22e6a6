#pragma once

#include "registry.h"

#include <QString>
#include <QVector>

#include <functional>
#include <memory>

// Stands in for the Windows registry. Known keys are routed to their native counterpart (a
// desktop setting, an autostart folder); every other per-user key lives in a small per-user
// store, and machine-wide keys are not written at all: they configure Windows only.
class LinuxRegistry : public Registry {
public:
    LinuxRegistry();

    // A route owns every key that starts with prefix (case-insensitive).
    void addRoute(const QString &prefix, std::shared_ptr<Registry> target);

    QVariant value(const QString &key, const QString &name, const QVariant &defaultValue) override;
    void setValue(const QString &key, const QString &name, const QVariant &value) override;
    void remove(const QString &key, const QString &name) override;
    bool contains(const QString &key, const QString &name) override;
    bool machineSettingsApply() override { return false; }

private:
    Registry &route(const QString &key);

    struct Route {
        QString prefix;
        std::shared_ptr<Registry> target;
    };
    QVector<Route> m_routes;
    std::shared_ptr<Registry> m_userStore;
    std::shared_ptr<Registry> m_machine;
};

// Per-user values in $XDG_CONFIG_HOME/varnel/registry.ini.
class UserStoreRegistry : public Registry {
public:
    QVariant value(const QString &key, const QString &name, const QVariant &defaultValue) override;
    void setValue(const QString &key, const QString &name, const QVariant &value) override;
    void remove(const QString &key, const QString &name) override;
    bool contains(const QString &key, const QString &name) override;

    static QString storePath();
};

// Machine-wide Windows settings: reads find nothing, writes are dropped (logged at debug).
class WindowsOnlyRegistry : public Registry {
public:
    QVariant value(const QString &key, const QString &name, const QVariant &defaultValue) override;
    void setValue(const QString &key, const QString &name, const QVariant &value) override;
    void remove(const QString &key, const QString &name) override;
    bool contains(const QString &key, const QString &name) override;
};
