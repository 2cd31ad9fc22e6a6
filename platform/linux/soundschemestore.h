#pragma once

#include "gsettingskey.h"
#include "registry.h"

#include <memory>

// The sound scheme's marker kept in the user store and carried to the desktop's event-sounds
// switch where GNOME has one: ".None" turns it off, ".Default" on. The desktop has no
// per-event sounds to set, so the event values are not kept: nothing would read them. While no
// marker is stored, the switch answers for it, so a first start shows the desktop's own choice
// instead of silencing it.
class SoundSchemeStore : public Registry {
public:
    static const char prefix[];

    SoundSchemeStore(std::shared_ptr<Registry> store, std::shared_ptr<GSettingsKey> eventSounds);
    // The GNOME key; whether that desktop setting can be used is found out at first use.
    static std::shared_ptr<GSettingsKey> sessionEventSounds();

    QVariant value(const QString &key, const QString &name, const QVariant &defaultValue) override;
    void setValue(const QString &key, const QString &name, const QVariant &value) override;
    void remove(const QString &key, const QString &name) override;
    bool contains(const QString &key, const QString &name) override;

private:
    bool isMarker(const QString &key, const QString &name) const;

    std::shared_ptr<Registry> m_store;
    std::shared_ptr<GSettingsKey> m_eventSounds;
};
