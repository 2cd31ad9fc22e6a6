#pragma once

#include "registry.h"

// The per-user log-on Run key as XDG autostart entries: the value "Fan Control" is the entry
// "Fan Control.desktop" in the user's autostart folder, and its data is the entry's command.
// An entry marked Hidden counts as removed, as the desktop's own autostart settings do.
class AutostartEntries : public Registry {
public:
    static const QString runKey;

    QVariant value(const QString &key, const QString &name, const QVariant &defaultValue) override;
    void setValue(const QString &key, const QString &name, const QVariant &value) override;
    void remove(const QString &key, const QString &name) override;
    bool contains(const QString &key, const QString &name) override;

    static QString entryPath(const QString &name);
};
