#include "soundschemestore.h"

namespace {
const char kSchemesKey[] = "HKEY_CURRENT_USER\\AppEvents\\Schemes";
const char kMarkerName[] = "Default";
const char kStockMarker[] = ".Default";
const char kSilentMarker[] = ".None";
} // namespace

const char SoundSchemeStore::prefix[] = "HKEY_CURRENT_USER\\AppEvents";

SoundSchemeStore::SoundSchemeStore(std::shared_ptr<Registry> store,
                                   std::shared_ptr<GSettingsKey> eventSounds)
    : m_store(std::move(store)), m_eventSounds(std::move(eventSounds))
{
}

std::shared_ptr<GSettingsKey> SoundSchemeStore::sessionEventSounds()
{
    // Whether the desktop has the key is asked at first use; an absent key answers nothing.
    return std::make_shared<GSettingsKey>("org.gnome.desktop.sound", "event-sounds");
}

bool SoundSchemeStore::isMarker(const QString &key, const QString &name) const
{
    QString path = key;
    while (path.endsWith(QLatin1Char('\\')))
        path.chop(1);
    return path.compare(QLatin1String(kSchemesKey), Qt::CaseInsensitive) == 0 &&
           name.compare(QLatin1String(kMarkerName), Qt::CaseInsensitive) == 0;
}

QVariant SoundSchemeStore::value(const QString &key, const QString &name,
                                 const QVariant &defaultValue)
{
    if (isMarker(key, name) && m_eventSounds && !m_store->contains(key, name)) {
        if (const std::optional<bool> on = m_eventSounds->boolean())
            return QLatin1String(*on ? kStockMarker : kSilentMarker);
    }
    return m_store->value(key, name, defaultValue);
}

void SoundSchemeStore::setValue(const QString &key, const QString &name, const QVariant &value)
{
    if (!isMarker(key, name))
        return;
    m_store->setValue(key, name, value);
    if (!m_eventSounds)
        return;
    const QString marker = value.toString();
    if (marker == QLatin1String(kSilentMarker))
        m_eventSounds->setBoolean(false);
    else if (marker == QLatin1String(kStockMarker))
        m_eventSounds->setBoolean(true);
}

void SoundSchemeStore::remove(const QString &key, const QString &name)
{
    m_store->remove(key, name);
}

bool SoundSchemeStore::contains(const QString &key, const QString &name)
{
    return m_store->contains(key, name) ||
           (isMarker(key, name) && m_eventSounds && m_eventSounds->boolean().has_value());
}
