#include "settingsfiles.h"

#include <QSettings>

QString localPath(const QString &path)
{
    QString local = path;
    local.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return local;
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
    file.remove(m_group + key);
}
