// The window's CPU tuning and ThrottleStop: each slot reads its controls and hands over to the subsystem.
#include "mainwindow.h"
#include "ui_mainwindow.h"

void MainWindow::createCpuTuning()
{
}

void MainWindow::loadThrottleStopTask()
{
}

void MainWindow::loadPreventXtu()
{
}

void MainWindow::loadReApply()
{
}

void MainWindow::identifyCpu()
{
}

void MainWindow::getxtuvalues()
{
}

void MainWindow::comprareXTU()
{
}

void MainWindow::on_Button_ApplyValues_clicked()
{
}

void MainWindow::restartts()
{
}

void MainWindow::tscheckstatus()
{
}

void MainWindow::tscheckstatusresult(const QString &)
{
}

void MainWindow::on_pushButton_clicked()
{
}

void MainWindow::on_undervolt_slider_valueChanged(int)
{
}

void MainWindow::on_Slider_TurboBoost_valueChanged(int)
{
}

void MainWindow::on_Slider_TurboTime_valueChanged(int)
{
}

void MainWindow::on_Core1Spin_valueChanged(int)
{
}

void MainWindow::on_checkBox_DontManageCPU_clicked()
{
}

void MainWindow::on_Check_PreventXTU_clicked()
{
}

void MainWindow::on_checkBox_ReApply_clicked()
{
}

void MainWindow::on_Button_OpenTS_clicked()
{
}

void MainWindow::on_Button_KillTS_clicked()
{
}

void MainWindow::on_Button_ResetTS_clicked()
{
}

void MainWindow::on_Browser_SettingsTS_clicked()
{
}

void MainWindow::on_Button_ApplyTSsettings_clicked()
{
}

void MainWindow::on_Check_StartTScheck_clicked()
{
}
