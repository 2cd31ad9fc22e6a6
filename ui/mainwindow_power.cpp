// The window's power modes: each slot reads its controls and hands over to the subsystem.
#include "mainwindow.h"
#include "ui_mainwindow.h"

void MainWindow::createPowerModes()
{
}

void MainWindow::loadPowerModeSwitch()
{
}

void MainWindow::loadAutoBatteryMode()
{
}

void MainWindow::autoBatteryModeTick()
{
}

void MainWindow::loadPowerModeValues()
{
}

void MainWindow::ApplyPowerValues()
{
}

void MainWindow::ApplyCpuMin()
{
}

void MainWindow::ApplyCpuMax()
{
}

void MainWindow::ApplyPowerTurboBoost()
{
}

void MainWindow::ApplyPowerBrightness()
{
}

void MainWindow::ApplySchemeBright()
{
}

void MainWindow::turnoffScreenPowerMode()
{
}

void MainWindow::ApplySleepAfterPowerMode()
{
}

void MainWindow::ApplyLidClosePowerMode()
{
}

void MainWindow::ApplyFanProfilePowerMode()
{
}

void MainWindow::ApplyPowerKBLED()
{
}

void MainWindow::GetBatteryState()
{
}

void MainWindow::GetPowerSchemeName()
{
}

void MainWindow::on_battery_mode_clicked()
{
}

void MainWindow::on_silent_mode_clicked()
{
}

void MainWindow::on_normal_mode_clicked()
{
}

void MainWindow::on_maximum_mode_clicked()
{
}

void MainWindow::on_silent_cpu_min_valueChanged(int)
{
}

void MainWindow::on_silent_cpu_max_valueChanged(int)
{
}

void MainWindow::on_power_mode_turbo_boost_valueChanged(int)
{
}

void MainWindow::on_turbo_override_clicked()
{
}

void MainWindow::on_PowerModeBrightSlider_valueChanged(int)
{
}

void MainWindow::on_ignore_lcd_bright_clicked()
{
}

void MainWindow::on_TurnOffScreen_combo_currentIndexChanged(int)
{
}

void MainWindow::on_Sleep_After_Combo_currentIndexChanged(int)
{
}

void MainWindow::on_LidClose_Combo_currentIndexChanged(int)
{
}

void MainWindow::on_comboBox_5_currentIndexChanged(int)
{
}

void MainWindow::on_checkBox_clicked()
{
}

void MainWindow::on_horizontalSlider_2_valueChanged(int)
{
}

void MainWindow::on_checkBox_2_clicked()
{
}

void MainWindow::on_reset_power_modes_clicked()
{
}

void MainWindow::on_battery_mode_auto_clicked()
{
}
