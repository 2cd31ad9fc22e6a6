// Applying a profile: the power-scheme commands, the panel, the turbo override and the two
// codes the companion tools read.
#include "powermodes.h"

#include "commandrunner.h"
#include "devices.h"
#include "privileged.h"
#include "ui_mainwindow.h"

#include <QMetaObject>
#include <QWidget>

namespace {
const int kCommandTimeoutMs = 30000;
} // namespace

void PowerModes::runAndActivate(const powercmd::Pair &pair) const
{
    CommandRunner &commands = *m_platform.commands;
    commands.runAndRead(pair.ac, kCommandTimeoutMs);
    commands.runAndRead(pair.dc, kCommandTimeoutMs);
    commands.startShown(powercmd::activateScheme(), ShowMode::Hidden);
}

void PowerModes::setCodes(const QString &fanProfile, const QString &keyboardLed)
{
    if (fanProfile == m_fanProfileCode && keyboardLed == m_keyboardLedCode)
        return;
    m_fanProfileCode = fanProfile;
    m_keyboardLedCode = keyboardLed;
    if (m_statusChanged)
        m_statusChanged();
}

void PowerModes::applyCpuMin()
{
    runAndActivate(powercmd::processorMinimum(ui.silent_cpu_min->value()));
    showLimitRefusal(ui.silent_cpu_min, ui.Cpu_Minimum_Label);
}

void PowerModes::applyCpuMax()
{
    runAndActivate(powercmd::processorMaximum(ui.silent_cpu_max->value()));
    showLimitRefusal(ui.silent_cpu_max, ui.Cpu_Maximum_Label);
}

// A limit the system refused stays the mode's setting, but the slider says it is not in force.
void PowerModes::showLimitRefusal(QWidget *slider, QWidget *label) const
{
    if (!m_platform.privileged)
        return;
    const QString why = m_platform.privileged->takeLimitRefusal();
    if (why.isEmpty() && !slider->toolTip().startsWith(QLatin1String("Not applied: ")))
        return;
    const QString tip = why.isEmpty() ? QString() : QStringLiteral("Not applied: ") + why;
    slider->setToolTip(tip);
    label->setToolTip(tip);
}

void PowerModes::applyScreenOff()
{
    runAndActivate(powercmd::screenOff(ui.TurnOffScreen_combo->currentIndex()));
}

void PowerModes::applySleepAfter()
{
    runAndActivate(powercmd::sleepAfter(ui.Sleep_After_Combo->currentIndex()));
}

void PowerModes::applyLidClose()
{
    runAndActivate(powercmd::lidClose(ui.LidClose_Combo->currentIndex()));
}

void PowerModes::applySchemeBrightness()
{
    runAndActivate(powercmd::schemeBrightness(ui.PowerModeBrightSlider->value()));
}

void PowerModes::applyPanelBrightness()
{
    // The brightness slider's own handler sets the panel.
    if (!ui.ignore_lcd_bright->isChecked())
        ui.Slider_Brightness->setValue(ui.PowerModeBrightSlider->value());
    schedule(1000, "ApplySchemeBright");
}

void PowerModes::applyFanProfile()
{
    setCodes(powercmd::fanProfileCode(ui.comboBox_5->currentIndex(), m_fanProfileCode),
             m_keyboardLedCode);
}

void PowerModes::applyKeyboardLed()
{
    if (m_loading || ui.checkBox->isChecked())
        return;
    setCodes(m_fanProfileCode, QLatin1Char(',') + QString::number(ui.horizontalSlider_2->value()));
    if (m_platform.keyboardLight)
        m_platform.keyboardLight->setLevel(ui.horizontalSlider_2->value());
}

void PowerModes::applyTurboBoost()
{
    if (!ui.turbo_override->isChecked() || !ui.checkBox_DontManageCPU->isChecked())
        return;
    const int value = ui.power_mode_turbo_boost->value();
    const bool differs = ui.Slider_TurboBoost->value() != value;
    if (!differs && !m_turboOverridePending)
        return;
    ui.Slider_TurboBoost->setValue(value);
    qCDebug(lcPower) << "turbo power override" << value;
    QMetaObject::invokeMethod(m_window, "on_Button_ApplyValues_clicked", Qt::DirectConnection);
    if (!differs)
        m_turboOverridePending = false;
}

void PowerModes::applyPowerValues()
{
    // The scheme keeps the panel's present brightness, not the mode's; a panel that cannot be
    // read has no present level, and a 0 never read would darken the screen on the next plan.
    const bool panelRead = ui.Slider_Brightness->isEnabled();
    runAndActivate(powercmd::schemeBrightness(panelRead ? ui.Slider_Brightness->value()
                                                        : ui.PowerModeBrightSlider->value()));
    m_loading = true;
    applyCpuMin();
    applyCpuMax();
    applyScreenOff();
    applySleepAfter();
    applyLidClose();
    applyFanProfile();
    // Never changes the keyboard code while loading: a load updates it only through the
    // keyboard slider's own handler.
    applyKeyboardLed();
    applyTurboBoost();
    if (!ui.ignore_lcd_bright->isChecked())
        schedule(2000, "ApplyPowerBrightness");
    m_loading = false;
}
