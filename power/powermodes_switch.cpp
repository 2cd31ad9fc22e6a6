// Switching modes: by hand, from the tray, and automatically when mains power comes and goes.
#include "powermodes.h"

#include "adaptivebrightness.h"
#include "commandrunner.h"
#include "devices.h"
#include "keys.h"
#include "ui_mainwindow.h"

#include <optional>

namespace {
enum AcLine { Offline = 0, Online = 1 };

// modeBeforeBattery: 0 none, 1 silent, 2 normal, 3 maximum.
std::optional<PowerModes::Mode> mainsMode(int remembered)
{
    switch (remembered) {
    case 1:
        return PowerModes::Mode::Silent;
    case 2:
        return PowerModes::Mode::Normal;
    case 3:
        return PowerModes::Mode::Maximum;
    default:
        return std::nullopt;
    }
}
} // namespace

void PowerModes::selectMode(Mode mode)
{
    const QString name = modeName(mode);
    markTrayMode(name);
    m_settings.general().setValue(QLatin1String(keys::powerMode), name);
    // During an apply the choice is recorded and takes effect at the next load.
    if (!m_loading)
        loadPowerModeValues();
}

void PowerModes::autoSwitchClicked()
{
    m_settings.general().setValue(QLatin1String(keys::autoBatteryMode),
                                  ui.battery_mode_auto->isChecked());
}

void PowerModes::loadAutoSwitch()
{
    ui.battery_mode_auto->setChecked(
        m_settings.general().value(QLatin1String(keys::autoBatteryMode)).toBool());
}

void PowerModes::refreshBatteryState()
{
    const int status = m_platform.powerSource->acLineStatus();
    if (status == Offline)
        m_onBattery = 1;
    else if (status == Online)
        m_onBattery = 0;
}

void PowerModes::autoBatteryTick()
{
    refreshBatteryState();
    const bool automatic = ui.battery_mode_auto->isChecked();

    if (automatic && !ui.battery_mode->isChecked() && m_onBattery == 1) {
        if (ui.silent_mode->isChecked())
            m_modeBeforeBattery = 1;
        else if (ui.normal_mode->isChecked())
            m_modeBeforeBattery = 2;
        else if (ui.maximum_mode->isChecked())
            m_modeBeforeBattery = 3;
        qCDebug(lcPower) << "on battery: switching to battery mode from" << m_modeBeforeBattery;
        ui.battery_mode->setChecked(true);
        selectMode(Mode::Battery);
        // The stored mode keeps naming the mains mode, so a restart on battery starts there and
        // the next tick switches again.
        if (const auto mains = mainsMode(m_modeBeforeBattery))
            m_settings.general().setValue(QLatin1String(keys::powerMode), modeName(*mains));
        m_autoSwitchedToBattery = true;
    }

    if (automatic && ui.battery_mode->isChecked() && m_autoSwitchedToBattery && m_onBattery == 0) {
        qCDebug(lcPower) << "on mains: restoring mode" << m_modeBeforeBattery;
        if (const auto mains = mainsMode(m_modeBeforeBattery)) {
            modeRadio(*mains)->setChecked(true);
            selectMode(*mains);
        }
        m_autoSwitchedToBattery = false;
    }
}

void PowerModes::refreshPowerScheme()
{
    const QString scheme =
        m_platform.commands->runAndRead(QStringLiteral("powercfg /getactivescheme"), 30000);
    if (m_activeScheme == QLatin1String("none")) {
        m_activeScheme = scheme;
        return;
    }
    if (scheme == m_activeScheme)
        return;
    m_activeScheme = scheme;
    applyAdaptiveBrightness(*m_platform.commands, m_settings, ui.Check_Adaptive->isChecked());
}
