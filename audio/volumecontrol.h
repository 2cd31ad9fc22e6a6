#pragma once

#include "settingsfiles.h"

#include <QObject>
#include <QString>

namespace Ui {
class MainWindow;
}
class AudioEndpoint;
class CommandRunner;

// The volume tab: master volume and mute of the default playback device, the output device's
// name, and the two stored volumes applied at start-up and when headphones appear.
class VolumeControl : public QObject {
    Q_OBJECT
public:
    VolumeControl(Ui::MainWindow &ui, const Settings &settings, AudioEndpoint &audio,
                  CommandRunner &commands, QObject *parent);

    // Slider, label and mute box from the device, unless volume sync is switched off.
    void refresh();
    void muteClicked();
    void volumeChanged(int value);
    void startCheckClicked();
    void startVolumeChanged(int value);
    void headphoneCheckClicked();
    void headphoneVolumeChanged(int value);
    void openSoundSettings();

    // Start-up: the stored volumes to their controls, the device name, the start volume.
    void load();
    // The periodic look at the output device: its name, whether the volume controls can be
    // used, and the headphone volume once headphones appear.
    void refreshDevice();

    bool isUpdating() const { return m_updating; }

private:
    // Moves the slider without writing back, then writes the volume once.
    void applyVolume(int percent);
    void showDevice(const QString &name);
    void applyHeadphoneVolumeIfNew(const QString &name);
    QString volumeText(int percent) const;

    Ui::MainWindow &m_ui;
    Settings m_settings;
    AudioEndpoint &m_audio;
    CommandRunner &m_commands;
    // Set while code other than the user moves the volume slider.
    bool m_updating = false;
    QString m_lastDevice;
};
