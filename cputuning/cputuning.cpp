#include "cputuning.h"

#include "commandrunner.h"
#include "cpulog.h"
#include "desktop.h"
#include "dialogs.h"
#include "keys.h"
#include "privileged.h"
#include "scheduler.h"
#include "tuningformat.h"
#include "ui_mainwindow.h"
#include "xtuclient.h"

#include <QSpinBox>

Q_LOGGING_CATEGORY(lcCpuTuning, "varnel.cputuning", QtDebugMsg)

namespace {

QString coreKey(int cores)
{
    return QStringLiteral("core%1").arg(cores);
}

} // namespace

CpuTuning::CpuTuning(Ui::MainWindow &form, Platform platform, Settings settings, QWidget *window)
    : QObject(window), ui(form), m_platform(std::move(platform)), m_settings(std::move(settings)),
      m_window(window)
{
    for (int id : xtu::kReadOrder)
        m_readQueries << xtu::readArguments(id);
    // Only the first spin box has a handler of its own; every one of them can be set.
    for (int cores = 1; cores <= 8; ++cores)
        connect(coreSpin(cores), qOverload<int>(&QSpinBox::valueChanged), this,
                [this, cores] { markKnown(CoreRatio1 + cores - 1); });
}

QString CpuTuning::runQuery(const QString &commandLine)
{
    return m_platform.commands->runAndRead(commandLine, 30000);
}

void CpuTuning::identifyCpu()
{
    cpuName = cleanWmicText(runQuery(QStringLiteral("wmic cpu get Name")), QStringLiteral("Name"));
    if (cpuName.contains(QLatin1String("AMD")))
        ui.tabWidget->setTabEnabled(1, false);

    // The model is still empty here, so rows that need a model string cannot match yet.
    TurboLimits limits;
    if (const auto match = matchCpuProfile(cpuName, laptopModel)) {
        const SettingsFile profile(match->file);
        limits.max = profile.value(QStringLiteral("max")).toInt();
        limits.unlimited = profile.value(QStringLiteral("unlimited")).toString();
    }
    applyTurboLimits(turboLimitsWithDefaults(limits));

    laptopModel = cleanWmicText(runQuery(QStringLiteral("wmic computersystem get model")),
                                QStringLiteral("Model"));
    qCDebug(lcCpuTuning) << "processor" << cpuName << "model" << laptopModel << "turbo max"
                         << turboPowerMax << "unlimited" << turboPowerUnlimited;

    createProcesses();
    applyStartupDecision();
}

void CpuTuning::applyTurboLimits(const TurboLimits &limits)
{
    turboPowerMax = limits.max;
    turboPowerUnlimited = limits.unlimited;
    // The position above the highest finite one stands for unlimited power.
    ui.Slider_TurboBoost->setRange(8, turboPowerMax + 1);
    turboPowerText =
        turboPowerTextFor(ui.Slider_TurboBoost->value(), turboPowerMax, turboPowerUnlimited);
}

void CpuTuning::applyStartupDecision()
{
    const bool managed = m_settings.general().value(keys::dontManageCpu).toBool();
    ui.checkBox_DontManageCPU->setChecked(managed);
    ui.frame_2->setEnabled(managed);
    ui.frame_3->setEnabled(managed);
    ui.pushButton->setEnabled(managed);
    ui.Check_PreventXTU->setEnabled(managed);
    if (managed) {
        serviceReadProcess->startCommand(xtu::serviceStart);
        m_platform.scheduler->singleShot(120000, this, "getxtuvalues");
    } else {
        ui.Button_ApplyValues->setEnabled(false);
    }
    ui.turbo_override->setEnabled(ui.checkBox_DontManageCPU->isChecked());
    showPrivilegedState();
}

// Where tuning goes through a separate helper, the tab says when it is missing or refused,
// instead of keeping figures that were never read.
void CpuTuning::showPrivilegedState()
{
    if (!m_platform.privileged)
        return;
    const QString missing = m_platform.privileged->unavailableReason();
    const QString refusal = m_platform.privileged->takeRefusal();
    const QString why = missing.isEmpty() ? refusal : missing;
    if (!missing.isEmpty() && !ui.checkBox_DontManageCPU->isChecked())
        ui.checkBox_DontManageCPU->setEnabled(false);
    for (QWidget *control :
         {static_cast<QWidget *>(ui.checkBox_DontManageCPU), static_cast<QWidget *>(ui.frame_2),
          static_cast<QWidget *>(ui.frame_3), static_cast<QWidget *>(ui.Button_ApplyValues)})
        control->setToolTip(why);
}

void CpuTuning::loadRecommended()
{
    ui.Button_ApplyValues->setEnabled(true);
    ui.pushButton->setEnabled(false);
    const auto match = matchCpuProfile(cpuName, laptopModel);
    if (!match) {
        m_platform.dialogs->message(m_window, QMessageBox::Question,
                                    QStringLiteral("CPU Information"),
                                    QStringLiteral("Sorry but your CPU is not supported yet.\n"
                                                   "Please give us some more time to tune it!\n"),
                                    QMessageBox::Ok);
        return;
    }
    const SettingsFile profile(match->file);
    ui.undervolt_slider->setValue(profile.value(QStringLiteral("undervolt")).toInt());
    ui.Slider_TurboBoost->setValue(profile.value(QStringLiteral("boostpower")).toInt());
    ui.Slider_TurboTime->setValue(profile.value(QStringLiteral("turbotime")).toInt());
    for (int cores = 1; cores <= match->cores; ++cores)
        coreSpin(cores)->setValue(profile.value(coreKey(cores)).toInt());
}

