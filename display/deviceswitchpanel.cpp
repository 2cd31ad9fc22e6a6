#include "deviceswitchpanel.h"

#include "commandrunner.h"
#include "devices.h"
#include "keys.h"
#include "platform.h"
#include "registry.h"
#include "ui_mainwindow.h"

#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcDevices, "varnel.display.devices")

// Fixed for the laptop model this program serves.
const char DeviceSwitchPanel::touchpadInstance[] =
    "PCI\\VEN_8086&DEV_A368&SUBSYS_65D11558&REV_10\\3&11583659&0&A8";
const char DeviceSwitchPanel::touchpadKey[] =
    "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\PrecisionTouchPad\\Status";
const char DeviceSwitchPanel::touchpadValue[] = "Enabled";

namespace {
const char kLatencyFix[] = "LatencyFix.exe";
}

DeviceSwitchPanel::DeviceSwitchPanel(Ui::MainWindow &ui, const Settings &settings,
                                     const Platform &platform, QObject *parent)
    : QObject(parent), m_ui(ui), m_settings(settings), m_commands(*platform.commands),
      m_switches(*platform.switches), m_registry(*platform.registry),
      m_keyBlocker(*platform.keyBlocker)
{
    m_switches.onAnswered([this](int switchId, int value, const QString &why) {
        if (switchId == Camera)
            cameraAnswered(value, why);
    });
}

DeviceSwitchPanel::~DeviceSwitchPanel()
{
    m_switches.onAnswered({});
}

// A refused switch puts the radio buttons back to the camera's last known state and says
// why. The saved choice stays: the next start asks again.
void DeviceSwitchPanel::cameraAnswered(int value, const QString &why)
{
    if (why.isEmpty()) {
        m_camera = value;
        return;
    }
    qCDebug(lcDevices) << "camera switch to" << value << "refused:" << why;
    (m_camera ? m_ui.Radio_CameraON : m_ui.Radio_CameraOFF)->setChecked(true);
    m_ui.Radio_CameraON->setToolTip(why);
    m_ui.Radio_CameraOFF->setToolTip(why);
}

QString DeviceSwitchPanel::devconCommand(const QString &verb)
{
    return QStringLiteral("devcon.exe ") + verb + QStringLiteral(" \"@") +
           QLatin1String(touchpadInstance) + QLatin1Char('"');
}

void DeviceSwitchPanel::cameraOnClicked()
{
    if (!m_ui.Radio_CameraON->isChecked())
        return;
    m_switches.setSwitch(Camera, 1);
    m_settings.general().setValue(keys::camera, 1);
}

void DeviceSwitchPanel::cameraOffClicked()
{
    if (!m_ui.Radio_CameraOFF->isChecked())
        return;
    m_switches.setSwitch(Camera, 0);
    m_settings.general().setValue(keys::camera, 0);
}

// Off: the device goes first, the laptop switch last; on is the exact reverse.
void DeviceSwitchPanel::touchpadOffClicked()
{
    m_commands.runAndRead(devconCommand(QStringLiteral("disable")), 30000);
    m_registry.setValue(QLatin1String(touchpadKey), QLatin1String(touchpadValue), 0);
    m_switches.setSwitch(Touchpad, 0);
}

void DeviceSwitchPanel::touchpadOnClicked()
{
    m_switches.setSwitch(Touchpad, 1);
    m_registry.setValue(QLatin1String(touchpadKey), QLatin1String(touchpadValue), 1);
    m_commands.runAndRead(devconCommand(QStringLiteral("enable")), 30000);
}

void DeviceSwitchPanel::refreshTouchpad()
{
    const bool enabled =
        m_registry.value(QLatin1String(touchpadKey), QLatin1String(touchpadValue)).toBool();
    if (enabled)
        m_ui.Radio_TouchpadON->setChecked(true);
    else
        m_ui.Radio_TouchpadOFF->setChecked(true);
}

void DeviceSwitchPanel::latencyAutoStartClicked()
{
    m_settings.general().setValue(keys::latency, 1);
}

void DeviceSwitchPanel::latencyManualClicked()
{
    m_settings.general().setValue(keys::latency, 0);
}

void DeviceSwitchPanel::startLatencyFix()
{
    m_commands.startShown(QLatin1String(kLatencyFix), ShowMode::Normal);
}

void DeviceSwitchPanel::openCameraApp()
{
    m_commands.startShown(QStringLiteral("explorer microsoft.windows.camera:"), ShowMode::Normal);
}

void DeviceSwitchPanel::openTouchpadSettings()
{
    m_commands.startShown(QStringLiteral("explorer ms-settings:devices-touchpad"),
                          ShowMode::Normal);
}

void DeviceSwitchPanel::windowsKeyClicked()
{
    if (m_ui.Check_DisableWinKey->isChecked()) {
        const bool installed = m_keyBlocker.install();
        qCDebug(lcDevices) << "Windows-key blocker installed:" << installed;
        m_settings.general().setValue(keys::disableWindowsKey, 1);
    } else {
        m_keyBlocker.uninstall();
        m_settings.general().setValue(keys::disableWindowsKey, 0);
    }
}

void DeviceSwitchPanel::loadCamera()
{
    const bool on = m_settings.general().value(keys::camera).toBool();
    m_camera = on ? 1 : 0;
    m_switches.setSwitch(Camera, m_camera);
    if (on)
        m_ui.Radio_CameraON->setChecked(true);
    else
        m_ui.Radio_CameraOFF->setChecked(true);
}

void DeviceSwitchPanel::loadLatencyFix()
{
    const bool autoStart = m_settings.general().value(keys::latency).toBool();
    if (autoStart)
        m_ui.Radio_WifiON->setChecked(true);
    else
        m_ui.Radio_WifiOFF->setChecked(true);
    if (autoStart)
        m_commands.start(QLatin1String(kLatencyFix));
}

void DeviceSwitchPanel::loadWindowsKey()
{
    m_ui.Check_DisableWinKey->setChecked(
        m_settings.general().value(keys::disableWindowsKey).toBool());
}

void DeviceSwitchPanel::installKeyHookIfChecked()
{
    if (m_ui.Check_DisableWinKey->isChecked())
        m_keyBlocker.install();
}
