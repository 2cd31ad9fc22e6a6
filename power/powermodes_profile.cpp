// The profile editor: loading a mode into the shared controls and saving every edit.
#include "powermodes.h"

#include "dialogs.h"
#include "keys.h"
#include "scheduler.h"
#include "ui_mainwindow.h"

#include <QAction>
#include <QMenu>

Q_LOGGING_CATEGORY(lcPower, "varnel.power")

namespace {
const char kOverrideOnTip[] = " Currently being replaced by Power Mode Override value. ";
const char kOverrideOffTip[] = " Adjust CPU Turbo Boost Power ";

QString percentLabel(const char *prefix, int value)
{
    return QLatin1String(prefix) + QString::number(value) + QLatin1Char('%');
}
} // namespace

PowerModes::PowerModes(Ui::MainWindow &form, Settings settings, Platform platform, QWidget *window,
                       std::function<Tray()> tray)
    : QObject(window), ui(form), m_settings(settings), m_profiles(settings),
      m_platform(std::move(platform)), m_window(window), m_tray(std::move(tray))
{
}

QString PowerModes::modeName(Mode mode)
{
    switch (mode) {
    case Mode::Battery:
        return QStringLiteral("battery");
    case Mode::Silent:
        return QStringLiteral("silent");
    case Mode::Normal:
        return QStringLiteral("normal");
    case Mode::Maximum:
        return QStringLiteral("maximum");
    }
    return QString();
}

QString PowerModes::currentPowerModeName() const
{
    if (ui.battery_mode->isChecked())
        return modeName(Mode::Battery);
    if (ui.silent_mode->isChecked())
        return modeName(Mode::Silent);
    if (ui.normal_mode->isChecked())
        return modeName(Mode::Normal);
    if (ui.maximum_mode->isChecked())
        return modeName(Mode::Maximum);
    return QStringLiteral("0");
}

void PowerModes::save(const char *prefix, const QVariant &value) const
{
    m_profiles.save(prefix, currentPowerModeName(), value);
}

void PowerModes::schedule(int ms, const char *slot) const
{
    m_platform.scheduler->singleShot(ms, m_window, slot);
}

void PowerModes::setBatteryModeAutoEnabled(bool on)
{
    ui.battery_mode_auto->setEnabled(on);
}

void PowerModes::showTurboOverride(bool on)
{
    ui.power_mode_turbo_boost->setEnabled(on);
    ui.Slider_TurboBoost->setEnabled(!on);
    ui.Slider_TurboBoost->setToolTip(QLatin1String(on ? kOverrideOnTip : kOverrideOffTip));
}

void PowerModes::updateTurboOverrideText()
{
    ui.turbo_override->setText(QStringLiteral("Turbo Power Override: ") +
                               ui.Label_TurboPowerValue->text());
}

void PowerModes::markTrayMode(const QString &mode)
{
    const Tray tray = m_tray ? m_tray() : Tray();
    if (!m_iconsLoaded) {
        m_iconsLoaded = true;
        m_selectedIcon = QIcon(QStringLiteral("branding/fancontrol_system_tray_selected.png"));
        m_otherIcon = QIcon(QStringLiteral("branding/fancontrol_system_tray_not_selected.png"));
    }
    const std::pair<QAction *, Mode> actions[] = {{tray.battery, Mode::Battery},
                                                  {tray.silent, Mode::Silent},
                                                  {tray.normal, Mode::Normal},
                                                  {tray.maximum, Mode::Maximum}};
    for (const auto &[action, actionMode] : actions) {
        if (!action)
            continue;
        const QIcon &icon = modeName(actionMode) == mode ? m_selectedIcon : m_otherIcon;
        // Setting an icon, even the same one, makes the tray menu lay itself out again.
        if (action->icon().cacheKey() != icon.cacheKey())
            action->setIcon(icon);
    }
}

QRadioButton *PowerModes::modeRadio(Mode mode) const
{
    switch (mode) {
    case Mode::Battery:
        return ui.battery_mode;
    case Mode::Silent:
        return ui.silent_mode;
    case Mode::Normal:
        return ui.normal_mode;
    case Mode::Maximum:
        return ui.maximum_mode;
    }
    return nullptr;
}