void CpuTuning::undervoltChanged(int position)
{
    markKnown(Undervolt);
    ui.Button_ApplyValues->setEnabled(true);
    undervoltText = undervoltTextFor(position);
    ui.Label_UnderVolt_Value->setText(undervoltText + QStringLiteral("mV"));
    ui.pushButton->setEnabled(true);
}

void CpuTuning::turboPowerChanged(int position)
{
    markKnown(TurboPower);
    turboPowerText = turboPowerTextFor(position, turboPowerMax, turboPowerUnlimited);
    ui.Label_TurboPowerValue->setText(turboPowerText + QStringLiteral("W"));
    ui.Button_ApplyValues->setEnabled(true);
    ui.pushButton->setEnabled(true);
}

void CpuTuning::turboTimeChanged(int seconds)
{
    markKnown(TurboTime);
    turboTimeText = QString::number(seconds);
    ui.Label_BoostTimeValue->setText(turboTimeText + QStringLiteral("Sec"));
    ui.Button_ApplyValues->setEnabled(true);
    ui.pushButton->setEnabled(true);
}

void CpuTuning::core1Changed()
{
    ui.Button_ApplyValues->setEnabled(true);
    ui.pushButton->setEnabled(true);
}

void CpuTuning::manageCpuClicked()
{
    const SettingsFile general = m_settings.general();
    if (!ui.checkBox_DontManageCPU->isChecked()) {
        ui.turbo_override->setEnabled(false);
        ui.power_mode_turbo_boost->setEnabled(false);
        ui.frame_2->setEnabled(false);
        ui.frame_3->setEnabled(false);
        ui.pushButton->setEnabled(false);
        general.setValue(keys::dontManageCpu, false);
        ui.Check_PreventXTU->setEnabled(false);
        ui.Button_ApplyValues->setEnabled(false);
        return;
    }

    ui.turbo_override->setEnabled(true);
    ui.power_mode_turbo_boost->setEnabled(true);
    const bool installed = m_platform.desktop->systemFileExists(xtu::servicePaths[0]) ||
                           m_platform.desktop->systemFileExists(xtu::servicePaths[1]);
    if (!installed) {
        const auto answer = m_platform.dialogs->message(
            m_window, QMessageBox::Question, QStringLiteral("Intel Extreme Tuning"),
            QStringLiteral("To use this settings you need Intel Extreme Tuning.\n\nAfter "
                           "installing it please restart your laptop. It is highly recommended "
                           "that you select the Prevent background XTU services option!\n\n Do "
                           "you want to download XTU now?\n"),
            QMessageBox::Yes | QMessageBox::No);
        ui.checkBox_DontManageCPU->setChecked(false);
        if (answer == QMessageBox::Yes)
            m_platform.desktop->openUrl(QUrl(xtu::downloadPage));
        return;
    }

    runQuery(xtu::driverInstaller);
    ui.frame_2->setEnabled(true);
    ui.frame_3->setEnabled(true);
    ui.pushButton->setEnabled(true);
    general.setValue(keys::dontManageCpu, true);
    ui.Check_PreventXTU->setEnabled(true);
    if (serviceReadProcess)
        serviceReadProcess->startCommand(xtu::serviceStart);
}

void CpuTuning::preventXtuClicked()
{
    m_settings.general().setValue(keys::preventXtu, ui.Check_PreventXTU->isChecked());
}

void CpuTuning::reApplyClicked()
{
    m_settings.general().setValue(keys::reApplyXtu, ui.checkBox_ReApply->isChecked());
}

void CpuTuning::loadPreventXtu()
{
    ui.Check_PreventXTU->setChecked(m_settings.general().value(keys::preventXtu).toBool());
}

void CpuTuning::loadReApply()
{
    ui.checkBox_ReApply->setChecked(m_settings.general().value(keys::reApplyXtu).toBool());
    if (ui.checkBox_ReApply->isChecked())
        ui.checkBox_ReApply->setEnabled(true);
}

QSpinBox *CpuTuning::coreSpin(int cores) const
{
    QSpinBox *const spins[] = {ui.Core1Spin, ui.Core2Spin, ui.Core3Spin, ui.Core4Spin,
                               ui.Core5Spin, ui.Core6Spin, ui.Core7Spin, ui.Core8Spin};
    return spins[cores - 1];
}

QLabel *CpuTuning::coreLabel(int cores) const
{
    QLabel *const labels[] = {ui.label_9,     ui.label_10,    ui.label_11,    ui.label_12,
                              ui.Label_Core5, ui.Label_Core6, ui.Label_Core7, ui.Label_Core8};
    return labels[cores - 1];
}

int &CpuTuning::readCoreRatio(int cores)
{
    int CpuTuning::*const fields[] = {&CpuTuning::readCoreRatio1, &CpuTuning::readCoreRatio2,
                                      &CpuTuning::readCoreRatio3, &CpuTuning::readCoreRatio4,
                                      &CpuTuning::readCoreRatio5, &CpuTuning::readCoreRatio6,
                                      &CpuTuning::readCoreRatio7, &CpuTuning::readCoreRatio8};
    return this->*fields[cores - 1];
}
