#include "linuxregistry.h"

#include "commandtable.h"
#include "settingsfiles.h"

#include <QLoggingCategory>
#include <QSettings>

Q_LOGGING_CATEGORY(lcRegistry, "varnel.registry")

namespace {

QString storeKey(const QString &key, const QString &name)
{
    QString path = key;
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    while (path.endsWith(QLatin1Char('/')))
        path.chop(1);
    // QSettings treats '/' as a group separator; keep the key path readable in one section.
    path.replace(QLatin1Char('/'), QLatin1String("::"));
    return path + QLatin1Char('/') + name;
}

} // namespace

LinuxRegistry::LinuxRegistry()
    : m_userStore(std::make_shared<UserStoreRegistry>()),
      m_machine(std::make_shared<WindowsOnlyRegistry>())
{
}

void LinuxRegistry::addRoute(const QString &prefix, std::shared_ptr<Registry> target)
{
    m_routes.push_back({prefix, std::move(target)});
}

Registry &LinuxRegistry::route(const QString &key)
{
    for (const Route &r : m_routes) {
        if (key.startsWith(r.prefix, Qt::CaseInsensitive))
            return *r.target;
    }
    if (key.startsWith(QLatin1String("HKEY_CURRENT_USER"), Qt::CaseInsensitive))
        return *m_userStore;
    return *m_machine;
}

QVariant LinuxRegistry::value(const QString &key, const QString &name, const QVariant &defaultValue)
{
    return route(key).value(key, name, defaultValue);
}

void LinuxRegistry::setValue(const QString &key, const QString &name, const QVariant &value)
{
    route(key).setValue(key, name, value);
}

void LinuxRegistry::remove(const QString &key, const QString &name)
{
    route(key).remove(key, name);
}

bool LinuxRegistry::contains(const QString &key, const QString &name)
{
    return route(key).contains(key, name);
}

QString UserStoreRegistry::storePath()
{
    return LinuxPaths::configHome() + QStringLiteral("/varnel/registry.ini");
}

QVariant UserStoreRegistry::value(const QString &key, const QString &name,
                                  const QVariant &defaultValue)
{
    QSettings store(storePath(), QSettings::IniFormat);
    return store.value(storeKey(key, name), defaultValue);
}

void UserStoreRegistry::setValue(const QString &key, const QString &name, const QVariant &value)
{
    QSettings store(storePath(), QSettings::IniFormat);
    // The sound-scheme refresh writes the same values every few seconds; each real write
    // rewrites and syncs the whole store.
    if (iniHoldsValue(store.value(storeKey(key, name)), value))
        return;
    store.setValue(storeKey(key, name), value);
}

void UserStoreRegistry::remove(const QString &key, const QString &name)
{
    QSettings store(storePath(), QSettings::IniFormat);
    if (store.contains(storeKey(key, name)))
        store.remove(storeKey(key, name));
}

bool UserStoreRegistry::contains(const QString &key, const QString &name)
{
    QSettings store(storePath(), QSettings::IniFormat);
    return store.contains(storeKey(key, name));
}

QVariant WindowsOnlyRegistry::value(const QString &, const QString &, const QVariant &defaultValue)
{
    return defaultValue;
}

void WindowsOnlyRegistry::setValue(const QString &key, const QString &name, const QVariant &)
{
    qCDebug(lcRegistry) << "Windows-only setting not written:" << key << name;
}

void WindowsOnlyRegistry::remove(const QString &key, const QString &name)
{
    qCDebug(lcRegistry) << "Windows-only setting not removed:" << key << name;
}

bool WindowsOnlyRegistry::contains(const QString &, const QString &)
{
    return false;
}
