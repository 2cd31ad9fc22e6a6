// The window's panel brightness: each slot reads its controls and hands over to the subsystem.
#include "mainwindow.h"
#include "ui_mainwindow.h"

void MainWindow::createDisplay()
{
}

void MainWindow::loadAdaptiveBrightness()
{
}

void MainWindow::GetBrightness()
{
}

void MainWindow::installmof()
{
}

void MainWindow::on_Slider_Brightness_valueChanged(int)
{
}

void MainWindow::on_Check_Adaptive_clicked()
{
}

void MainWindow::on_Button_DisplaySettings_clicked()
{
}

void MainWindow::on_Button_ScreenPower_clicked()
{
}

