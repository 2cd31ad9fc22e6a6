#pragma once

#include "commandrunner.h"
#include "platform.h"
#include "settingsfiles.h"

#include <QObject>
#include <QString>
#include <QVector>

namespace Ui {
class MainWindow;
}

// One companion application of the suite.
struct Companion {
    QString locator;    // the locator INI, relative to the Documents folder
    QString executable; // its image name
    QString runValue;   // its value under the per-user log-on Run key
};

// The suite's updater, fan-control and keyboard-light applications: started from their buttons,
// and once after start-up when they are registered to run at log-on but are not running.
class Companions : public QObject {
    Q_OBJECT
public:
    enum App { Updater, FanControl, KeyboardLed };

    static const QVector<Companion> &table();
    static const QString runKey;

    Companions(Ui::MainWindow &ui, const Platform &platform, const Settings &settings,
               QObject *window);

    // Starts the application where its locator file says; the bare image name otherwise, with
    // fallbackMode.
    void launch(App app, ShowMode fallbackMode = ShowMode::ShowNoActivate);
    // Empty when launch() starts something: the program its locator file names, or else one
    // the platform can start by the bare name.
    QString whyCannotLaunch(App app) const;
    // Starts the registered applications that the task list does not show.
    void startRegistered();
    void rememberCheckStart();

    // The Documents folder written the Windows way, as the locator paths expect it.
    static QString documentsFolder();

private:
    // What the companion's locator file under Documents names; empty without one.
    static QString locatedProgram(const Companion &c);

    Ui::MainWindow &m_ui;
    std::shared_ptr<CommandRunner> m_commands;
    std::shared_ptr<Registry> m_registry;
    std::shared_ptr<Availability> m_availability;
    Settings m_settings;
    QObject *m_window;
};
