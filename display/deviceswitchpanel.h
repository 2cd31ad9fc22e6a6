#pragma once

#include "settingsfiles.h"

#include <QObject>
#include <QString>

namespace Ui {
class MainWindow;
}
struct Platform;
class CommandRunner;
class DeviceSwitches;
class KeyBlocker;
class Registry;

// The "Devices Control" frame and the Windows-key blocker: camera and touchpad switches through
// the laptop's switch call, the touchpad's device and preference, the latency-fix choice.
class DeviceSwitchPanel : public QObject {
    Q_OBJECT
public:
    enum Switch { Camera = 1, WirelessLan = 2, Touchpad = 3 };

    static const char touchpadInstance[];
    static const char touchpadKey[];
    static const char touchpadValue[];

    DeviceSwitchPanel(Ui::MainWindow &ui, const Settings &settings, const Platform &platform,
                      QObject *parent);
    ~DeviceSwitchPanel() override;

    // The check is on the button's state: clicking a checked radio switches again.
    void cameraOnClicked();
    void cameraOffClicked();
    void touchpadOnClicked();
    void touchpadOffClicked();
    // The touchpad radios from the stored preference (missing reads as off).
    void refreshTouchpad();
    void latencyAutoStartClicked();
    void latencyManualClicked();
    void startLatencyFix();
    void openCameraApp();
    void openTouchpadSettings();
    void windowsKeyClicked();

    // Start-up steps: the stored camera state applied, the latency choice, the blocker's box.
    void loadCamera();
    void loadLatencyFix();
    void loadWindowsKey();
    // Once per run, from the periodic tick: the blocker comes back when its box is checked.
    void installKeyHookIfChecked();

    static QString devconCommand(const QString &verb);

private:
    void cameraAnswered(int value, const QString &why);

    Ui::MainWindow &m_ui;
    Settings m_settings;
    CommandRunner &m_commands;
    DeviceSwitches &m_switches;
    int m_camera = 0; // the camera's last known state: as loaded, then as last switched
    Registry &m_registry;
    KeyBlocker &m_keyBlocker;
};
