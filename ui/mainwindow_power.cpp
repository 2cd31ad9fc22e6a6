// The window's power modes: each slot reads its controls and hands over to the subsystem.
#include "mainwindow.h"
#include "ui_mainwindow.h"

#include "powermodes.h"

void MainWindow::createPowerModes()
{
    m_power = new PowerModes(*ui, m_settings, m_platform, this, [this] {
        return PowerModes::Tray{m_trayMenu, m_tray.battery, m_tray.silent, m_tray.normal,
                                m_tray.maximum};
    });
}

void MainWindow::loadPowerModeSwitch()
{
    m_power->loadEnabledSwitch();
}

void MainWindow::loadAutoBatteryMode()
{
    m_power->loadAutoSwitch();
}

void MainWindow::autoBatteryModeTick()
{
    m_power->autoBatteryTick();
}

void MainWindow::loadPowerModeValues()
{
    m_power->loadPowerModeValues();
}

void MainWindow::ApplyPowerValues()
{
    m_power->applyPowerValues();
}

void MainWindow::ApplyCpuMin()
{
    m_power->applyCpuMin();
}

void MainWindow::ApplyCpuMax()
{
    m_power->applyCpuMax();
}

void MainWindow::ApplyPowerTurboBoost()
{
    m_power->applyTurboBoost();
}

void MainWindow::ApplyPowerBrightness()
{
    m_power->applyPanelBrightness();
}

void MainWindow::ApplySchemeBright()
{
    m_power->applySchemeBrightness();
}

void MainWindow::turnoffScreenPowerMode()
{
    m_power->applyScreenOff();
}

void MainWindow::ApplySleepAfterPowerMode()
{
    m_power->applySleepAfter();
}

void MainWindow::ApplyLidClosePowerMode()
{
    m_power->applyLidClose();
}

void MainWindow::ApplyFanProfilePowerMode()
{
    m_power->applyFanProfile();
}

void MainWindow::ApplyPowerKBLED()
{
    m_power->applyKeyboardLed();
}

void MainWindow::GetBatteryState()
{
    m_power->refreshBatteryState();
}

void MainWindow::GetPowerSchemeName()
{
    m_power->refreshPowerScheme();
}

void MainWindow::on_battery_mode_clicked()
{
    m_power->selectMode(PowerModes::Mode::Battery);
}

void MainWindow::on_silent_mode_clicked()
{
    m_power->selectMode(PowerModes::Mode::Silent);
}

void MainWindow::on_normal_mode_clicked()
{
    m_power->selectMode(PowerModes::Mode::Normal);
}

void MainWindow::on_maximum_mode_clicked()
{
    m_power->selectMode(PowerModes::Mode::Maximum);
}

void MainWindow::on_silent_cpu_min_valueChanged(int value)
{
    m_power->cpuMinChanged(value);
}

void MainWindow::on_silent_cpu_max_valueChanged(int value)
{
    m_power->cpuMaxChanged(value);
}

void MainWindow::on_power_mode_turbo_boost_valueChanged(int value)
{
    m_power->turboBoostChanged(value);
}

void MainWindow::on_turbo_override_clicked()
{
    m_power->turboOverrideClicked();
}

void MainWindow::on_PowerModeBrightSlider_valueChanged(int value)
{
    m_power->brightnessChanged(value);
}

void MainWindow::on_ignore_lcd_bright_clicked()
{
    m_power->ignoreBrightnessClicked();
}

void MainWindow::on_TurnOffScreen_combo_currentIndexChanged(int)
{
    m_power->screenOffChanged();
}

void MainWindow::on_Sleep_After_Combo_currentIndexChanged(int)
{
    m_power->sleepAfterChanged();
}

void MainWindow::on_LidClose_Combo_currentIndexChanged(int)
{
    m_power->lidCloseChanged();
}

void MainWindow::on_comboBox_5_currentIndexChanged(int)
{
    m_power->fanModeChanged();
}

void MainWindow::on_checkBox_clicked()
{
    m_power->ignoreKeyboardClicked();
}

void MainWindow::on_horizontalSlider_2_valueChanged(int value)
{
    m_power->keyboardLevelChanged(value);
}

void MainWindow::on_checkBox_2_clicked()
{
    m_power->enableClicked();
}

void MainWindow::on_reset_power_modes_clicked()
{
    m_power->reset();
}

void MainWindow::on_battery_mode_auto_clicked()
{
    m_power->autoSwitchClicked();
}
