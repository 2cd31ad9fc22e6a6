#include "panelbrightnesscontrol.h"

#include "adaptivebrightness.h"
#include "availability.h"
#include "brightness.h"
#include "commandrunner.h"
#include "desktop.h"
#include "dialogs.h"
#include "powercommands.h"
#include "registry.h"
#include "ui_mainwindow.h"

Q_LOGGING_CATEGORY(lcPanel, "varnel.panel")

namespace {
const int kCommandTimeoutMs = 30000;

QString brightnessLabel(int value)
{
    return QStringLiteral("Brightness: %1%").arg(value);
}
} // namespace

PanelBrightnessControl::PanelBrightnessControl(Ui::MainWindow &form, Settings settings,
                                               Platform platform, QWidget *window,
                                               std::function<bool()> powerModeBusy)
    : QObject(window), ui(form), m_settings(std::move(settings)), m_platform(std::move(platform)),
      m_window(window), m_powerModeBusy(std::move(powerModeBusy))
{
}

void PanelBrightnessControl::runBrightnessFixIfChecked()
{
    if (ui.checkBox_3->isChecked())
        m_platform.commands->startShown(QStringLiteral("Libs\\AuxSwitch.exe"), ShowMode::Hidden);
}

void PanelBrightnessControl::refresh()
{
    m_reading = true;
    const int level = m_platform.brightness->read();
    // A mode being loaded or applied is setting the panel; showing the old level would undo it.
    if (!(m_powerModeBusy && m_powerModeBusy())) {
        m_current = level;
        if (level != m_last)
            runBrightnessFixIfChecked();
        showReadable(level >= 0);
        if (level >= 0) {
            ui.Label_Brightness->setText(brightnessLabel(level));
            ui.Slider_Brightness->setValue(level);
        }
        m_last = level;
    }
    m_reading = false;
}

// A panel that cannot be read shows no figure: "-1%" would be nonsense, and a slider that
// moves nothing would pretend.
void PanelBrightnessControl::showReadable(bool readable)
{
    if (readable == ui.Slider_Brightness->isEnabled())
        return;
    ui.Slider_Brightness->setEnabled(readable);
    if (readable) {
        ui.Slider_Brightness->setToolTip(QString());
        ui.Label_Brightness->setToolTip(QString());
        return;
    }
    QString why = m_platform.availability
                      ? m_platform.availability->whyUnavailable(Feature::PanelBacklight)
                      : QString();
    if (why.isEmpty())
        why = QStringLiteral("The panel's brightness cannot be read right now.");
    ui.Label_Brightness->setText(QStringLiteral("Brightness: not adjustable"));
    ui.Slider_Brightness->setToolTip(why);
    ui.Label_Brightness->setToolTip(why);
}

void PanelBrightnessControl::sliderChanged(int value)
{
    runBrightnessFixIfChecked();
    // A panel that cannot be read takes no level either; a power mode still moves the slider.
    if (m_reading || !ui.Slider_Brightness->isEnabled())
        return;
    m_platform.brightness->write(static_cast<quint32>(value));
    ui.Label_Brightness->setText(brightnessLabel(value));
}

void PanelBrightnessControl::adaptiveClicked()
{
    const powercmd::Pair scheme = powercmd::schemeBrightness(ui.Slider_Brightness->value());
    m_platform.commands->runAndRead(scheme.ac, kCommandTimeoutMs);
    m_platform.commands->runAndRead(scheme.dc, kCommandTimeoutMs);
    applyAdaptiveBrightness(*m_platform.commands, m_settings, ui.Check_Adaptive->isChecked());
}

void PanelBrightnessControl::openDisplaySettings()
{
    m_platform.commands->startShown(QStringLiteral("explorer ms-settings:display"),
                                    ShowMode::Normal);
}

void PanelBrightnessControl::openPowerOptions()
{
    m_platform.commands->startShown(
        QStringLiteral("control.exe /name Microsoft.PowerOptions /page  pagePlanSettings"),
        ShowMode::Normal);
}

bool PanelBrightnessControl::installProvider()
{
    const auto answer = m_platform.dialogs->message(
        m_window, QMessageBox::Question, QStringLiteral("Control Center not installed"),
        QStringLiteral("You do not seem to be using Control Center. For this software to work we "
                       "need to install a small dll for it to work. Can we install it?.\n"),
        QMessageBox::Yes | QMessageBox::No);
    if (answer != QMessageBox::Yes)
        return false;
    qCDebug(lcPanel) << "installing the WMI provider";
    // Nothing here is checked: the sequence always runs to its end.
    CommandRunner &commands = *m_platform.commands;
    commands.runAndRead(QStringLiteral("net stop winmgmt /y"), kCommandTimeoutMs);
    m_platform.desktop->copySystemFile(QStringLiteral("installer//CLEVOMOF.dll"),
                                       QStringLiteral("C://Windows//SysWOW64//clevomof.dll"));
    commands.runAndRead(QStringLiteral("regsvr32 /s C:/Windows/SysWOW64/clevomof.dll"),
                        kCommandTimeoutMs);
    m_platform.registry->setValue(
        QStringLiteral("HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\WmiAcpi"),
        QStringLiteral("MofImagePath"), QStringLiteral("syswow64\\clevomof.dll"));
    commands.runAndRead(QStringLiteral("net start winmgmt"), kCommandTimeoutMs);
    return true;
}
