#pragma once

#include <QString>
#include <QVariant>

// The six INI files of the install folder, in their fixed order. Paths are relative to the
// working directory, which is the install folder.
struct SettingsFileSet {
    QString branding = QStringLiteral("branding//varnel_branding.ini");
    QString general = QStringLiteral("settings//varnel.ini");
    QString updateWork = QStringLiteral("updates//work.ini");
    QString widgets = QStringLiteral("settings//settings_widgets.ini");
    QString userPowerModes = QStringLiteral("settings//user_power_mode.ini");
    QString defaultPowerModes = QStringLiteral("settings//default_power_mode.ini");
};

// One INI file accessed key by key: every read and write opens the file afresh, so nothing is
// cached and every change reaches the disk at once. A write of the value already stored leaves
// the file untouched. Keys live under a group prefix
// ("settings/" for all files but the update work file, which uses "workqueue/").
class SettingsFile {
public:
    explicit SettingsFile(const QString &path, const QString &group = QStringLiteral("settings/"));

    // The stored value, or an invalid QVariant when the key is missing (reads as false, 0, "").
    QVariant value(const QString &key) const;
    void setValue(const QString &key, const QVariant &value) const;
    bool contains(const QString &key) const;
    void remove(const QString &key) const;

    QString path() const { return m_path; }

private:
    QString m_path;
    QString m_group;
};

// Whether an INI file whose key reads back as stored already holds value, so that writing it
// would change nothing. Unsure cases answer false: the write then happens as before.
bool iniHoldsValue(const QVariant &stored, const QVariant &value);

// A path written the Windows way ("settings\\x.ini", "ThrottleStop//a.exe") as a local path.
// Both separators name the same file on every platform.
QString localPath(const QString &path);

// The access helpers of the main window: one pair per file.
class Settings {
public:
    explicit Settings(const SettingsFileSet &files = SettingsFileSet()) : m_files(files) {}

    const SettingsFileSet &files() const { return m_files; }
    SettingsFile branding() const { return SettingsFile(m_files.branding); }
    SettingsFile general() const { return SettingsFile(m_files.general); }
    SettingsFile updateWork() const
    {
        return SettingsFile(m_files.updateWork, QStringLiteral("workqueue/"));
    }
    SettingsFile widgets() const { return SettingsFile(m_files.widgets); }
    SettingsFile userPowerModes() const { return SettingsFile(m_files.userPowerModes); }
    SettingsFile defaultPowerModes() const { return SettingsFile(m_files.defaultPowerModes); }

private:
    SettingsFileSet m_files;
};
