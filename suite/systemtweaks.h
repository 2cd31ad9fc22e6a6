#pragma once

#include "platform.h"
#include "settingsfiles.h"

#include <QObject>

namespace Ui {
class MainWindow;
}
class QWidget;

// The one-click Windows fixes of the tuning tab: each box remembers its state in the general
// file, and a click writes the registry or starts a helper program.
class SystemTweaks : public QObject {
    Q_OBJECT
public:
    static const QString graphicsDriversKey;
    static const QString sessionPowerKey;
    static const QString keyboardClassKey;
    static const QString mouseClassKey;

    SystemTweaks(Ui::MainWindow &ui, const Platform &platform, const Settings &settings,
                 QWidget *window);

    // Tells a user of another system that these settings only change Windows.
    void showWhereTheyApply();

    // Start-up: the boxes from their keys. The registry is left as it is; the helpers run.
    void loadRegistryBoxes();
    void loadHeadphoneFix();
    void loadBrightnessFix();

    void setLongTdrDelay(bool on);
    void setFastStartupDisabled(bool disabled);
    void setHotkeyFiltersRemoved(bool removed);
    void setBrightnessFix(bool on);
    void setHeadphoneFix(bool on);

private:
    void removeUpperFilter(const QString &classKey, const QString &driver);

    Ui::MainWindow &m_ui;
    Platform m_platform;
    Settings m_settings;
    QWidget *m_window;
};
