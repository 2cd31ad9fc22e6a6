#include "platform.h"

#include "availability.h"
#include "dialogs.h"
#include "identity.h"
#include "placeholders_win.h"
#include "scheduler.h"
#include "windevices.h"
#include "winglue.h"
#include "winmonitoring.h"
#include "winpower.h"
#include "winsleepnotifier.h"

std::shared_ptr<UserIdentity> windowsIdentity()
{
    return std::make_shared<WinIdentity>();
}

Platform windowsPlatform()
{
    Platform p;
    p.commands = std::make_shared<WinCommandRunner>();
    p.registry = std::make_shared<WinRegistry>();
    p.identity = windowsIdentity();
    p.brightness = std::make_shared<WinPanelBrightness>();
    p.switches = std::make_shared<WinDeviceSwitches>();
    p.monitors = std::make_shared<WinMonitorControl>();
    p.keyBlocker = std::make_shared<WinKeyBlocker>();
    p.keyboardLight = std::make_shared<CompanionKeyboardLight>();
    p.powerSource = std::make_shared<WinPowerSource>();
    p.audio = std::make_shared<WinAudioEndpoint>();
    p.gpu = std::make_shared<WinGpuSensors>();
    p.sampler = std::make_shared<WinSystemSampler>();
    p.sleep = std::make_shared<WinSleepNotifier>();
    p.desktop = std::make_shared<WinDesktop>();
    p.dialogs = std::make_shared<QtDialogs>();
    p.availability = std::make_shared<EverythingAvailable>();
    p.scheduler = std::make_shared<TimerScheduler>();
    return p;
}
