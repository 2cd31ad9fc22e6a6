// The window's external monitor and device switches: each slot reads its controls and hands over to the subsystem.
#include "mainwindow.h"
#include "ui_mainwindow.h"

void MainWindow::loadCamera()
{
}

void MainWindow::loadLatencyFix()
{
}

void MainWindow::loadWindowsKey()
{
}

void MainWindow::installKeyHookOnce()
{
}

void MainWindow::GetTouchpad()
{
}

void MainWindow::on_Slider_SecondBRight_valueChanged(int)
{
}

void MainWindow::on_Radio_CameraON_clicked()
{
}

void MainWindow::on_Radio_CameraOFF_clicked()
{
}

void MainWindow::on_Radio_TouchpadON_clicked()
{
}

void MainWindow::on_Radio_TouchpadOFF_clicked()
{
}

void MainWindow::on_Radio_WifiON_clicked()
{
}

void MainWindow::on_Radio_WifiOFF_clicked()
{
}

void MainWindow::on_Button_Camera_clicked()
{
}

void MainWindow::on_Button_TouchpadSettings_clicked()
{
}

void MainWindow::on_Check_DisableWinKey_clicked()
{
}
void MainWindow::on_Button_WifiSettings_clicked()
{
}
