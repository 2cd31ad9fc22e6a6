#pragma once

#include "platform.h"
#include "settingsfiles.h"

#include <QObject>
#include <QString>

namespace Ui {
class MainWindow;
}
class QWidget;

// The "ThrottleStop" tab: a copy of ThrottleStop kept in the install folder's "ThrottleStop"
// folder is started, killed, given a settings file chosen by the user, reset, and registered as
// a log-on task. ThrottleStop's settings file is only ever copied, replaced or deleted.
class ThrottleStopManager : public QObject {
    Q_OBJECT

public:
    ThrottleStopManager(Ui::MainWindow &ui, Platform platform, Settings settings, QWidget *window);

    void open();
    void kill();
    void reset();
    void browse();
    void applySettings();
    void startWithSystemClicked();
    // Settings loader: the log-on task as the system has it, re-created when it went missing.
    void loadStartTask();

    // Set once the tab has been removed, so that no other tab goes with a later check.
    bool tsTabRemoved = false;

public slots:
    void restartts();
    void tscheckstatus();
    void tscheckstatusresult(const QString &text);

private:
    void disableAll(const QString &why);
    void showInformation(const QString &text);
    void killAndRestart();

    Ui::MainWindow &ui;
    Platform m_platform;
    Settings m_settings;
    QWidget *m_window;
};
