#include "settingsfiles.h"

#include <QSettings>

QString localPath(const QString &path)
{
    QString local = path;
    local.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return local;
}

bool iniHoldsValue(const QVariant &stored, const QVariant &value)
{
    if (!stored.isValid() || !value.isValid())
        return false;
    if (stored.userType() == value.userType())
        return stored == value;
    // The INI format keeps numbers and booleans as their text: read back from the file they are
    // strings, while a value this process wrote may still read back as it was written.
    const auto asText = [](const QVariant &v) {
        switch (v.userType()) {
        case QMetaType::Bool:
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
        case QMetaType::Double:
        case QMetaType::QString:
            return true;
        default:
            return false;
        }
    };
    if (!asText(stored) || !asText(value))
        return false;
    if (stored.userType() != QMetaType::QString && value.userType() != QMetaType::QString)
        return false;
    return stored.toString() == value.toString();
}

SettingsFile::SettingsFile(const QString &path, const QString &group)
    : m_path(localPath(path)), m_group(group)
{
}

QVariant SettingsFile::value(const QString &key) const
{
    QSettings file(m_path, QSettings::IniFormat);
    return file.value(m_group + key, QVariant());
}

void SettingsFile::setValue(const QString &key, const QVariant &value) const
{
    QSettings file(m_path, QSettings::IniFormat);
    // Every write rewrites and syncs the whole file; most writes repeat what is there.
    if (iniHoldsValue(file.value(m_group + key), value))
        return;
    file.setValue(m_group + key, value);
}

bool SettingsFile::contains(const QString &key) const
{
    QSettings file(m_path, QSettings::IniFormat);
    return file.contains(m_group + key);
}

void SettingsFile::remove(const QString &key) const
{
    QSettings file(m_path, QSettings::IniFormat);
    if (file.contains(m_group + key))
        file.remove(m_group + key);
}
