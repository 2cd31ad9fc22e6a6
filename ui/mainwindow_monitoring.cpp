// The window's GPU monitor and desktop widgets: each slot reads its controls and hands over to
// the subsystem.
#include "mainwindow.h"
#include "ui_mainwindow.h"

#include "gpulabels.h"
#include "nvidia_api.h"
#include "widgetmanager.h"

void MainWindow::createMonitoring()
{
    // Started before its signals are connected: figures of the first pass may be lost.
    m_gpuThread = new nvidia_api(m_platform.gpu, this);
    m_gpuThread->start(QThread::InheritPriority);
    connect(m_gpuThread, &nvidia_api::GPU1TEMP, this, &MainWindow::NVAPI_GPU1TEMP);
    connect(m_gpuThread, &nvidia_api::GPU2TEMP, this, &MainWindow::NVAPI_GPU2TEMP);
    connect(m_gpuThread, &nvidia_api::GPU1LOAD, this, &MainWindow::NVAPI_GPU1LOAD);
    connect(m_gpuThread, &nvidia_api::GPU2LOAD, this, &MainWindow::NVAPI_GPU2LOAD);
    connect(m_gpuThread, &nvidia_api::GPU1CORECLOCK, this, &MainWindow::NVAPI_GPU1CORECLOCK);
    connect(m_gpuThread, &nvidia_api::GPU1MEMCLOCK, this, &MainWindow::NVAPI_GPU1MEMCLOCK);
    connect(m_gpuThread, &nvidia_api::GPU1PSTATE, this, &MainWindow::NVAPI_GPU1PSTATE);
    connect(m_gpuThread, &nvidia_api::GPU2CORECLOCK, this, &MainWindow::NVAPI_GPU2CORECLOCK);
    connect(m_gpuThread, &nvidia_api::GPU2MEMCLOCK, this, &MainWindow::NVAPI_GPU2MEMCLOCK);
    connect(m_gpuThread, &nvidia_api::GPU2PSTATE, this, &MainWindow::NVAPI_GPU2PSTATE);

    m_widgets = new WidgetManager(*ui, this, m_platform, m_settings);
    connect(m_widgets, &WidgetManager::fontsize, this, &MainWindow::fontsize);
    connect(m_widgets, &WidgetManager::color, this, &MainWindow::color);
    connect(m_widgets, &WidgetManager::closemainwidget, this, &MainWindow::closemainwidget);
    connect(m_widgets, &WidgetManager::fontsizebattery, this, &MainWindow::fontsizebattery);
    connect(m_widgets, &WidgetManager::colorbattery, this, &MainWindow::colorbattery);
    connect(m_widgets, &WidgetManager::closebattery, this, &MainWindow::closebattery);
}

void MainWindow::loadWidgetSettings()
{
    m_widgets->restoreControls();
    startwidgets();
}

void MainWindow::NVAPI_GPU1TEMP(int value)
{
    ui->gpu1_temp->setText(gpuTemperatureText(value));
}

void MainWindow::NVAPI_GPU2TEMP(int) {}

void MainWindow::NVAPI_GPU1LOAD(int value)
{
    ui->gpu1_load->setValue(value);
}

void MainWindow::NVAPI_GPU2LOAD(int) {}

void MainWindow::NVAPI_GPU1CORECLOCK(int value)
{
    ui->gpu1_core_speed->setText(gpuClockText(value));
}

void MainWindow::NVAPI_GPU1MEMCLOCK(int value)
{
    ui->gpu1_mem_speed->setText(gpuMemoryClockText(value));
}

void MainWindow::NVAPI_GPU1PSTATE(int value)
{
    ui->gpu1_p_state->setText(gpuPstateText(value));
}

void MainWindow::NVAPI_GPU2CORECLOCK(int) {}

void MainWindow::NVAPI_GPU2MEMCLOCK(int) {}

void MainWindow::NVAPI_GPU2PSTATE(int) {}

void MainWindow::startwidgets()
{
    m_widgets->startWidgets();
}

void MainWindow::on_StartResorcescheckBox_clicked()
{
    m_widgets->resourcesSwitched();
}

void MainWindow::on_StartBatteryWidget_clicked()
{
    m_widgets->batterySwitched();
}

void MainWindow::on_colorchange_clicked()
{
    m_widgets->resourcesColorClicked();
}

void MainWindow::on_colorchange_battery_clicked()
{
    m_widgets->batteryColorClicked();
}

void MainWindow::on_horizontalSliderResorcesFONTsize_valueChanged(int value)
{
    if (m_widgets) // the form may set its sliders before the subsystems exist
        m_widgets->resourcesFontSizeChanged(value);
}

void MainWindow::on_horizontalSlider_Battery_FONTsize_valueChanged(int value)
{
    if (m_widgets) // the form may set its sliders before the subsystems exist
        m_widgets->batteryFontSizeChanged(value);
}
