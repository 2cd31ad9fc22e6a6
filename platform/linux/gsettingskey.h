#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

typedef struct _GSettings GSettings;

// One key of a GNOME desktop setting (gsettings), used only where it can work: its schema is
// installed and a settings backend is reachable (the session bus for dconf, or a backend chosen
// through GSETTINGS_BACKEND). Elsewhere every call reports "absent" and changes nothing.
class GSettingsKey {
public:
    GSettingsKey(const char *schema, const char *key);
    ~GSettingsKey();
    GSettingsKey(const GSettingsKey &) = delete;
    GSettingsKey &operator=(const GSettingsKey &) = delete;

    bool available() const;
    // Text keys and enumerations (by their nick).
    std::optional<QString> text() const;
    bool setText(const QString &value);
    std::optional<bool> boolean() const;
    bool setBoolean(bool value);
    bool setUnsigned(quint32 value);
    bool setInteger(int value);
    // Back to the schema's default.
    bool reset();

private:
    // The schema is looked up at the first question, not at construction: most runs never ask,
    // and looking it up opens GIO.
    GSettings *settings() const;

    QByteArray m_schema;
    QByteArray m_key;
    mutable bool m_looked = false;
    mutable GSettings *m_settings = nullptr;
};
