#pragma once

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QString>
#include <QTemporaryDir>
#include <QTest>

// A fresh install folder as the working directory for one test case; the previous working
// directory comes back when it goes out of scope.
class TestFolder {
public:
    TestFolder() : m_previous(QDir::currentPath()) { QDir::setCurrent(m_dir.path()); }
    ~TestFolder() { QDir::setCurrent(m_previous); }
    TestFolder(const TestFolder &) = delete;
    TestFolder &operator=(const TestFolder &) = delete;

    QString file(const QString &relative) const { return m_dir.filePath(relative); }

    // Writes key=value into the [settings] group of an INI file under this folder.
    void setIni(const QString &relative, const QString &key, const QVariant &value) const
    {
        QSettings ini(file(relative), QSettings::IniFormat); // makes its folder
        ini.setValue(QStringLiteral("settings/") + key, value);
    }
    QVariant ini(const QString &relative, const QString &key) const
    {
        QSettings ini(file(relative), QSettings::IniFormat);
        return ini.value(QStringLiteral("settings/") + key);
    }
    void mkdir(const QString &relative) const { QDir(m_dir.path()).mkpath(relative); }
    // Copies a shipped file from the repository's install folder sources (dist/).
    void copyShipped(const QString &relative) const
    {
        mkdir(QFileInfo(relative).path());
        QVERIFY2(QFile::copy(QStringLiteral(VARNEL_DIST_DIR "/") + relative, file(relative)),
                 qPrintable(relative));
    }

private:
    QString m_previous;
    QTemporaryDir m_dir;
};
