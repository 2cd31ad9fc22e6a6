#include "throttlestop.h"

#include "commandrunner.h"
#include "cpulog.h"
#include "desktop.h"
#include "dialogs.h"
#include "keys.h"
#include "scheduler.h"
#include "ui_mainwindow.h"

#include <QFile>

namespace {

// Spelled as the program has always spelled them, mixed separators included.
const QString kProgramForStart = QStringLiteral("ThrottleStop//ThrottleStop.exe");
const QString kProgramForRestart = QStringLiteral("ThrottleStop\\ThrottleStop.exe");
const QString kSettingsFile = QStringLiteral("ThrottleStop\\ThrottleStop.ini");
const QString kStagingFile = QStringLiteral("ThrottleStop.ini");
const QString kNoFileChosen = QStringLiteral("Click Browser to load a settings file...");

const QString kTaskQuery = QStringLiteral("schtasks /query /tn \"ThrottleStop\"");
const QString kTaskCreate =
    QStringLiteral("schtasks /create /tn \"ThrottleStop\" /XML settings\\ts_task.xml");
const QString kTaskDelete = QStringLiteral("schtasks /Delete /tn \"ThrottleStop\" /f");
const QString kKillFromButton = QStringLiteral("taskkill /f /im ThrottleStop.exe");
const QString kKillBeforeRestart = QStringLiteral("taskkill /im ThrottleStop.exe /f");

void removeLocal(const QString &path)
{
    QFile::remove(localPath(path));
}

} // namespace

ThrottleStopManager::ThrottleStopManager(Ui::MainWindow &form, Platform platform, Settings settings,
                                         QWidget *window)
    : QObject(window), ui(form), m_platform(std::move(platform)), m_settings(std::move(settings)),
      m_window(window)
{
}

void ThrottleStopManager::showInformation(const QString &text)
{
    m_platform.dialogs->message(m_window, QMessageBox::Information, QStringLiteral("ThrottleStop"),
                                text, QMessageBox::Ok);
}

void ThrottleStopManager::open()
{
    m_platform.commands->startShown(kProgramForStart, ShowMode::Normal);
    ui.Button_KillTS->setEnabled(true);
}

void ThrottleStopManager::kill()
{
    m_platform.commands->start(kKillFromButton);
    showInformation(QStringLiteral("All instances of ThrottleStop were killed.\n"));
    ui.Label_TSstatus->setText(QStringLiteral("Status: TS is not running!"));
    ui.Button_KillTS->setEnabled(false);
}

// ThrottleStop reads its settings only when it starts. The kill is waited for without a limit,
// so a taskkill that never ends holds the window, as it always has.
void ThrottleStopManager::killAndRestart()
{
    m_platform.commands->runAndRead(kKillBeforeRestart, -1);
    m_platform.scheduler->singleShot(3000, this, "restartts");
}

void ThrottleStopManager::reset()
{
    removeLocal(kSettingsFile);
    showInformation(QStringLiteral("Throttlestop settings deleted. Next time you open Throttlestop "
                                   "it will run as a first run.\n"));
    killAndRestart();
}

void ThrottleStopManager::browse()
{
    const QString chosen = m_platform.dialogs->openFileName(
        m_window, QStringLiteral("Select Profile"), QStringLiteral("C://"),
        QStringLiteral("Ini File (*.ini)"));
    ui.Label_TSSettings_Name->setText(chosen);
    if (ui.Label_TSSettings_Name->text() != kNoFileChosen)
        ui.Button_ApplyTSsettings->setEnabled(true);
    // A cancelled dialog leaves no staging file behind.
    removeLocal(kStagingFile);
    QFile::copy(chosen, localPath(kStagingFile));
}

void ThrottleStopManager::applySettings()
{
    if (!ui.Button_ApplyTSsettings->isEnabled())
        return;
    removeLocal(kSettingsFile);
    QFile::copy(localPath(kStagingFile), localPath(kSettingsFile));
    showInformation(QStringLiteral("New settings loaded, we will now close ThrottleStop and "
                                   "re-launch it to apply the new settings.\n"));
    killAndRestart();
    removeLocal(kStagingFile);
}

void ThrottleStopManager::restartts()
{
    m_platform.commands->startDetached(kProgramForRestart, {}, QString());
    m_platform.scheduler->singleShot(2000, this, "tscheckstatus");
    ui.Button_KillTS->setEnabled(true);
}

void ThrottleStopManager::tscheckstatus()
{
    if (QFile::exists(localPath(kProgramForStart))) {
        if (const QString why = m_platform.desktop->windowsToolsUnavailable(); !why.isEmpty()) {
            disableAll(why);
            return;
        }
        tscheckstatusresult(m_platform.commands->runAndRead(QStringLiteral("tasklist"), 30000));
        return;
    }
    if (tsTabRemoved)
        return;
    qCDebug(lcCpuTuning) << "no ThrottleStop in the install folder; its tab goes";
    ui.tabWidget->removeTab(2);
    tsTabRemoved = true;
}

void ThrottleStopManager::disableAll(const QString &why)
{
    for (QWidget *control : std::initializer_list<QWidget *>{
             ui.Check_StartTScheck, ui.Browser_SettingsTS, ui.Button_ApplyTSsettings,
             ui.Button_OpenTS, ui.Button_KillTS, ui.Button_ResetTS}) {
        control->setEnabled(false);
        control->setToolTip(why);
    }
    ui.Label_TSstatus->setText(QStringLiteral("Status: TS is not running!"));
}

void ThrottleStopManager::tscheckstatusresult(const QString &text)
{
    const bool running = text.contains(QLatin1String("ThrottleStop.exe"));
    ui.Label_TSstatus->setText(running ? QStringLiteral("Status: TS is running!")
                                       : QStringLiteral("Status: TS is not running!"));
    ui.Button_KillTS->setEnabled(running);
}

void ThrottleStopManager::startWithSystemClicked()
{
    const bool checked = ui.Check_StartTScheck->isChecked();
    m_platform.commands->start(checked ? kTaskCreate : kTaskDelete);
    m_settings.general().setValue(keys::startThrottleStop, checked);
}

void ThrottleStopManager::loadStartTask()
{
    const SettingsFile general = m_settings.general();
    const bool wanted = general.value(keys::startThrottleStop).toBool();
    const bool registered =
        m_platform.commands->runAndRead(kTaskQuery, 30000).contains(QLatin1String("ThrottleStop"));
    ui.Check_StartTScheck->setChecked(registered);
    if (!registered && wanted) {
        m_platform.commands->start(kTaskCreate);
        general.setValue(keys::startThrottleStop, true);
        ui.Check_StartTScheck->setChecked(true);
    }
}
