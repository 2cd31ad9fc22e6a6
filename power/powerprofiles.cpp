#include "powerprofiles.h"

#include <QFile>

namespace {
QString keyOf(const char *prefix, const QString &mode)
{
    return QLatin1String(prefix) + mode;
}
} // namespace

QVariant PowerProfiles::value(const char *prefix, const QString &mode) const
{
    const QString key = keyOf(prefix, mode);
    const SettingsFile user = m_settings.userPowerModes();
    if (user.contains(key))
        return user.value(key);
    return m_settings.defaultPowerModes().value(key);
}

int PowerProfiles::number(const char *prefix, const QString &mode, int lowest, int highest,
                          int fallback) const
{
    const QString key = keyOf(prefix, mode);
    for (const SettingsFile &file : {m_settings.userPowerModes(), m_settings.defaultPowerModes()}) {
        bool ok = false;
        const int value = file.value(key).toString().trimmed().toInt(&ok);
        if (ok && value >= lowest && value <= highest)
            return value;
    }
    return fallback;
}

void PowerProfiles::save(const char *prefix, const QString &mode, const QVariant &value) const
{
    m_settings.userPowerModes().setValue(keyOf(prefix, mode), value);
}

void PowerProfiles::resetUserFile() const
{
    QFile::remove(localPath(m_settings.files().userPowerModes));
}
