// The window's GPU monitor, desktop widgets, shared status block: each slot reads its controls and hands over to the subsystem.
#include "mainwindow.h"
#include "ui_mainwindow.h"

void MainWindow::createMonitoring()
{
}

void MainWindow::loadWidgetSettings()
{
}

void MainWindow::NVAPI_GPU1TEMP(int)
{
}

void MainWindow::NVAPI_GPU2TEMP(int)
{
}

void MainWindow::NVAPI_GPU1LOAD(int)
{
}

void MainWindow::NVAPI_GPU2LOAD(int)
{
}

void MainWindow::NVAPI_GPU1CORECLOCK(int)
{
}

void MainWindow::NVAPI_GPU1MEMCLOCK(int)
{
}

void MainWindow::NVAPI_GPU1PSTATE(int)
{
}

void MainWindow::NVAPI_GPU2CORECLOCK(int)
{
}

void MainWindow::NVAPI_GPU2MEMCLOCK(int)
{
}

void MainWindow::NVAPI_GPU2PSTATE(int)
{
}

void MainWindow::startwidgets()
{
}

void MainWindow::on_StartResorcescheckBox_clicked()
{
}

void MainWindow::on_StartBatteryWidget_clicked()
{
}

void MainWindow::on_colorchange_clicked()
{
}

void MainWindow::on_colorchange_battery_clicked()
{
}

void MainWindow::on_horizontalSliderResorcesFONTsize_valueChanged(int)
{
}

void MainWindow::on_horizontalSlider_Battery_FONTsize_valueChanged(int)
{
}
