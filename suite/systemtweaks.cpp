#include "systemtweaks.h"

#include "commandrunner.h"
#include "dialogs.h"
#include "fixhelpers.h"
#include "keys.h"
#include "registry.h"
#include "ui_mainwindow.h"
#include "upperfilters.h"

namespace {

const char kUpperFilters[] = "UpperFilters";

} // namespace

const QString SystemTweaks::graphicsDriversKey =
    QStringLiteral(R"(HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Control\GraphicsDrivers)");
const QString SystemTweaks::sessionPowerKey =
    QStringLiteral(R"(HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Control\Session Manager\Power)");
const QString SystemTweaks::keyboardClassKey = QStringLiteral(
    R"(HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Control\Class\{4d36e96b-e325-11ce-bfc1-08002be10318})");
const QString SystemTweaks::mouseClassKey = QStringLiteral(
    R"(HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Control\Class\{4d36e96f-e325-11ce-bfc1-08002be10318})");

SystemTweaks::SystemTweaks(Ui::MainWindow &ui, const Platform &platform, const Settings &settings,
                           QWidget *window)
    : QObject(window), m_ui(ui), m_platform(platform), m_settings(settings), m_window(window)
{
}

void SystemTweaks::showWhereTheyApply()
{
    const bool here = m_platform.registry->machineSettingsApply();
    QLabel *label = m_ui.label_windows_only;
    label->setVisible(!here);
    label->setWordWrap(true);
    label->setText(here ? QString()
                        : QStringLiteral("Windows only: the five fixes below change Windows "
                                         "settings and start Windows helper programs, so they "
                                         "are switched off here."));
}

void SystemTweaks::loadRegistryBoxes()
{
    const SettingsFile general = m_settings.general();
    m_ui.CheckTDRdelay->setChecked(general.value(keys::tdrDelay).toBool());
    m_ui.check_hkfilter->setChecked(general.value(keys::hotkeyFilter).toBool());
    m_ui.CheckDisableFastStartup->setChecked(general.value(keys::fastStartDisabled).toBool());
}

void SystemTweaks::loadHeadphoneFix()
{
    const bool on = m_settings.general().value(keys::applyHeadphone).toBool();
    m_ui.checkBox_headphonefix->setChecked(on);
    if (on)
        fixhelpers::startHeadphoneHelpers(*m_platform.commands, ShowMode::Hidden);
}

void SystemTweaks::loadBrightnessFix()
{
    const bool on = m_settings.general().value(keys::brightFix).toBool();
    m_ui.checkBox_3->setChecked(on);
    if (on)
        fixhelpers::startBrightnessFix(*m_platform.commands);
}

void SystemTweaks::setLongTdrDelay(bool on)
{
    Registry &registry = *m_platform.registry;
    const auto tdrDelay = QStringLiteral("TdrDelay");
    const auto tdrDdiDelay = QStringLiteral("TdrDdiDelay");
    if (on) {
        registry.setValue(graphicsDriversKey, tdrDelay, 60);
        registry.setValue(graphicsDriversKey, tdrDdiDelay, 60);
    } else {
        // Removed even when someone else set them: the driver's defaults apply again.
        registry.remove(graphicsDriversKey, tdrDelay);
        registry.remove(graphicsDriversKey, tdrDdiDelay);
    }
    m_settings.general().setValue(keys::tdrDelay, on);
}

void SystemTweaks::setFastStartupDisabled(bool disabled)
{
    // A text, not a number: the value has always been written as a string.
    m_platform.registry->setValue(sessionPowerKey, QStringLiteral("HiberbootEnabled"),
                                  disabled ? QStringLiteral("0") : QStringLiteral("1"));
    m_settings.general().setValue(keys::fastStartDisabled, disabled);
}

void SystemTweaks::setHotkeyFiltersRemoved(bool removed)
{
    m_settings.general().setValue(keys::hotkeyFilter, removed);
    // Filters removed earlier are not put back.
    if (!removed)
        return;
    removeUpperFilter(keyboardClassKey, QStringLiteral("HKKbdFltr"));
    removeUpperFilter(mouseClassKey, QStringLiteral("HKMouFltr"));
}

void SystemTweaks::removeUpperFilter(const QString &classKey, const QString &driver)
{
    Registry &registry = *m_platform.registry;
    QStringList filters = registry.value(classKey, QLatin1String(kUpperFilters)).toStringList();
    if (removeFilterDriver(filters, driver))
        registry.setValue(classKey, QLatin1String(kUpperFilters), filters);
}

void SystemTweaks::setBrightnessFix(bool on)
{
    m_settings.general().setValue(keys::brightFix, on);
    if (!on)
        return;
    fixhelpers::startBrightnessFix(*m_platform.commands);
    m_platform.dialogs->message(m_window, QMessageBox::Question, QStringLiteral("Brightness Fix"),
                                QStringLiteral("A reboot may be necessary for brightness "
                                               "controls to work!\n"),
                                QMessageBox::Ok);
}

void SystemTweaks::setHeadphoneFix(bool on)
{
    m_settings.general().setValue(keys::applyHeadphone, on);
    // Unchecking leaves running helpers alone.
    if (on)
        fixhelpers::startHeadphoneHelpers(*m_platform.commands, ShowMode::Hidden);
}
