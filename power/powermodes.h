#pragma once

#include "platform.h"
#include "powercommands.h"
#include "powerprofiles.h"
#include "settingsfiles.h"

#include <QIcon>
#include <QLoggingCategory>
#include <QObject>
#include <QString>

#include <functional>

Q_DECLARE_LOGGING_CATEGORY(lcPower)

class QAction;
class QMenu;
class QRadioButton;
class QWidget;
namespace Ui {
class MainWindow;
}

// The four power modes: the profile editor on the "Power Mode" tab, the application of a
// profile to the power scheme, and the switching between modes (by hand, from the tray and on
// battery). The window forwards its slots here; delayed applies are scheduled on the window by
// slot name, so a scheduled call always lands on the window's own slot. Owned by the window.
class PowerModes : public QObject {
public:
    enum class Mode { Battery, Silent, Normal, Maximum };

    // The tray's menu and mode entries; any of them may be missing before the tray is built.
    struct Tray {
        QMenu *menu = nullptr;
        QAction *battery = nullptr;
        QAction *silent = nullptr;
        QAction *normal = nullptr;
        QAction *maximum = nullptr;
    };

    PowerModes(Ui::MainWindow &ui, Settings settings, Platform platform, QWidget *window,
               std::function<Tray()> tray);

    static QString modeName(Mode mode);

    // "battery", "silent", "normal" or "maximum" from the checked radio button, else "0".
    QString currentPowerModeName() const;

    bool powerModeLoading() const { return m_loading; }
    bool turboOverridePending() const { return m_turboOverridePending; }
    QString fanProfileCode() const { return m_fanProfileCode; }
    QString keyboardLedCode() const { return m_keyboardLedCode; }
    // The text the companion tools read.
    QString statusRecord() const { return m_fanProfileCode + m_keyboardLedCode; }
    // Called whenever the status record changes.
    void onStatusChanged(std::function<void()> handler) { m_statusChanged = std::move(handler); }
    int onBattery() const { return m_onBattery; }
    bool autoSwitchedToBattery() const { return m_autoSwitchedToBattery; }
    int modeBeforeBattery() const { return m_modeBeforeBattery; }

    // ---- profiles and the editor
    void loadPowerModeValues();
    // At start: restores "Enable Power Modes" and loads the remembered mode.
    void loadEnabledSwitch();
    void cpuMinChanged(int value);
    void cpuMaxChanged(int value);
    void turboBoostChanged(int value);
    void turboOverrideClicked();
    void brightnessChanged(int value);
    void ignoreBrightnessClicked();
    void screenOffChanged();
    void sleepAfterChanged();
    void lidCloseChanged();
    void fanModeChanged();
    void ignoreKeyboardClicked();
    void keyboardLevelChanged(int value);
    void enableClicked();
    void reset();

    // ---- applying a profile
    void applyPowerValues();
    void applyCpuMin();
    void applyCpuMax();
    void applyTurboBoost();
    void applyPanelBrightness();
    void applySchemeBrightness();
    void applyScreenOff();
    void applySleepAfter();
    void applyLidClose();
    void applyFanProfile();
    void applyKeyboardLed();

    // ---- switching
    void selectMode(Mode mode);
    void autoSwitchClicked();
    void loadAutoSwitch();
    void autoBatteryTick();
    void refreshBatteryState();
    void refreshPowerScheme();

private:
    void save(const char *prefix, const QVariant &value) const;
    void schedule(int ms, const char *slot) const;
    // Each line as its own waited-for process, then the scheme re-activated.
    void runAndActivate(const powercmd::Pair &pair) const;
    void showLimitRefusal(QWidget *slider, QWidget *label) const;
    void showTurboOverride(bool on);
    void updateTurboOverrideText();
    void markTrayMode(const QString &mode);
    QRadioButton *modeRadio(Mode mode) const;
    void setBatteryModeAutoEnabled(bool on);
    void setCodes(const QString &fanProfile, const QString &keyboardLed);

    Ui::MainWindow &ui;
    Settings m_settings;
    PowerProfiles m_profiles;
    Platform m_platform;
    QWidget *m_window;
    std::function<Tray()> m_tray;
    // Made once: a fresh icon per switch decoded both PNG files again.
    QIcon m_selectedIcon;
    QIcon m_otherIcon;
    bool m_iconsLoaded = false;

    bool m_loading = false;
    bool m_turboOverridePending = false;
    QString m_fanProfileCode = QStringLiteral("none");
    QString m_keyboardLedCode = QStringLiteral(",none");
    std::function<void()> m_statusChanged;
    int m_onBattery = 0;
    bool m_autoSwitchedToBattery = false;
    int m_modeBeforeBattery = 0;
    QString m_activeScheme = QStringLiteral("none");
};
