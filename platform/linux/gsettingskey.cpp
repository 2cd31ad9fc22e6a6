#include "gsettingskey.h"

#include <QDBusConnection>
#include <QLoggingCategory>

#undef signals // GLib uses the word as an identifier
#include <gio/gio.h>

Q_LOGGING_CATEGORY(lcGSettings, "varnel.platform.gsettings")

namespace {

// Without a session bus dconf cannot store anything and complains on the console.
bool backendReachable()
{
    if (!qEnvironmentVariableIsEmpty("GSETTINGS_BACKEND"))
        return true;
    return QDBusConnection::sessionBus().isConnected();
}

} // namespace

GSettingsKey::GSettingsKey(const char *schema, const char *key) : m_key(key)
{
    GSettingsSchemaSource *source = g_settings_schema_source_get_default();
    GSettingsSchema *found =
        source ? g_settings_schema_source_lookup(source, schema, TRUE) : nullptr;
    if (!found) {
        qCDebug(lcGSettings) << "no schema" << schema;
        return;
    }
    const bool hasKey = g_settings_schema_has_key(found, key);
    g_settings_schema_unref(found);
    if (!hasKey || !backendReachable()) {
        qCDebug(lcGSettings) << "no usable key" << schema << key;
        return;
    }
    m_settings = g_settings_new(schema);
}

GSettingsKey::~GSettingsKey()
{
    if (m_settings)
        g_object_unref(m_settings);
}

std::optional<QString> GSettingsKey::text() const
{
    if (!m_settings)
        return std::nullopt;
    gchar *value = g_settings_get_string(m_settings, m_key.constData());
    const QString out = QString::fromUtf8(value);
    g_free(value);
    return out;
}

bool GSettingsKey::setText(const QString &value)
{
    if (!m_settings)
        return false;
    // A write, even of the same value, goes through the settings daemon and its disk file.
    if (text() == value)
        return true;
    const bool ok =
        g_settings_set_string(m_settings, m_key.constData(), value.toUtf8().constData());
    g_settings_sync();
    return ok;
}

std::optional<bool> GSettingsKey::boolean() const
{
    if (!m_settings)
        return std::nullopt;
    return g_settings_get_boolean(m_settings, m_key.constData()) != FALSE;
}

bool GSettingsKey::setBoolean(bool value)
{
    if (!m_settings)
        return false;
    if (boolean() == value)
        return true;
    const bool ok = g_settings_set_boolean(m_settings, m_key.constData(), value ? TRUE : FALSE);
    g_settings_sync();
    return ok;
}
