#pragma once

#include "settingsfiles.h"

#include <QString>
#include <QVariant>

// Key prefixes of a power-mode profile; a key is prefix + mode name ("cpu_min_slider_silent").
namespace profilekey {
inline constexpr char cpuMin[] = "cpu_min_slider_";
inline constexpr char cpuMax[] = "cpu_max_slider_";
inline constexpr char turboOverride[] = "turbo_override_";
inline constexpr char turboBoost[] = "power_mode_turbo_boost_";
inline constexpr char brightness[] = "PowerModeBrightSlider_";
inline constexpr char ignoreBrightness[] = "ignore_lcd_bright_";
inline constexpr char screenOff[] = "TurnOffScreen_combo_";
inline constexpr char sleepAfter[] = "Sleep_After_Combo_";
inline constexpr char lidClose[] = "LidClose_Combo_";
inline constexpr char fanMode[] = "comboBox_5_";
inline constexpr char ignoreKeyboard[] = "checkBox_";
inline constexpr char keyboardLevel[] = "horizontalSlider_2_";
} // namespace profilekey

// The two profile files: the shipped defaults and the user's edits. Every read opens both
// files afresh; a key the user file holds wins, anything else comes from the defaults.
class PowerProfiles {
public:
    explicit PowerProfiles(Settings settings) : m_settings(std::move(settings)) {}

    QVariant value(const char *prefix, const QString &mode) const;
    // A whole number from lowest to highest: the user's when it is one, else the shipped
    // default's, else fallback. A damaged or hand-edited figure ("abc", 4000) would otherwise
    // become a command (a processor maximum of 0 %, a timeout of entry -1).
    int number(const char *prefix, const QString &mode, int lowest, int highest,
               int fallback) const;
    // Writes go to the user file only, one key at a time.
    void save(const char *prefix, const QString &mode, const QVariant &value) const;
    // Throws the user's edits away; a missing file is not an error.
    void resetUserFile() const;

private:
    Settings m_settings;
};
