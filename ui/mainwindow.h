#pragma once

#include "platform.h"
#include "settingsfiles.h"

#include <QMainWindow>
#include <QPoint>
#include <QSystemTrayIcon>
#include <QUrl>

#include <memory>

namespace Ui {
class MainWindow;
}
class QAction;
class QMenu;
class QTimer;

// Subsystems (each owns the rules of its tabs; the window only forwards its slots to them).
class PowerModes;
class PanelBrightnessControl;
class ExternalMonitor;
class DeviceSwitchPanel;
class CpuTuning;
class ThrottleStopManager;
class VolumeControl;
class SoundSchemes;
class nvidia_api;
class WidgetManager;
class StatusPublisher;
class MyEventFilter;
class ResumeActions;
class Companions;
class UpdateChecker;
class SystemTweaks;
class SupportPage;
class PageLayoutHold;

// The tray menu's actions, shared with the power modes, which mark the selected mode.
struct TrayActions {
    QAction *exit = nullptr;
    QAction *battery = nullptr;
    QAction *silent = nullptr;
    QAction *normal = nullptr;
    QAction *maximum = nullptr;
    QAction *showCenter = nullptr;
};

class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(Platform platform = nativePlatform(), QWidget *parent = nullptr);
    ~MainWindow() override;

    Ui::MainWindow *form() const { return ui; }
    const Platform &platform() const { return m_platform; }
    const Settings &settings() const { return m_settings; }
    QSystemTrayIcon *trayIcon() const { return m_trayIcon; }
    QMenu *trayMenu() const { return m_trayMenu; }
    const TrayActions &trayActions() const { return m_tray; }
    bool isHiddenToTray() const { return m_hidden; }
    int logicalDpi() const { return m_logicalDpi; }
    QTimer *generalTimer() const { return m_generalTimer; }

    PowerModes *powerModes() const { return m_power; }
    PanelBrightnessControl *panel() const { return m_panel; }
    CpuTuning *cpuTuning() const { return m_cpu; }
    ThrottleStopManager *throttleStop() const { return m_throttleStop; }
    VolumeControl *volume() const { return m_volume; }
    WidgetManager *widgets() const { return m_widgets; }
    StatusPublisher *statusPublisher() const { return m_status; }
    MyEventFilter *eventFilter() const { return m_eventFilter; }
    nvidia_api *gpuThread() const { return m_gpuThread; }

    // A second start of the program brings this window back, even from the tray.
    void wakeFromSecondStart();

    // Keeps the window on the screen that holds it (after a drag, a restore or a show).
    void keepOnScreen();

signals:
    // desktop widgets
    void fontsize(int valor);
    void color(int cor);
    void closemainwidget();
    void fontsizebattery(int valor);
    void colorbattery(int cor);
    void closebattery();

public slots:
    // ---- shell
    void SetStyle();
    void ShutdownQuit();
    void center_window();
    void show_hide(QSystemTrayIcon::ActivationReason reason);
    void systemtray_exit();
    void systraypowermodes();
    virtual void timerDone();

    // ---- power modes
    void loadPowerModeValues();
    void ApplyPowerValues();
    void ApplyCpuMin();
    void ApplyCpuMax();
    void ApplyPowerTurboBoost();
    void ApplyPowerBrightness();
    void ApplySchemeBright();
    void turnoffScreenPowerMode();
    void ApplySleepAfterPowerMode();
    void ApplyLidClosePowerMode();
    void ApplyFanProfilePowerMode();
    void ApplyPowerKBLED();
    void GetBatteryState();
    void GetPowerSchemeName();
    void on_battery_mode_clicked();
    void on_silent_mode_clicked();
    void on_normal_mode_clicked();
    void on_maximum_mode_clicked();

    // ---- CPU tuning
    void identifyCpu();
    void getxtuvalues();
    void comprareXTU();
    void on_Button_ApplyValues_clicked();
    void restartts();
    void tscheckstatus();
    void tscheckstatusresult(const QString &text);

    // ---- display and devices
    void GetBrightness();
    void installmof();
    void GetTouchpad();

    // ---- audio
    void GetSysVolume();
    void GetSoundScheme();

    // ---- monitoring
    void NVAPI_GPU1TEMP(int value);
    void NVAPI_GPU2TEMP(int value);
    void NVAPI_GPU1LOAD(int value);
    void NVAPI_GPU2LOAD(int value);
    void NVAPI_GPU1CORECLOCK(int value);
    void NVAPI_GPU1MEMCLOCK(int value);
    void NVAPI_GPU1PSTATE(int value);
    void NVAPI_GPU2CORECLOCK(int value);
    void NVAPI_GPU2MEMCLOCK(int value);
    void NVAPI_GPU2PSTATE(int value);
    void startwidgets();
    void sharedmemtimer();
    void retryStatus();
    void loadIntoSharedMem(const QString &text);

    // ---- suite, resume and maintenance
    void suspendresumeaction();
    void suspendresumeaction2();
    void ApllyBrightFix();
    void StartApps();
    void SetAppVersion();

