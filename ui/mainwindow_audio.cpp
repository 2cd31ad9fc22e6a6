// The window's volume and sound schemes: each slot reads its controls and hands over to the
// subsystem.
#include "mainwindow.h"
#include "ui_mainwindow.h"

#include "soundschemes.h"
#include "volumecontrol.h"

void MainWindow::createAudio()
{
    m_volume = new VolumeControl(*ui, m_settings, *m_platform.audio, *m_platform.commands, this);
    m_soundSchemes = new SoundSchemes(ui->comboBox_SoundCheme, *m_platform.registry, this);
    GetSysVolume();
}

void MainWindow::loadVolumes()
{
    m_volume->load();
}

void MainWindow::refreshAudioDevice()
{
    m_volume->refreshDevice();
}

void MainWindow::GetSysVolume()
{
    m_volume->refresh();
}

void MainWindow::GetSoundScheme()
{
    m_soundSchemes->refresh();
}

void MainWindow::on_CheckBox_MuteVolume_clicked()
{
    m_volume->muteClicked();
}

void MainWindow::on_Slider_Volume_valueChanged(int value)
{
    if (m_volume)
        m_volume->volumeChanged(value);
}

void MainWindow::on_Check_ApplyVolumeStart_clicked()
{
    m_volume->startCheckClicked();
}

void MainWindow::on_Slider_StartVolume_valueChanged(int value)
{
    if (m_volume)
        m_volume->startVolumeChanged(value);
}

void MainWindow::on_Check_ApplyVolumeHeadphones_clicked()
{
    m_volume->headphoneCheckClicked();
}

void MainWindow::on_Slider_HeadphoneVolume_valueChanged(int value)
{
    if (m_volume)
        m_volume->headphoneVolumeChanged(value);
}

void MainWindow::on_Button_SoundSettings_clicked()
{
    m_volume->openSoundSettings();
}

void MainWindow::on_comboBox_SoundCheme_currentIndexChanged(int index)
{
    if (m_soundSchemes)
        m_soundSchemes->choose(index);
}
