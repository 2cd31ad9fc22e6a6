#pragma once

// Keys of the general file "settings//varnel.ini" and the widget file, in one place.
namespace keys {
inline constexpr char mainWindowGeometry[] = "mainWindowGeometry";
inline constexpr char mainWindowState[] = "mainWindowState";
inline constexpr char minimizeClose[] = "minimize_close";
inline constexpr char startHidden[] = "start_hidden";
inline constexpr char startWithWindows[] = "start_with_windows";
inline constexpr char dontShowExitDialog[] = "dontshowexitdiag";
inline constexpr char reDontShowExitDialog[] = "Re-dontshowexitdiag";
inline constexpr char disableAudioSync[] = "disableAudioSync";
inline constexpr char camera[] = "Camera";
inline constexpr char latency[] = "Latency";
inline constexpr char disableWindowsKey[] = "disablewindowskey";
inline constexpr char startVolumeValue[] = "StartVolumeValue";
inline constexpr char sliderVolumeHeadphones[] = "SliderVolumeHeadphones";
inline constexpr char volumeHeadphones[] = "VolumeHeadphones";
inline constexpr char volumeStartCheck[] = "VolumeStartCheck";
inline constexpr char adaptiveBrightness[] = "AdaptiveBrightness";
inline constexpr char startThrottleStop[] = "Check_StartTScheck";
inline constexpr char applyHeadphone[] = "applyheadphone";
inline constexpr char preventXtu[] = "PreventXTU";
inline constexpr char dontManageCpu[] = "DontManageCPU";
inline constexpr char reApplyXtu[] = "Re-ApplyXTU";
inline constexpr char undervolt[] = "undervolt";
inline constexpr char boostPower[] = "boostpower";
inline constexpr char turboTime[] = "turbotime";
inline constexpr char tdrDelay[] = "TDRdelay";
inline constexpr char hotkeyFilter[] = "hotkeyfilter";
inline constexpr char fastStartDisabled[] = "FastStartDisabled";
inline constexpr char enablePowerModes[] = "enable_power_modes";
inline constexpr char autoBatteryMode[] = "autobatterymode";
inline constexpr char powerMode[] = "powermode";
inline constexpr char brightFix[] = "brightfix";
inline constexpr char checkStart[] = "checkstart";

// widget file
inline constexpr char resourcesWidget[] = "resorceswidget";
inline constexpr char resourcesWidgetFontSize[] = "resorceswidgetfontsize";
inline constexpr char resourcesColor[] = "resources_color";
inline constexpr char batteryWidget[] = "batterywidget";
inline constexpr char batteryWidgetFontSize[] = "batterywidgetfontsize";
inline constexpr char batteryColor[] = "battery_color";
inline constexpr char widgetGeometry[] = "mainWindowGeometry";
inline constexpr char batteryWindowGeometry[] = "batteryWindowGeometry";

// branding file
inline constexpr char appName[] = "appname";
inline constexpr char highlightRed[] = "highlightcolor_RED";
inline constexpr char highlightGreen[] = "highlightcolor_GREEN";
inline constexpr char highlightBlue[] = "highlightcolor_BLUE";
inline constexpr char supportText[] = "supporttext";
inline constexpr char supportText2[] = "supporttext2";
inline constexpr char supportText3[] = "supporttext3";
inline constexpr char supportText4[] = "supporttext4";
inline constexpr char supportPageUrl[] = "supportpageURL";
inline constexpr char onlineChatUrl[] = "onlinechatURL";
inline constexpr char showOnlineChatButton[] = "showonlinechatbutton";
} // namespace keys