private slots:
    // ---- shell
    void on_minimizeButton_clicked();
    void on_closeButton_clicked();
    void on_Check_CloseHides_clicked();
    void on_Check_ExitDialog_clicked();
    void on_Check_Startwithwindows_clicked();
    void on_Check_StartHidden_clicked();
    void on_Check_DisableAudio_clicked();

    // ---- power modes
    void on_silent_cpu_min_valueChanged(int value);
    void on_silent_cpu_max_valueChanged(int value);
    void on_power_mode_turbo_boost_valueChanged(int value);
    void on_turbo_override_clicked();
    void on_PowerModeBrightSlider_valueChanged(int value);
    void on_ignore_lcd_bright_clicked();
    void on_TurnOffScreen_combo_currentIndexChanged(int index);
    void on_Sleep_After_Combo_currentIndexChanged(int index);
    void on_LidClose_Combo_currentIndexChanged(int index);
    void on_comboBox_5_currentIndexChanged(int index);
    void on_checkBox_clicked();
    void on_horizontalSlider_2_valueChanged(int value);
    void on_checkBox_2_clicked();
    void on_reset_power_modes_clicked();
    void on_battery_mode_auto_clicked();

    // ---- CPU tuning
    void on_pushButton_clicked();
    void on_undervolt_slider_valueChanged(int value);
    void on_Slider_TurboBoost_valueChanged(int value);
    void on_Slider_TurboTime_valueChanged(int value);
    void on_Core1Spin_valueChanged(int value);
    void on_checkBox_DontManageCPU_clicked();
    void on_Check_PreventXTU_clicked();
    void on_checkBox_ReApply_clicked();
    void on_Button_OpenTS_clicked();
    void on_Button_KillTS_clicked();
    void on_Button_ResetTS_clicked();
    void on_Browser_SettingsTS_clicked();
    void on_Button_ApplyTSsettings_clicked();
    void on_Check_StartTScheck_clicked();

    // ---- display and devices
    void on_Slider_Brightness_valueChanged(int value);
    void on_Check_Adaptive_clicked();
    void on_Button_DisplaySettings_clicked();
    void on_Button_ScreenPower_clicked();
    void on_Slider_SecondBRight_valueChanged(int value);
    void on_Radio_CameraON_clicked();
    void on_Radio_CameraOFF_clicked();
    void on_Radio_TouchpadON_clicked();
    void on_Radio_TouchpadOFF_clicked();
    void on_Radio_WifiON_clicked();
    void on_Radio_WifiOFF_clicked();
    void on_Button_Camera_clicked();
    void on_Button_TouchpadSettings_clicked();
    void on_Button_WifiSettings_clicked();
    void on_Check_DisableWinKey_clicked();

    // ---- audio
    void on_CheckBox_MuteVolume_clicked();
    void on_Slider_Volume_valueChanged(int value);
    void on_Check_ApplyVolumeStart_clicked();
    void on_Slider_StartVolume_valueChanged(int value);
    void on_Check_ApplyVolumeHeadphones_clicked();
    void on_Slider_HeadphoneVolume_valueChanged(int value);
    void on_Button_SoundSettings_clicked();
    void on_comboBox_SoundCheme_currentIndexChanged(int index);

    // ---- monitoring
    void on_StartResorcescheckBox_clicked();
    void on_StartBatteryWidget_clicked();
    void on_colorchange_clicked();
    void on_colorchange_battery_clicked();
    void on_horizontalSliderResorcesFONTsize_valueChanged(int value);
    void on_horizontalSlider_Battery_FONTsize_valueChanged(int value);

    // ---- suite and maintenance
    void on_Button_Updater_clicked();
    void on_Button_FanControl_clicked();
    void on_Button_KeyboardLed_clicked();
    void on_checkstart_clicked();
    void on_Button_CheckForUpdates_clicked();
    void on_Button_Update_clicked();
    void on_Button_SupportPage_clicked();
    void on_Button_OnlineChat_clicked();
    void on_Button_RemoteControl_clicked();
    void on_CheckTDRdelay_clicked();
    void on_CheckDisableFastStartup_clicked();
    void on_check_hkfilter_clicked();
    void on_checkBox_3_clicked();
    void on_checkBox_headphonefix_clicked();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void setVisible(bool visible) override;

