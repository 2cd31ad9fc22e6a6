// The window's resume handling, support, companions, updates and tweaks: each slot reads its
// controls and hands over to the subsystem.
#include "mainwindow.h"
#include "ui_mainwindow.h"

#include "companions.h"
#include "cputuning.h"
#include "fixhelpers.h"
#include "keys.h"
#include "myeventfilter.h"
#include "resumeactions.h"
#include "supportpage.h"
#include "systemtweaks.h"
#include "updatechecker.h"

#include <QApplication>

void MainWindow::createSuite()
{
    // Created without a parent, as the application holds it; it goes with the window.
    m_eventFilter = new MyEventFilter(m_platform.sleep, m_platform.scheduler);
    qApp->installNativeEventFilter(m_eventFilter);
    connect(this, &QObject::destroyed, m_eventFilter, [filter = m_eventFilter] { delete filter; });
    connect(m_eventFilter, &MyEventFilter::emitawake, this, &MainWindow::suspendresumeaction);
    connect(m_eventFilter, &MyEventFilter::emitawake2, this, &MainWindow::suspendresumeaction2);

    ResumeActions::Rereads rereads;
    rereads.volume = [this] { GetSysVolume(); };
    rereads.brightness = [this] { GetBrightness(); };
    rereads.reapplyTuning = [this] {
        // The stored tuning is applied once per run; a resume lets it apply once more.
        m_cpu->reapplyDone = false;
        getxtuvalues();
    };
    m_resume = new ResumeActions(*ui, m_platform.commands, rereads, this);
    m_support = new SupportPage(*ui, m_platform.commands, m_platform.desktop, m_settings, this);
    m_companions = new Companions(*ui, m_platform, m_settings, this);
    m_updates = new UpdateChecker(*ui, m_platform, m_settings, this);
    m_tweaks = new SystemTweaks(*ui, m_platform, m_settings, this);
    m_tweaks->showWhereTheyApply();
}

void MainWindow::applyBrandingTitle()
{
    ui->Title->setText(m_settings.branding().value(keys::appName).toString());
    m_support->applyBrandButton();
}

void MainWindow::loadSupportTexts()
{
    m_support->loadTexts();
}

void MainWindow::loadHeadphoneFix()
{
    m_tweaks->loadHeadphoneFix();
}

void MainWindow::loadTweaks()
{
    m_tweaks->loadRegistryBoxes();
}

void MainWindow::loadBrightFix()
{
    m_tweaks->loadBrightnessFix();
}

void MainWindow::suspendresumeaction()
{
    m_resume->afterResume();
}

void MainWindow::suspendresumeaction2()
{
    m_resume->afterDeviceMessage();
}

void MainWindow::ApllyBrightFix()
{
    fixhelpers::startBrightnessFix(*m_platform.commands);
}

void MainWindow::StartApps()
{
    m_companions->startRegistered();
}

void MainWindow::SetAppVersion()
{
    m_updates->check();
}

void MainWindow::on_Button_Updater_clicked()
{
    if (m_support->updaterOpensWebsite()) {
        m_support->openWebsite();
        return;
    }
    m_companions->launch(Companions::Updater);
}

void MainWindow::on_Button_FanControl_clicked()
{
    m_companions->launch(Companions::FanControl);
}

void MainWindow::on_Button_KeyboardLed_clicked()
{
    m_companions->launch(Companions::KeyboardLed);
}

void MainWindow::on_checkstart_clicked()
{
    m_companions->rememberCheckStart();
}

void MainWindow::on_Button_CheckForUpdates_clicked()
{
    m_updates->checkByHand();
}

void MainWindow::on_Button_Update_clicked()
{
    m_updates->startUpdater();
}

void MainWindow::on_Button_SupportPage_clicked()
{
    m_support->openSupportPage();
}

void MainWindow::on_Button_OnlineChat_clicked()
{
    m_support->openOnlineChat();
}

void MainWindow::on_Button_RemoteControl_clicked()
{
    m_support->startRemoteControl();
}

void MainWindow::on_CheckTDRdelay_clicked()
{
    m_tweaks->setLongTdrDelay(ui->CheckTDRdelay->isChecked());
}

void MainWindow::on_CheckDisableFastStartup_clicked()
{
    m_tweaks->setFastStartupDisabled(ui->CheckDisableFastStartup->isChecked());
}

void MainWindow::on_check_hkfilter_clicked()
{
    m_tweaks->setHotkeyFiltersRemoved(ui->check_hkfilter->isChecked());
}

void MainWindow::on_checkBox_3_clicked()
{
    m_tweaks->setBrightnessFix(ui->checkBox_3->isChecked());
}

void MainWindow::on_checkBox_headphonefix_clicked()
{
    m_tweaks->setHeadphoneFix(ui->checkBox_headphonefix->isChecked());
}
