#include "platform.h"

#include "autostartentries.h"
#include "backlight.h"
#include "commandtable.h"
#include "ddcmonitors.h"
#include "desktopsettings.h"
#include "devicecommands.h"
#include "dialogs.h"
#include "helperclient.h"
#include "linuxbattery.h"
#include "linuxcommands.h"
#include "linuxdesktop.h"
#include "linuxidentity.h"
#include "linuxregistry.h"
#include "linuxsampler.h"
#include "nvmlgpu.h"
#include "placeholders.h"
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

    auto registry = std::make_shared<LinuxRegistry>();
    auto userStore = std::make_shared<UserStoreRegistry>();
    registry->addRoute(
        TouchpadRegistry::key,
        std::make_shared<TouchpadRegistry>(TouchpadRegistry::sessionPreference(), userStore));
    registry->addRoute(
        SoundSchemeStore::prefix,
        std::make_shared<SoundSchemeStore>(userStore, SoundSchemeStore::sessionEventSounds()));
    registry->addRoute(AutostartEntries::runKey, std::make_shared<AutostartEntries>());

    Platform p;
    p.commands = std::make_shared<LinuxCommandRunner>(table);
    p.registry = registry;
    p.identity = std::make_shared<LinuxIdentity>();
    p.brightness = std::make_shared<SysfsBacklight>();
    p.switches = std::make_shared<LinuxDeviceSwitches>(QStringLiteral("/dev/rfkill"), helper);
    p.monitors = std::make_shared<DdcMonitorControl>(std::make_unique<LibDdcutilBus>());
    p.keyBlocker = std::make_shared<AbsentKeyBlocker>();
    p.powerSource = std::make_shared<SysfsPowerSupply>();
    p.audio = std::make_shared<PulseAudioEndpoint>();
    p.gpu = std::make_shared<NvmlGpuSensors>();
    p.sampler = std::make_shared<LinuxSampler>();
    p.sleep = std::make_shared<LogindSleepNotifier>();
    p.desktop = std::make_shared<LinuxDesktop>(systemHelperAvailable);
    p.privileged = helper;
    p.dialogs = std::make_shared<QtDialogs>();
    p.scheduler = std::make_shared<TimerScheduler>();
    return p;
}
