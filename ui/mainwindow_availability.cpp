// Controls whose action has no equivalent on the running machine: disabled, saying why.
#include "mainwindow.h"
#include "stylesheethold.h"
#include "ui_mainwindow.h"

#include "availability.h"
#include "companions.h"
#include "unavailablecontrols.h"

void MainWindow::applyAvailability()
{
    if (!m_platform.availability)
        return;
    Availability &machine = *m_platform.availability;
    auto hold = [&machine](Feature feature, std::initializer_list<QWidget *> controls) {
        const QString why = machine.whyUnavailable(feature);
        for (QWidget *control : controls)
            holdUnavailable(control, why);
    };
    auto holdProgram = [&machine](const QString &commandLine,
                                  std::initializer_list<QWidget *> controls) {
        const QString why = machine.whyCannotStart(commandLine);
        for (QWidget *control : controls)
            holdUnavailable(control, why);
    };
    auto holdTab = [&machine, this](Feature feature, QWidget *page) {
        const QString why = machine.whyUnavailable(feature);
        const int index = ui->tabWidget->indexOf(page);
        if (why.isEmpty() || index < 0)
            return;
        ui->tabWidget->setTabEnabled(index, false);
        ui->tabWidget->setTabToolTip(index, why);
    };

    holdTab(Feature::NvidiaGpu, ui->tab_10);
    holdTab(Feature::CpuTuning, ui->tab);
    hold(Feature::CpuTuning, {ui->turbo_override, ui->power_mode_turbo_boost});
    hold(Feature::ProcessorLimits, {ui->silent_cpu_min, ui->silent_cpu_max});
    holdItemUnavailable(ui->LidClose_Combo, 2, machine.whyUnavailable(Feature::LidShutdown));
    hold(Feature::CameraSwitch, {ui->Radio_CameraON, ui->Radio_CameraOFF});
    hold(Feature::MonitorControl, {ui->Slider_SecondBRight});
    hold(Feature::SystemTray, {ui->Check_CloseHides, ui->Check_StartHidden});
    hold(Feature::WindowsOnlyFix,
         {ui->CheckTDRdelay, ui->CheckDisableFastStartup, ui->check_hkfilter});

    holdProgram(QStringLiteral(R"(Libs\AuxSwitch.exe)"), {ui->checkBox_3});
    holdProgram(QStringLiteral(R"(Libs\InitHeadphone.exe)"), {ui->checkBox_headphonefix});
    holdProgram(QStringLiteral("LatencyFix.exe"),
                {ui->Radio_WifiON, ui->Radio_WifiOFF, ui->Button_WifiSettings});
    holdProgram(QStringLiteral("Remote.exe"), {ui->Button_RemoteControl});
    holdProgram(QStringLiteral(R"(updates\Update.exe)"), {ui->Button_Update});
    holdProgram(QStringLiteral("explorer microsoft.windows.camera:"), {ui->Button_Camera});
    holdProgram(QStringLiteral("explorer ms-settings:sound"), {ui->Button_SoundSettings});
    holdProgram(QStringLiteral("explorer ms-settings:devices-touchpad"),
                {ui->Button_TouchpadSettings});
    holdProgram(QStringLiteral("explorer ms-settings:display"), {ui->Button_DisplaySettings});
    holdProgram(QStringLiteral("control.exe /name Microsoft.PowerOptions /page  pagePlanSettings"),
                {ui->Button_ScreenPower});

    const std::pair<Companions::App, QWidget *> companions[] = {
        {Companions::Updater, ui->Button_Updater},
        {Companions::FanControl, ui->Button_FanControl},
        {Companions::KeyboardLed, ui->Button_KeyboardLed},
    };
    bool anyCompanion = false;
    for (const auto &companion : companions) {
        const QString why = m_companions->whyCannotLaunch(companion.first);
        holdUnavailable(companion.second, why);
        anyCompanion = anyCompanion || why.isEmpty();
    }
    // Starting the suite's apps at log-on means nothing while none of them can start.
    if (!anyCompanion)
        holdUnavailable(ui->checkstart, QStringLiteral("None of the suite's apps is installed."));

    // A power mode's fan and keyboard levels reach the hardware through the suite's apps,
    // and the keyboard level also directly where the machine lets the program set it.
    const QString noFanControl = m_companions->whyCannotLaunch(Companions::FanControl);
    if (!noFanControl.isEmpty())
        holdUnavailable(ui->comboBox_5,
                        QStringLiteral("Fan modes are set by Fan Control: ") + noFanControl);
    const QString noKeyboardApp = m_companions->whyCannotLaunch(Companions::KeyboardLed);
    const QString noKeyboardLight = machine.whyUnavailable(Feature::KeyboardLight);
    if (!noKeyboardApp.isEmpty() && !noKeyboardLight.isEmpty())
        holdUnavailable(ui->horizontalSlider_2, noKeyboardLight);
    const QString noPanel = machine.whyUnavailable(Feature::PanelBacklight);
    for (QWidget *control : {static_cast<QWidget *>(ui->PowerModeBrightSlider),
                             static_cast<QWidget *>(ui->ignore_lcd_bright)})
        holdUnavailable(control, noPanel);

    // The desktop's settings are asked through GIO and the session bus, which a start hidden
    // in the tray does not otherwise load: asked when the window is first shown.
    m_desktopAvailabilityPending = true;
    if (!m_hidden)
        applyDesktopAvailability();
}

void MainWindow::applyDesktopAvailability()
{
    if (!m_desktopAvailabilityPending)
        return;
    m_desktopAvailabilityPending = false;
    Availability &machine = *m_platform.availability;
    auto hold = [&machine](Feature feature, std::initializer_list<QWidget *> controls) {
        const QString why = machine.whyUnavailable(feature);
        for (QWidget *control : controls)
            holdUnavailable(control, why);
    };
    hold(Feature::ScreenTimeouts, {ui->TurnOffScreen_combo, ui->Sleep_After_Combo});
    hold(Feature::SuperKeyBlocker, {ui->Check_DisableWinKey});
    hold(Feature::TouchpadSwitch, {ui->Radio_TouchpadON, ui->Radio_TouchpadOFF});
    hold(Feature::AmbientLight, {ui->Check_Adaptive});
    hold(Feature::EventSounds, {ui->comboBox_SoundCheme});
}

// Chosen when the window is first shown: a start hidden in the tray lays out no other page.
void MainWindow::setVisible(bool visible)
{
    if (visible) {
        StyleSheetHold::release();
        if (m_pageLayoutHold) {
            m_pageLayoutHold->release();
            m_pageLayoutHold.reset();
        }
        applyDesktopAvailability();
    }
    if (visible && !m_workingTabChosen) {
        m_workingTabChosen = true;
        openOnAWorkingTab();
    }
    QMainWindow::setVisible(visible);
}

void MainWindow::openOnAWorkingTab()
{
    if (tabWorks(*ui->tabWidget, ui->tabWidget->currentIndex()))
        return;
    const int working = firstWorkingTab(*ui->tabWidget);
    if (working >= 0)
        ui->tabWidget->setCurrentIndex(working);
}
