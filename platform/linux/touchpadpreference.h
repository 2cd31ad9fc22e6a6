#pragma once

#include "gsettingskey.h"
#include "registry.h"

#include <QString>

#include <memory>
#include <optional>

// The desktop's own "touchpad enabled" switch.
class TouchpadPreference {
public:
    virtual ~TouchpadPreference() = default;
    // Nothing when the desktop cannot say.
    virtual std::optional<bool> enabled() = 0;
    virtual bool setEnabled(bool on) = 0;
};

// GNOME: the touchpad's send-events setting ("enabled", "disabled",
// "disabled-on-external-mouse", which still counts as enabled).
class GnomeTouchpad : public TouchpadPreference {
public:
    GnomeTouchpad();
    bool available() const { return m_sendEvents.available(); }
    std::optional<bool> enabled() override;
    bool setEnabled(bool on) override;

private:
    GSettingsKey m_sendEvents;
};

// KDE: the touchpad service of the desktop's module daemon on the session bus.
class KdeTouchpad : public TouchpadPreference {
public:
    // The daemon's service name ("org.kde.kded5" or "org.kde.kded6"); empty when none runs.
    static QString runningService();
    explicit KdeTouchpad(QString service);
    std::optional<bool> enabled() override;
    bool setEnabled(bool on) override;

private:
    QString m_service;
};

// The session's preference, found when first asked: the search asks the bus and opens GIO,
// which a start hidden in the tray never needs.
class SessionTouchpad : public TouchpadPreference {
public:
    // Whether the desktop has a touchpad switch at all.
    bool exists() { return found() != nullptr; }
    std::optional<bool> enabled() override;
    bool setEnabled(bool on) override;

private:
    TouchpadPreference *found();

    bool m_searched = false;
    std::shared_ptr<TouchpadPreference> m_preference;
};

// The precision-touchpad key as the program writes it, carried to the desktop's switch: its
// value "Enabled" (1 on, 0 off) is the desktop's preference. Where the desktop has none, the
// value is kept in the fallback store so the radios still show the last choice.
class TouchpadRegistry : public Registry {
public:
    static const char key[];

    TouchpadRegistry(std::shared_ptr<TouchpadPreference> desktop,
                     std::shared_ptr<Registry> fallback);

    // The session's preference: KDE's service when it runs, else GNOME's setting, else none.
    static std::shared_ptr<TouchpadPreference> sessionPreference();

    QVariant value(const QString &key, const QString &name, const QVariant &defaultValue) override;
    void setValue(const QString &key, const QString &name, const QVariant &value) override;
    void remove(const QString &key, const QString &name) override;
    bool contains(const QString &key, const QString &name) override;

private:
    bool isSwitch(const QString &name) const;

    std::shared_ptr<TouchpadPreference> m_desktop;
    std::shared_ptr<Registry> m_fallback;
};
