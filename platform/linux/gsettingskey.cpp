#include "gsettingskey.h"

#include <QDBusConnection>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QLoggingCategory>

#undef signals // GLib uses the word as an identifier
#include <gio/gio.h>

#include <dlfcn.h>

#include <memory>

Q_LOGGING_CATEGORY(lcGSettings, "varnel.platform.gsettings")

namespace {

// GIO is opened the first time a desktop key is wanted: linked, it and the libraries it pulls
// in were loaded and relocated at every start for keys most runs never touch.
struct Gio {
    decltype(&::g_settings_schema_source_get_default) schema_source_get_default;
    decltype(&::g_settings_schema_source_lookup) schema_source_lookup;
    decltype(&::g_settings_schema_has_key) schema_has_key;
    decltype(&::g_settings_schema_unref) schema_unref;
    decltype(&::g_settings_new) settings_new;
    decltype(&::g_settings_get_string) get_string;
    decltype(&::g_settings_set_string) set_string;
    decltype(&::g_settings_get_boolean) get_boolean;
    decltype(&::g_settings_set_boolean) set_boolean;
    decltype(&::g_settings_get_uint) get_uint;
    decltype(&::g_settings_set_uint) set_uint;
    decltype(&::g_settings_get_int) get_int;
    decltype(&::g_settings_set_int) set_int;
    decltype(&::g_settings_reset) reset;
    decltype(&::g_settings_sync) sync;
    decltype(&::g_object_unref) object_unref;
    decltype(&::g_free) free;
};

std::unique_ptr<Gio> openGio()
{
    void *library = dlopen("libgio-2.0.so.0", RTLD_LAZY | RTLD_LOCAL);
    if (!library) {
        qCDebug(lcGSettings) << "GIO not found:" << dlerror();
        return nullptr;
    }
    auto gio = std::make_unique<Gio>();
    bool complete = true;
    auto resolve = [&](auto &slot, const char *name) {
        slot = reinterpret_cast<std::remove_reference_t<decltype(slot)>>(dlsym(library, name));
        complete = complete && slot;
    };
    resolve(gio->schema_source_get_default, "g_settings_schema_source_get_default");
    resolve(gio->schema_source_lookup, "g_settings_schema_source_lookup");
    resolve(gio->schema_has_key, "g_settings_schema_has_key");
    resolve(gio->schema_unref, "g_settings_schema_unref");
    resolve(gio->settings_new, "g_settings_new");
    resolve(gio->get_string, "g_settings_get_string");
    resolve(gio->set_string, "g_settings_set_string");
    resolve(gio->get_boolean, "g_settings_get_boolean");
    resolve(gio->set_boolean, "g_settings_set_boolean");
    resolve(gio->get_uint, "g_settings_get_uint");
    resolve(gio->set_uint, "g_settings_set_uint");
    resolve(gio->get_int, "g_settings_get_int");
    resolve(gio->set_int, "g_settings_set_int");
    resolve(gio->reset, "g_settings_reset");
    resolve(gio->sync, "g_settings_sync");
    resolve(gio->object_unref, "g_object_unref");
    resolve(gio->free, "g_free");
    if (!complete)
        return nullptr;
    return gio;
}

// Null when GIO is missing; a key then behaves as on a desktop without the schema.
const Gio *gio()
{
    static const std::unique_ptr<Gio> api = openGio();
    return api.get();
}

// Whether a compiled schema file on GLib's search path names the schema. Where none does,
// GIO (1.3 MB resident with what it pulls in) is not loaded just to learn that: desktops other
// than GNOME, and machines without it, never need it.
bool schemaMayBeInstalled(const QByteArray &schema)
{
    static QHash<QByteArray, bool> known;
    const auto cached = known.constFind(schema);
    if (cached != known.constEnd())
        return *cached;
    QStringList folders = qEnvironmentVariable("GSETTINGS_SCHEMA_DIR").split(QLatin1Char(':'));
    const QString dataHome = qEnvironmentVariable("XDG_DATA_HOME");
    QStringList dataFolders = qEnvironmentVariable("XDG_DATA_DIRS").split(QLatin1Char(':'));
    if (dataFolders.join(QString()).isEmpty())
        dataFolders = QStringList{QStringLiteral("/usr/local/share"), QStringLiteral("/usr/share")};
    dataFolders.prepend(dataHome.isEmpty() ? QDir::homePath() + QLatin1String("/.local/share")
                                           : dataHome);
    for (const QString &data : qAsConst(dataFolders))
        folders << data + QLatin1String("/glib-2.0/schemas");
    bool named = false;
    for (const QString &folder : qAsConst(folders)) {
        QFile compiled(folder + QLatin1String("/gschemas.compiled"));
        if (!folder.isEmpty() && compiled.open(QIODevice::ReadOnly) &&
            compiled.readAll().contains(schema)) {
            named = true;
            break;
        }
    }
    known.insert(schema, named);
    return named;
}

// Without a session bus dconf cannot store anything and complains on the console.
bool backendReachable()
{
    if (!qEnvironmentVariableIsEmpty("GSETTINGS_BACKEND"))
        return true;
    return QDBusConnection::sessionBus().isConnected();
}

} // namespace