void PowerModes::loadPowerModeValues()
{
    if (!ui.checkBox_2->isChecked()) {
        ui.reset_power_modes->setEnabled(false);
        m_loading = false;
        setBatteryModeAutoEnabled(false);
        return;
    }
    m_loading = true;
    setBatteryModeAutoEnabled(true);
    ui.reset_power_modes->setEnabled(true);
    ui.tabWidget->setTabEnabled(0, true);

    const QString stored = m_settings.general().value(QLatin1String(keys::powerMode)).toString();
    for (Mode m : {Mode::Battery, Mode::Silent, Mode::Normal, Mode::Maximum}) {
        if (stored == modeName(m)) {
            markTrayMode(stored);
            modeRadio(m)->setChecked(true);
            break;
        }
    }

    const QString mode = currentPowerModeName();
    auto read = [&](const char *prefix) { return m_profiles.value(prefix, mode); };
    qCDebug(lcPower) << "loading power mode" << mode;

    // Each figure within what its control holds, from the user's file or else the defaults; a
    // key missing from both reads as 0, the control's lowest.
    auto inRange = [&](const char *prefix, const QAbstractSlider *slider) {
        return m_profiles.number(prefix, mode, slider->minimum(), slider->maximum(), 0);
    };
    auto entry = [&](const char *prefix, const QComboBox *combo) {
        return m_profiles.number(prefix, mode, 0, combo->count() - 1, 0);
    };
    const int cpuMin = inRange(profilekey::cpuMin, ui.silent_cpu_min);
    ui.silent_cpu_min->setValue(cpuMin);
    ui.Cpu_Minimum_Label->setText(percentLabel("CPU minimum: ", cpuMin));
    const int cpuMax = inRange(profilekey::cpuMax, ui.silent_cpu_max);
    ui.silent_cpu_max->setValue(cpuMax);
    ui.Cpu_Maximum_Label->setText(percentLabel("CPU maximum: ", cpuMax));
    ui.turbo_override->setChecked(read(profilekey::turboOverride).toBool());
    showTurboOverride(ui.turbo_override->isChecked());
    ui.power_mode_turbo_boost->setValue(inRange(profilekey::turboBoost, ui.power_mode_turbo_boost));
    updateTurboOverrideText();
    ui.PowerModeBrightSlider->setValue(inRange(profilekey::brightness, ui.PowerModeBrightSlider));
    ui.PowerModeBrightSlider_Label->setText(
        percentLabel("Initial LCD Brightness: ", ui.PowerModeBrightSlider->value()));
    ui.ignore_lcd_bright->setChecked(read(profilekey::ignoreBrightness).toBool());
    ui.PowerModeBrightSlider->setEnabled(!ui.ignore_lcd_bright->isChecked());
    ui.TurnOffScreen_combo->setCurrentIndex(entry(profilekey::screenOff, ui.TurnOffScreen_combo));
    ui.Sleep_After_Combo->setCurrentIndex(entry(profilekey::sleepAfter, ui.Sleep_After_Combo));
    ui.LidClose_Combo->setCurrentIndex(entry(profilekey::lidClose, ui.LidClose_Combo));
    ui.comboBox_5->setCurrentIndex(entry(profilekey::fanMode, ui.comboBox_5));
    // Cleared before the keyboard keys on purpose: a keyboard level changed by the load runs its
    // whole handler, which recomputes the keyboard code and writes the level back.
    m_loading = false;
    ui.checkBox->setChecked(read(profilekey::ignoreKeyboard).toBool());
    ui.horizontalSlider_2->setEnabled(!ui.checkBox->isChecked());
    ui.horizontalSlider_2->setValue(inRange(profilekey::keyboardLevel, ui.horizontalSlider_2));

    applyPowerValues();
}

void PowerModes::loadEnabledSwitch()
{
    const bool enabled = m_settings.general().value(QLatin1String(keys::enablePowerModes)).toBool();
    if (enabled) {
        ui.checkBox_2->setChecked(true);
        loadPowerModeValues();
    } else {
        ui.tabWidget->setTabEnabled(0, false);
    }
    setBatteryModeAutoEnabled(enabled);
}

void PowerModes::cpuMinChanged(int value)
{
    ui.Cpu_Minimum_Label->setText(percentLabel("CPU minimum: ", value));
    if (value > ui.silent_cpu_max->value())
        ui.silent_cpu_max->setValue(value + 1);
    if (m_loading)
        return;
    schedule(4000, "ApplyCpuMin");
    save(profilekey::cpuMin, value);
}

