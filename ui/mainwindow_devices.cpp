// The window's external monitor and device switches: each slot reads its controls and hands over to
// the subsystem.
#include "mainwindow.h"
#include "ui_mainwindow.h"

#include "deviceswitchpanel.h"
#include "externalmonitor.h"

DeviceSwitchPanel &MainWindow::devices()
{
    if (!m_devices)
        m_devices = new DeviceSwitchPanel(*ui, m_settings, m_platform, this);
    return *m_devices;
}

ExternalMonitor &MainWindow::externalMonitor()
{
    if (!m_externalMonitor)
        m_externalMonitor = new ExternalMonitor(*m_platform.monitors, this, this);
    return *m_externalMonitor;
}

void MainWindow::loadCamera()
{
    devices().loadCamera();
}

void MainWindow::loadLatencyFix()
{
    devices().loadLatencyFix();
}

void MainWindow::loadWindowsKey()
{
    devices().loadWindowsKey();
}

void MainWindow::installKeyHookOnce()
{
    devices().installKeyHookIfChecked();
}

void MainWindow::GetTouchpad()
{
    devices().refreshTouchpad();
}

void MainWindow::on_Slider_SecondBRight_valueChanged(int value)
{
    externalMonitor().setLuminance(value);
}

void MainWindow::on_Radio_CameraON_clicked()
{
    devices().cameraOnClicked();
}

void MainWindow::on_Radio_CameraOFF_clicked()
{
    devices().cameraOffClicked();
}

void MainWindow::on_Radio_TouchpadON_clicked()
{
    devices().touchpadOnClicked();
}

void MainWindow::on_Radio_TouchpadOFF_clicked()
{
    devices().touchpadOffClicked();
}

void MainWindow::on_Radio_WifiON_clicked()
{
    devices().latencyAutoStartClicked();
}

void MainWindow::on_Radio_WifiOFF_clicked()
{
    devices().latencyManualClicked();
}

void MainWindow::on_Button_Camera_clicked()
{
    devices().openCameraApp();
}

void MainWindow::on_Button_TouchpadSettings_clicked()
{
    devices().openTouchpadSettings();
}

void MainWindow::on_Check_DisableWinKey_clicked()
{
    devices().windowsKeyClicked();
}

void MainWindow::on_Button_WifiSettings_clicked()
{
    devices().startLatencyFix();
}
