// The window's volume and sound schemes: each slot reads its controls and hands over to the subsystem.
#include "mainwindow.h"
#include "ui_mainwindow.h"

void MainWindow::createAudio()
{
}

void MainWindow::loadVolumes()
{
}

void MainWindow::refreshAudioDevice()
{
}

void MainWindow::GetSysVolume()
{
}

void MainWindow::GetSoundScheme()
{
}

void MainWindow::on_CheckBox_MuteVolume_clicked()
{
}

void MainWindow::on_Slider_Volume_valueChanged(int)
{
}

void MainWindow::on_Check_ApplyVolumeStart_clicked()
{
}

void MainWindow::on_Slider_StartVolume_valueChanged(int)
{
}

void MainWindow::on_Check_ApplyVolumeHeadphones_clicked()
{
}

void MainWindow::on_Slider_HeadphoneVolume_valueChanged(int)
{
}

void MainWindow::on_Button_SoundSettings_clicked()
{
}

void MainWindow::on_comboBox_SoundCheme_currentIndexChanged(int)
{
}