void PowerModes::cpuMaxChanged(int value)
{
    ui.Cpu_Maximum_Label->setText(percentLabel("CPU maximum: ", value));
    if (value < ui.silent_cpu_min->value())
        ui.silent_cpu_min->setValue(value - 1);
    if (m_loading)
        return;
    save(profilekey::cpuMax, value);
    schedule(4000, "ApplyCpuMax");
}

void PowerModes::turboBoostChanged(int value)
{
    ui.Slider_TurboBoost->setValue(value);
    updateTurboOverrideText();
    m_turboOverridePending = true;
    if (m_loading)
        return;
    schedule(4000, "ApplyPowerTurboBoost");
    save(profilekey::turboBoost, value);
}

void PowerModes::turboOverrideClicked()
{
    const bool on = ui.turbo_override->isChecked();
    save(profilekey::turboOverride, on);
    showTurboOverride(on);
}

void PowerModes::brightnessChanged(int value)
{
    ui.PowerModeBrightSlider_Label->setText(percentLabel("Initial LCD Brightness: ", value));
    if (m_loading)
        return;
    if (!ui.ignore_lcd_bright->isChecked())
        ui.Slider_Brightness->setValue(value);
    schedule(1000, "ApplySchemeBright");
    save(profilekey::brightness, value);
}

void PowerModes::ignoreBrightnessClicked()
{
    const bool ignore = ui.ignore_lcd_bright->isChecked();
    save(profilekey::ignoreBrightness, ignore);
    ui.PowerModeBrightSlider->setEnabled(!ignore);
    if (!ignore)
        ui.Slider_Brightness->setValue(ui.PowerModeBrightSlider->value());
}

void PowerModes::screenOffChanged()
{
    if (m_loading)
        return;
    schedule(4000, "turnoffScreenPowerMode");
    save(profilekey::screenOff, ui.TurnOffScreen_combo->currentIndex());
}

void PowerModes::sleepAfterChanged()
{
    if (m_loading)
        return;
    schedule(4000, "ApplySleepAfterPowerMode");
    save(profilekey::sleepAfter, ui.Sleep_After_Combo->currentIndex());
}

void PowerModes::lidCloseChanged()
{
    if (m_loading)
        return;
    schedule(4000, "ApplyLidClosePowerMode");
    save(profilekey::lidClose, ui.LidClose_Combo->currentIndex());
}

void PowerModes::fanModeChanged()
{
    if (m_loading)
        return;
    applyFanProfile();
    save(profilekey::fanMode, ui.comboBox_5->currentIndex());
}

void PowerModes::ignoreKeyboardClicked()
{
    const bool ignore = ui.checkBox->isChecked();
    save(profilekey::ignoreKeyboard, ignore);
    ui.horizontalSlider_2->setEnabled(!ignore);
    if (ignore)
        setCodes(m_fanProfileCode, QStringLiteral(",none"));
    else
        applyKeyboardLed();
}

void PowerModes::keyboardLevelChanged(int value)
{
    ui.label_26->setText(percentLabel("Keyboard Brightness: ", value));
    if (m_loading)
        return;
    applyKeyboardLed();
    save(profilekey::keyboardLevel, value);
}

void PowerModes::enableClicked()
{
    const bool on = ui.checkBox_2->isChecked();
    const Tray tray = m_tray ? m_tray() : Tray();
    const QList<QAction *> modeActions = {tray.battery, tray.silent, tray.normal, tray.maximum};
    if (on) {
        m_settings.general().setValue(QLatin1String(keys::enablePowerModes), true);
        ui.tabWidget->setTabEnabled(0, true);
        loadPowerModeValues();
        ui.reset_power_modes->setEnabled(true);
        // Appended after "Show Window Center" and "Exit", unlike the menu built at start.
        for (QAction *action : modeActions) {
            if (tray.menu && action)
                tray.menu->addAction(action);
        }
    } else {
        for (QAction *action : modeActions) {
            if (tray.menu && action)
                tray.menu->removeAction(action);
        }
        m_settings.general().setValue(QLatin1String(keys::enablePowerModes), false);
        ui.tabWidget->setTabEnabled(0, false);
        ui.reset_power_modes->setEnabled(false);
        setCodes(m_fanProfileCode, QStringLiteral(",none"));
    }
    setBatteryModeAutoEnabled(on);
}

void PowerModes::reset()
{
    m_profiles.resetUserFile();
    loadPowerModeValues();
    m_platform.dialogs->message(
        m_window, QMessageBox::Information, QStringLiteral("Reset Power Modes"),
        QStringLiteral("All Power Modes have been reset to default values.\n"), QMessageBox::Ok);
}
