#pragma once

#include "platform.h"
#include "settingsfiles.h"

#include <QObject>
#include <QPointer>

namespace Ui {
class MainWindow;
}
class BatteryWidget;
class UsageWidget;

// The "Widgets" tab: switches the two desktop widgets on and off, passes font size and colour
// to them and remembers all of it in the widget file. Its six signals are the window's own
// (the window forwards them), and each widget it creates listens to the window's signals.
class WidgetManager : public QObject {
    Q_OBJECT
public:
    WidgetManager(Ui::MainWindow &ui, QWidget *window, Platform platform, Settings settings);

    // The widget file's six keys into the tab's controls (a missing font size keeps the
    // control's own), then the widgets that were switched on.
    void restoreControls();
    void startWidgets();

    void resourcesSwitched();
    void batterySwitched();
    void resourcesColorClicked();
    void batteryColorClicked();
    void resourcesFontSizeChanged(int value);
    void batteryFontSizeChanged(int value);

    UsageWidget *usageWidget() const;
    BatteryWidget *batteryWidget() const;

signals:
    void fontsize(int valor);
    void color(int cor);
    void closemainwidget();
    void fontsizebattery(int valor);
    void colorbattery(int cor);
    void closebattery();

private:
    void createUsageWidget(QWidget *parent);
    void createBatteryWidget();
    void connectBatteryWidget();

    Ui::MainWindow &m_ui;
    QWidget *m_window;
    Platform m_platform;
    Settings m_settings;
    QPointer<UsageWidget> m_usage;
    QPointer<BatteryWidget> m_battery;
};