private:
    void LoadSettings();
    void applyDensitySizing();
    void applyPalette();
    // Disables, with the reason as tool tip, every control the machine cannot back.
    void applyAvailability();
    void applyDesktopAvailability();
    void openOnAWorkingTab();

    // Construction and start-up hooks of each subsystem, called in the window's fixed order.
    // Each is defined in the subsystem's part of the window (mainwindow_<area>.cpp).
    void createPowerModes();
    void createDisplay();
    void createCpuTuning();
    void createAudio();
    void createMonitoring(); // GPU thread (constructor step 13)
    void publishStatus(const QString &text);
    void startStatusPublisher(); // the shared status block (constructor step 17)
    void createSuite();          // event filter (constructor step 7)
    void applyBrandingTitle();   // constructor steps 12 and 19

    void loadSupportTexts();       // LoadSettings step 4
    void loadCamera();             // step 5
    void loadLatencyFix();         // step 6
    void loadWindowsKey();         // step 7 (blocker box)
    void loadVolumes();            // step 8
    void loadAdaptiveBrightness(); // step 9
    void loadWidgetSettings();     // step 11
    void loadThrottleStopTask();   // step 12
    void loadHeadphoneFix();       // step 13
    void loadPreventXtu();         // step 14
    void loadTweaks();             // step 15
    void loadReApply();            // step 16
    void loadPowerModeSwitch();    // step 17
    void loadBrightFix();          // step 18
    void loadAutoBatteryMode();    // step 19

    void autoBatteryModeTick(); // timerDone step 1
    void refreshAudioDevice();  // timerDone step 2, last part
    void installKeyHookOnce();  // timerDone step 3

    // ---- display and devices: built on first use, since every entry point may come first
    DeviceSwitchPanel &devices();
    ExternalMonitor &externalMonitor();

    Ui::MainWindow *ui;
    Platform m_platform;
    Settings m_settings;

    QSystemTrayIcon *m_trayIcon = nullptr;
    QMenu *m_trayMenu = nullptr;
    TrayActions m_tray;
    QTimer *m_generalTimer = nullptr;

    bool m_dragging = false;
    QPoint m_pressPosition;
    bool m_hidden = false;
    bool m_workingTabChosen = false;
    bool m_desktopAvailabilityPending = false;
    std::unique_ptr<PageLayoutHold> m_pageLayoutHold;
    int m_logicalDpi = 96;
    bool m_keyHookStepDone = false;

    // ---- subsystems
    PowerModes *m_power = nullptr;
    PanelBrightnessControl *m_panel = nullptr;
    ExternalMonitor *m_externalMonitor = nullptr;
    DeviceSwitchPanel *m_devices = nullptr;
    CpuTuning *m_cpu = nullptr;
    ThrottleStopManager *m_throttleStop = nullptr;
    VolumeControl *m_volume = nullptr;
    SoundSchemes *m_soundSchemes = nullptr;
    nvidia_api *m_gpuThread = nullptr;
    WidgetManager *m_widgets = nullptr;
    StatusPublisher *m_status = nullptr;
    bool m_statusRetryPending = false;
    QString m_statusPending; // the text last asked for, published or still to be
    MyEventFilter *m_eventFilter = nullptr;
    ResumeActions *m_resume = nullptr;
    Companions *m_companions = nullptr;
    UpdateChecker *m_updates = nullptr;
    SystemTweaks *m_tweaks = nullptr;
    SupportPage *m_support = nullptr;
};
