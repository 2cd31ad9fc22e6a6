#include "platform.h"

#include "autostartentries.h"
#include "backlight.h"
#include "commandtable.h"
#include "ddcmonitors.h"
#include "desktoppower.h"
#include "desktopsettings.h"
#include "devicecommands.h"
#include "dialogs.h"
#include "helperclient.h"
#include "kconfigfile.h"
#include "kdedesktop.h"
#include "keyboardlight.h"
#include "linuxavailability.h"
#include "linuxbattery.h"
#include "linuxcommands.h"
#include "linuxdesktop.h"
#include "linuxidentity.h"
#include "linuxregistry.h"
#include "linuxsampler.h"
#include "nvmlgpu.h"
#include "powercfgcommands.h"
#include "powersupply.h"
#include "processcommands.h"
#include "pulseaudioendpoint.h"
#include "rfkillswitch.h"
#include "scheduler.h"
#include "sleeplogind.h"
#include "soundschemestore.h"
#include "systemhelper.h"
#include "touchpadpreference.h"
#include "tuningcommands.h"

Platform linuxPlatform()
{
    auto helper = std::make_shared<HelperClient>(systemHelperAvailable);
    auto table = std::make_shared<CommandTable>();
    addTuningCommands(*table, helper);
    addProcessorLimitCommands(*table, helper);
    addStartupCommands(*table);
    addDeviceCommands(*table);
    addProcessCommands(*table);
    addBatteryCommands(*table);
    addPowerCommands(*table, std::make_shared<SessionDesktopSettings>());
    // A Plasma session takes Plasma's files; any other desktop is asked for GNOME's settings.
    const bool plasma = plasmaSession();
    std::shared_ptr<DesktopTimeouts> timeouts;
    std::shared_ptr<KeyBlocker> keyBlocker;
    if (plasma) {
        timeouts = std::make_shared<KdeTimeouts>(LinuxPaths::configHome());
        keyBlocker = std::make_shared<KdeMetaKeyBlocker>(LinuxPaths::configHome());
    } else {
        timeouts = std::make_shared<GnomeTimeouts>();
        keyBlocker = std::make_shared<OverlayKeyBlocker>();
    }
    addDesktopPowerCommands(*table, timeouts, std::make_shared<LogindLidSwitch>());

    auto registry = std::make_shared<LinuxRegistry>();
    auto userStore = std::make_shared<UserStoreRegistry>();
    const auto touchpad = std::make_shared<SessionTouchpad>();
    registry->addRoute(TouchpadRegistry::key,
                       std::make_shared<TouchpadRegistry>(touchpad, userStore));
    const auto eventSounds = SoundSchemeStore::sessionEventSounds();
    registry->addRoute(SoundSchemeStore::prefix,
                       std::make_shared<SoundSchemeStore>(userStore, eventSounds));
    registry->addRoute(AutostartEntries::runKey, std::make_shared<AutostartEntries>());

    Platform p;
    p.commands = std::make_shared<LinuxCommandRunner>(table);
    p.registry = registry;
    p.identity = std::make_shared<LinuxIdentity>();
    p.brightness = std::make_shared<SysfsBacklight>();
    p.switches = std::make_shared<LinuxDeviceSwitches>(QStringLiteral("/dev/rfkill"), helper);
    p.monitors = std::make_shared<DdcMonitorControl>(std::make_unique<LibDdcutilBus>());
    p.keyBlocker = keyBlocker;
    p.keyboardLight = std::make_shared<LedKeyboardLight>();
    p.powerSource = std::make_shared<SysfsPowerSupply>();
    p.audio = std::make_shared<PulseAudioEndpoint>();
    p.gpu = std::make_shared<NvmlGpuSensors>();
    p.sampler = std::make_shared<LinuxSampler>();
    p.sleep = std::make_shared<LogindSleepNotifier>();
    p.desktop = std::make_shared<LinuxDesktop>(systemHelperAvailable);
    p.privileged = helper;
    p.dialogs = std::make_shared<QtDialogs>();
    p.scheduler = std::make_shared<TimerScheduler>();
    LinuxAvailability::Probes probes = LinuxAvailability::nativeProbes();
    probes.desktopTimeouts = [timeouts] { return timeouts->available(); };
    probes.superKeySetting = plasma ? plasmaSession : OverlayKeyBlocker::available;
    probes.touchpadSetting = [touchpad] { return touchpad->exists(); };
    probes.ambientSetting = SessionDesktopSettings::hasAmbientBrightness;
    probes.eventSounds = [eventSounds] { return eventSounds != nullptr; };
    p.availability = std::make_shared<LinuxAvailability>(probes, table);
    return p;
}
