#include "volumecontrol.h"

#include "audio.h"
#include "commandrunner.h"
#include "keys.h"
#include "ui_mainwindow.h"

#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcVolume, "varnel.audio.volume")

namespace {

const quint32 kMuted = 999;
const quint32 kNotMuted = 111;
const char kNoDevice[] = "No Audio Device";
const char kHeadphones[] = "Headphones";

// Moves a slider without its change handler writing back.
class GuardedMove {
public:
    explicit GuardedMove(bool &flag) : m_flag(flag), m_previous(flag) { m_flag = true; }
    ~GuardedMove() { m_flag = m_previous; }

private:
    bool &m_flag;
    bool m_previous;
};

QString percentText(int percent)
{
    return QString::number(percent) + QLatin1Char('%');
}

} // namespace

VolumeControl::VolumeControl(Ui::MainWindow &ui, const Settings &settings, AudioEndpoint &audio,
                             CommandRunner &commands, QObject *parent)
    : QObject(parent), m_ui(ui), m_settings(settings), m_audio(audio), m_commands(commands)
{
}

QString VolumeControl::volumeText(int percent) const
{
    return QStringLiteral("Volume: ") + percentText(percent);
}

void VolumeControl::refresh()
{
    if (m_ui.Check_DisableAudio->isChecked())
        return;
    const quint32 volume = m_audio.volumeOperation(AudioEndpoint::ReadVolume, 0.0f, false);
    {
        GuardedMove guard(m_updating);
        m_ui.Slider_Volume->setValue(static_cast<int>(volume));
    }
    const quint32 mute = m_audio.volumeOperation(AudioEndpoint::ReadMute, 0.0f, false);
    if (mute == kMuted) {
        m_ui.Label_Volume->setText(QStringLiteral("Volume: muted"));
        m_ui.Slider_Volume->setEnabled(false);
        m_ui.CheckBox_MuteVolume->setChecked(true);
    } else if (mute == kNotMuted) {
        m_ui.Slider_Volume->setEnabled(true);
        m_ui.CheckBox_MuteVolume->setChecked(false);
        m_ui.Label_Volume->setText(volumeText(static_cast<int>(volume)));
    }
}

void VolumeControl::muteClicked()
{
    if (m_ui.CheckBox_MuteVolume->isChecked()) {
        m_ui.Slider_Volume->setEnabled(false);
        m_ui.Label_Volume->setText(QStringLiteral("Volume: muted"));
        m_audio.volumeOperation(AudioEndpoint::SetMute, 0.0f, true);
    } else {
        // From the slider, not the device: the device may still report the muted level.
        m_ui.Label_Volume->setText(volumeText(m_ui.Slider_Volume->value()));
        m_ui.Slider_Volume->setEnabled(true);
        m_audio.volumeOperation(AudioEndpoint::SetMute, 0.0f, false);
    }
}

void VolumeControl::volumeChanged(int value)
{
    if (m_updating)
        return;
    m_ui.Label_Volume->setText(volumeText(value));
    m_audio.volumeOperation(AudioEndpoint::SetVolume, static_cast<float>(value) / 100.0f, false);
}

void VolumeControl::startCheckClicked()
{
    const bool checked = m_ui.Check_ApplyVolumeStart->isChecked();
    m_settings.general().setValue(keys::volumeStartCheck, checked ? 1 : 0);
    m_ui.Slider_StartVolume->setEnabled(checked);
}

void VolumeControl::startVolumeChanged(int value)
{
    m_ui.Label_StartVolume->setText(percentText(value));
    m_settings.general().setValue(keys::startVolumeValue, value);
}

void VolumeControl::headphoneCheckClicked()
{
    const bool checked = m_ui.Check_ApplyVolumeHeadphones->isChecked();
    m_settings.general().setValue(keys::volumeHeadphones, checked ? 1 : 0);
    m_ui.Slider_HeadphoneVolume->setEnabled(checked);
}

void VolumeControl::headphoneVolumeChanged(int value)
{
    m_ui.Label_HeadphoneVolume->setText(percentText(value));
    m_settings.general().setValue(keys::sliderVolumeHeadphones, value);
}

void VolumeControl::openSoundSettings()
{
    m_commands.startShown(QStringLiteral("explorer ms-settings:sound"), ShowMode::Normal);
}

void VolumeControl::applyVolume(int percent)
{
    {
        GuardedMove guard(m_updating);
        m_ui.Slider_Volume->setValue(percent);
    }
    if (!m_ui.CheckBox_MuteVolume->isChecked())
        m_ui.Label_Volume->setText(volumeText(percent));
    m_audio.volumeOperation(AudioEndpoint::SetVolume, static_cast<float>(percent) / 100.0f, false);
}

void VolumeControl::load()
{
    const SettingsFile general = m_settings.general();
    const int startVolume = general.value(keys::startVolumeValue).toInt();
    const int headphoneVolume = general.value(keys::sliderVolumeHeadphones).toInt();
    m_ui.Slider_StartVolume->setValue(startVolume);
    m_ui.Label_StartVolume->setText(percentText(startVolume));
    m_ui.Slider_HeadphoneVolume->setValue(headphoneVolume);
    m_ui.Label_HeadphoneVolume->setText(percentText(headphoneVolume));

    const bool headphones = general.value(keys::volumeHeadphones).toBool();
    m_ui.Check_ApplyVolumeHeadphones->setChecked(headphones);
    m_ui.Slider_HeadphoneVolume->setEnabled(headphones);
    const bool atStart = general.value(keys::volumeStartCheck).toBool();
    m_ui.Check_ApplyVolumeStart->setChecked(atStart);
    m_ui.Slider_StartVolume->setEnabled(atStart);

    const QString device = m_audio.outputDeviceName();
    m_ui.Label_audio_out->setText(device);
    if (atStart)
        applyVolume(startVolume);
    applyHeadphoneVolumeIfNew(device);
}

void VolumeControl::refreshDevice()
{
    if (m_ui.Check_DisableAudio->isChecked())
        return;
    const QString device = m_audio.outputDeviceName();
    showDevice(device);
    applyHeadphoneVolumeIfNew(device);
}

void VolumeControl::showDevice(const QString &name)
{
    m_ui.Label_audio_out->setText(name);
    const bool present = name != QLatin1String(kNoDevice);
    m_ui.CheckBox_MuteVolume->setEnabled(present);
    m_ui.Slider_Volume->setEnabled(present && !m_ui.CheckBox_MuteVolume->isChecked());
}

// Only when headphones appear: applying it on every look would undo the user's own changes
// while the headphones stay plugged in.
void VolumeControl::applyHeadphoneVolumeIfNew(const QString &name)
{
    const bool now = name.contains(QLatin1String(kHeadphones));
    const bool before = m_lastDevice.contains(QLatin1String(kHeadphones));
    m_lastDevice = name;
    if (!now || before || !m_ui.Check_ApplyVolumeHeadphones->isChecked())
        return;
    qCDebug(lcVolume) << "headphones appeared on" << name;
    applyVolume(m_ui.Slider_HeadphoneVolume->value());
}