GSettingsKey::GSettingsKey(const char *schema, const char *key) : m_schema(schema), m_key(key) {}

GSettings *GSettingsKey::settings() const
{
    if (m_looked)
        return m_settings;
    m_looked = true;
    const char *schema = m_schema.constData();
    if (!schemaMayBeInstalled(m_schema)) {
        qCDebug(lcGSettings) << "no compiled schema names" << schema;
        return nullptr;
    }
    if (!gio()) {
        qCDebug(lcGSettings) << "no GIO for" << schema;
        return nullptr;
    }
    GSettingsSchemaSource *source = gio()->schema_source_get_default();
    GSettingsSchema *found = source ? gio()->schema_source_lookup(source, schema, TRUE) : nullptr;
    if (!found) {
        qCDebug(lcGSettings) << "no schema" << schema;
        return nullptr;
    }
    const bool hasKey = gio()->schema_has_key(found, m_key.constData());
    gio()->schema_unref(found);
    if (!hasKey || !backendReachable()) {
        qCDebug(lcGSettings) << "no usable key" << schema << m_key;
        return nullptr;
    }
    m_settings = gio()->settings_new(schema);
    return m_settings;
}

bool GSettingsKey::available() const
{
    return settings() != nullptr;
}

GSettingsKey::~GSettingsKey()
{
    if (m_settings)
        gio()->object_unref(m_settings);
}

std::optional<QString> GSettingsKey::text() const
{
    if (!settings())
        return std::nullopt;
    gchar *value = gio()->get_string(m_settings, m_key.constData());
    const QString out = QString::fromUtf8(value);
    gio()->free(value);
    return out;
}

bool GSettingsKey::setText(const QString &value)
{
    if (!settings())
        return false;
    // A write, even of the same value, goes through the settings daemon and its disk file.
    if (text() == value)
        return true;
    const bool ok = gio()->set_string(m_settings, m_key.constData(), value.toUtf8().constData());
    gio()->sync();
    return ok;
}

std::optional<bool> GSettingsKey::boolean() const
{
    if (!settings())
        return std::nullopt;
    return gio()->get_boolean(m_settings, m_key.constData()) != FALSE;
}

bool GSettingsKey::setBoolean(bool value)
{
    if (!settings())
        return false;
    if (boolean() == value)
        return true;
    const bool ok = gio()->set_boolean(m_settings, m_key.constData(), value ? TRUE : FALSE);
    gio()->sync();
    return ok;
}

bool GSettingsKey::setUnsigned(quint32 value)
{
    if (!settings())
        return false;
    if (gio()->get_uint(m_settings, m_key.constData()) == value)
        return true;
    const bool ok = gio()->set_uint(m_settings, m_key.constData(), value);
    gio()->sync();
    return ok;
}

bool GSettingsKey::setInteger(int value)
{
    if (!settings())
        return false;
    if (gio()->get_int(m_settings, m_key.constData()) == value)
        return true;
    const bool ok = gio()->set_int(m_settings, m_key.constData(), value);
    gio()->sync();
    return ok;
}

bool GSettingsKey::reset()
{
    if (!settings())
        return false;
    gio()->reset(m_settings, m_key.constData());
    gio()->sync();
    return true;
}
