#pragma once

#include "platform.h"
#include "settingsfiles.h"

#include <QLoggingCategory>
#include <QObject>

#include <functional>

Q_DECLARE_LOGGING_CATEGORY(lcPanel)

class QWidget;
namespace Ui {
class MainWindow;
}

// The "Brightness" tab: the built-in panel's level through the slider, adaptive brightness,
// the two shortcuts into the system's settings, and the one-time install of the maker's WMI
// provider. Every writer of the panel goes through the slider. Owned by the window.
class PanelBrightnessControl : public QObject {
public:
    // powerModeBusy tells whether a power mode is being loaded or applied right now.
    PanelBrightnessControl(Ui::MainWindow &ui, Settings settings, Platform platform,
                           QWidget *window, std::function<bool()> powerModeBusy);

    bool reading() const { return m_reading; }
    int currentBrightness() const { return m_current; }
    int lastBrightness() const { return m_last; }

    // Reads the panel into the label and the slider (without writing it back).
    void refresh();
    void sliderChanged(int value);
    void adaptiveClicked();
    void openDisplaySettings();
    void openPowerOptions();
    // Asks, then installs the provider. False when the user declined.
    bool installProvider();

private:
    void runBrightnessFixIfChecked();
    void showReadable(bool readable);

    Ui::MainWindow &ui;
    Settings m_settings;
    Platform m_platform;
    QWidget *m_window;
    std::function<bool()> m_powerModeBusy;

    bool m_reading = false;
    // -1 after a failed read, as the panel reports it.
    int m_current = 0;
    int m_last = 0;
};
