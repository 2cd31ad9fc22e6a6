#include "platform.h"

#include "commandtable.h"
#include "dialogs.h"
#include "linuxcommands.h"
#include "linuxdesktop.h"
#include "linuxidentity.h"
#include "linuxregistry.h"
#include "placeholders.h"
#include "scheduler.h"

Platform linuxPlatform()
{
    auto table = std::make_shared<CommandTable>();
    addStartupCommands(*table);

    auto registry = std::make_shared<LinuxRegistry>();

    Platform p;
    p.commands = std::make_shared<LinuxCommandRunner>(table);
    p.registry = registry;
    p.identity = std::make_shared<LinuxIdentity>();
    p.brightness = std::make_shared<AbsentPanel>();
    p.switches = std::make_shared<AbsentSwitches>();
    p.monitors = std::make_shared<AbsentMonitors>();
    p.keyBlocker = std::make_shared<AbsentKeyBlocker>();
    p.powerSource = std::make_shared<UnknownPowerSource>();
    p.audio = std::make_shared<AbsentAudio>();
    p.gpu = std::make_shared<AbsentGpu>();
    p.sampler = std::make_shared<AbsentSampler>();
    p.sleep = std::make_shared<SilentSleepNotifier>();
    p.desktop = std::make_shared<LinuxDesktop>();
    p.dialogs = std::make_shared<QtDialogs>();
    p.scheduler = std::make_shared<TimerScheduler>();
    return p;
}
