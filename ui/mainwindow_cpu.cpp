// The window's CPU tuning and ThrottleStop: each slot reads its controls and hands over to the
// subsystem.
#include "mainwindow.h"
#include "ui_mainwindow.h"

#include "cputuning.h"
#include "throttlestop.h"

void MainWindow::createCpuTuning()
{
    m_cpu = new CpuTuning(*ui, m_platform, m_settings, this);
    m_throttleStop = new ThrottleStopManager(*ui, m_platform, m_settings, this);
}

void MainWindow::loadThrottleStopTask()
{
    m_throttleStop->loadStartTask();
}

void MainWindow::loadPreventXtu()
{
    m_cpu->loadPreventXtu();
}

void MainWindow::loadReApply()
{
    m_cpu->loadReApply();
}

void MainWindow::identifyCpu()
{
    m_cpu->identifyCpu();
}

void MainWindow::getxtuvalues()
{
    m_cpu->getxtuvalues();
}

void MainWindow::comprareXTU()
{
    m_cpu->comprareXTU();
}

void MainWindow::on_Button_ApplyValues_clicked()
{
    m_cpu->apply();
}

void MainWindow::restartts()
{
    m_throttleStop->restartts();
}

void MainWindow::tscheckstatus()
{
    m_throttleStop->tscheckstatus();
}

void MainWindow::tscheckstatusresult(const QString &text)
{
    m_throttleStop->tscheckstatusresult(text);
}

void MainWindow::on_pushButton_clicked()
{
    m_cpu->loadRecommended();
}

// The value handlers can run before the subsystem exists: other areas set these controls while
// the window is being built.
void MainWindow::on_undervolt_slider_valueChanged(int value)
{
    if (m_cpu)
        m_cpu->undervoltChanged(value);
}

void MainWindow::on_Slider_TurboBoost_valueChanged(int value)
{
    if (m_cpu)
        m_cpu->turboPowerChanged(value);
}

void MainWindow::on_Slider_TurboTime_valueChanged(int value)
{
    if (m_cpu)
        m_cpu->turboTimeChanged(value);
}

void MainWindow::on_Core1Spin_valueChanged(int)
{
    if (m_cpu)
        m_cpu->core1Changed();
}

void MainWindow::on_checkBox_DontManageCPU_clicked()
{
    m_cpu->manageCpuClicked();
}

void MainWindow::on_Check_PreventXTU_clicked()
{
    m_cpu->preventXtuClicked();
}

void MainWindow::on_checkBox_ReApply_clicked()
{
    m_cpu->reApplyClicked();
}

void MainWindow::on_Button_OpenTS_clicked()
{
    m_throttleStop->open();
}

void MainWindow::on_Button_KillTS_clicked()
{
    m_throttleStop->kill();
}

void MainWindow::on_Button_ResetTS_clicked()
{
    m_throttleStop->reset();
}

void MainWindow::on_Browser_SettingsTS_clicked()
{
    m_throttleStop->browse();
}

void MainWindow::on_Button_ApplyTSsettings_clicked()
{
    m_throttleStop->applySettings();
}

void MainWindow::on_Check_StartTScheck_clicked()
{
    m_throttleStop->startWithSystemClicked();
}
