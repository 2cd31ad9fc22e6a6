// The window's resume handling, support, companions, updates and tweaks: each slot reads its controls and hands over to the subsystem.
#include "mainwindow.h"
#include "ui_mainwindow.h"

void MainWindow::createSuite()
{
}

void MainWindow::applyBrandingTitle()
{
    ui->Title->setText(m_settings.branding().value(QStringLiteral("appname")).toString());
}

void MainWindow::loadSupportTexts()
{
}

void MainWindow::loadHeadphoneFix()
{
}

void MainWindow::loadTweaks()
{
}

void MainWindow::loadBrightFix()
{
}

void MainWindow::suspendresumeaction()
{
}

void MainWindow::suspendresumeaction2()
{
}

void MainWindow::ApllyBrightFix()
{
}

void MainWindow::StartApps()
{
}

void MainWindow::SetAppVersion()
{
}

void MainWindow::on_Button_Updater_clicked()
{
}

void MainWindow::on_Button_FanControl_clicked()
{
}

void MainWindow::on_Button_KeyboardLed_clicked()
{
}

void MainWindow::on_checkstart_clicked()
{
}

void MainWindow::on_Button_CheckForUpdates_clicked()
{
}

void MainWindow::on_Button_Update_clicked()
{
}

void MainWindow::on_Button_SupportPage_clicked()
{
}

void MainWindow::on_Button_OnlineChat_clicked()
{
}

void MainWindow::on_Button_RemoteControl_clicked()
{
}

void MainWindow::on_CheckTDRdelay_clicked()
{
}

void MainWindow::on_CheckDisableFastStartup_clicked()
{
}

void MainWindow::on_check_hkfilter_clicked()
{
}

void MainWindow::on_checkBox_3_clicked()
{
}

void MainWindow::on_checkBox_headphonefix_clicked()
{
}

