#pragma once

#include <QString>

#include <memory>

class CommandRunner;
class Registry;
class UserIdentity;
class PanelBrightness;
class DeviceSwitches;
class MonitorControl;
class KeyBlocker;
class KeyboardLight;
class PowerSource;
class AudioEndpoint;
class GpuSensors;
class SystemSampler;
class SleepNotifier;
class Desktop;
class Dialogs;
class Scheduler;
class Availability;
class PrivilegedAccess;

// One implementation of every operating-system concern. The native bundle is chosen in one
// place (nativePlatform()); tests build the window over a fake bundle.
struct Platform {
    std::shared_ptr<CommandRunner> commands;
    std::shared_ptr<Registry> registry;
    std::shared_ptr<UserIdentity> identity;
    std::shared_ptr<PanelBrightness> brightness;
    std::shared_ptr<DeviceSwitches> switches;
    std::shared_ptr<MonitorControl> monitors;
    std::shared_ptr<KeyBlocker> keyBlocker;
    std::shared_ptr<KeyboardLight> keyboardLight;
    std::shared_ptr<PowerSource> powerSource;
    std::shared_ptr<AudioEndpoint> audio;
    std::shared_ptr<GpuSensors> gpu;
    std::shared_ptr<SystemSampler> sampler;
    std::shared_ptr<SleepNotifier> sleep;
    std::shared_ptr<Desktop> desktop;
    std::shared_ptr<Dialogs> dialogs;
    std::shared_ptr<Scheduler> scheduler;
    std::shared_ptr<Availability> availability;
    // Null where the program itself may do what needs root.
    std::shared_ptr<PrivilegedAccess> privileged;
};

Platform nativePlatform();

// The folder the program's relative paths are taken from, made ready for use.
QString nativeWorkingFolder();
