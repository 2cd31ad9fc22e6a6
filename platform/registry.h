#pragma once

#include <QString>
#include <QVariant>

// Per-user and machine settings stores addressed the Windows way: a key path such as
// "HKEY_CURRENT_USER\AppEvents\Schemes" and a value name ("Default" names the key's unnamed
// value). Values map as QSettings' native format maps them: int -> DWORD, QString -> string,
// QStringList -> multi-string.
class Registry {
public:
    virtual ~Registry() = default;

    virtual QVariant value(const QString &key, const QString &name,
                           const QVariant &defaultValue = QVariant()) = 0;
    virtual void setValue(const QString &key, const QString &name, const QVariant &value) = 0;
    virtual void remove(const QString &key, const QString &name) = 0;
    virtual bool contains(const QString &key, const QString &name) = 0;
    // Whether machine-wide Windows settings (HKEY_LOCAL_MACHINE) configure the running system;
    // where they do not, writes to them are remembered nowhere and change nothing.
    virtual bool machineSettingsApply() { return true; }
};
