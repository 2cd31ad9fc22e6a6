// The window's panel brightness: each slot reads its controls and hands over to the subsystem.
#include "mainwindow.h"
#include "ui_mainwindow.h"

#include "keys.h"
#include "panelbrightnesscontrol.h"
#include "powermodes.h"
#include "scheduler.h"

void MainWindow::createDisplay()
{
    m_panel = new PanelBrightnessControl(*ui, m_settings, m_platform, this,
                                         [this] { return m_power->powerModeLoading(); });
}

void MainWindow::loadAdaptiveBrightness()
{
    ui->Check_Adaptive->setChecked(
        m_settings.general().value(QLatin1String(keys::adaptiveBrightness)).toBool());
    m_panel->adaptiveClicked();
}

void MainWindow::GetBrightness()
{
    m_panel->refresh();
}

void MainWindow::installmof()
{
    if (!m_panel->installProvider()) {
        // Declined while the window is still being built: it closes once the start-up has shown
        // it, which ends the program.
        m_platform.scheduler->singleShot(0, this, "close");
        return;
    }
    LoadSettings();
}

void MainWindow::on_Slider_Brightness_valueChanged(int value)
{
    m_panel->sliderChanged(value);
}

void MainWindow::on_Check_Adaptive_clicked()
{
    m_panel->adaptiveClicked();
}

void MainWindow::on_Button_DisplaySettings_clicked()
{
    m_panel->openDisplaySettings();
}

void MainWindow::on_Button_ScreenPower_clicked()
{
    m_panel->openPowerOptions();
}
