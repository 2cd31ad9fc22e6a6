#pragma once

// The real window over the fake platform in a fresh install folder with the shipped default power
// modes. Settings are written before start(); the log and the scheduler are cleared once the window
// stands (start-up delays are dropped), so a test sees only what it caused.

#include "fakeplatform.h"
#include "mainwindow.h"
#include "testfolder.h"
#include "ui_mainwindow.h"

#include <QVariant>

#include <memory>

struct TestWindow {
    FakePlatform fake;
    TestFolder folder;
    std::unique_ptr<MainWindow> window;

    static constexpr const char *general = "settings/varnel.ini";
    static constexpr const char *user = "settings/user_power_mode.ini";
    static constexpr const char *defaults = "settings/default_power_mode.ini";

    TestWindow() { folder.copyShipped(QLatin1String(defaults)); }

    // Power modes on, in the given mode, as a user who turned them on earlier would start.
    void startWithPowerModes(const QString &mode = QStringLiteral("normal"))
    {
        setGeneral("enable_power_modes", true);
        setGeneral("powermode", mode);
        start();
    }

    // keepRecords: what the start-up itself logged and scheduled stays for the test to check.
    void start(bool keepRecords = false)
    {
        window.reset(); // a restart: the old window is gone before the new one reads the settings
        window = std::make_unique<MainWindow>(fake.bundle());
        if (!keepRecords)
            clearRecords();
    }

    void clearRecords()
    {
        fake.log->clear();
        fake.scheduler->history.clear();
        fake.scheduler->pending.clear();
    }

    Ui::MainWindow &ui() const { return *window->form(); }

    void setGeneral(const char *key, const QVariant &value) const
    {
        folder.setIni(QLatin1String(general), QLatin1String(key), value);
    }
    QVariant generalValue(const char *key) const
    {
        return folder.ini(QLatin1String(general), QLatin1String(key));
    }
    void setUser(const QString &key, const QVariant &value) const
    {
        folder.setIni(QLatin1String(user), key, value);
    }
    QVariant userValue(const QString &key) const { return folder.ini(QLatin1String(user), key); }

    // Keys held by the user file, without the group.
    QStringList userKeys() const
    {
        QSettings ini(folder.file(QLatin1String(user)), QSettings::IniFormat);
        ini.beginGroup(QStringLiteral("settings"));
        return ini.childKeys();
    }

    // Entries of the log that are command runs, started or waited for.
    QStringList commands() const
    {
        return fake.log->matching(QStringLiteral("^(run: |start: |shown )"));
    }

    // How many times the tuning tab's Apply ran: each apply starts the tuning service first.
    int tuningApplies() const
    {
        return fake.log
            ->withPrefix(QStringLiteral("process: powershell -executionPolicy bypass "
                                        "\"start-service -name 'XTU3SERVICE'"))
            .size();
    }
};
