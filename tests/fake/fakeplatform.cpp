#include "fakeplatform.h"

#include "fakesensors.h"

FakePlatform::FakePlatform()
    : log(std::make_shared<OperationLog>()), commands(std::make_shared<FakeCommandRunner>(log)),
      registry(std::make_shared<FakeRegistry>(log)), identity(std::make_shared<FakeIdentity>()),
      panel(std::make_shared<FakePanel>(log)), switches(std::make_shared<FakeSwitches>(log)),
      monitors(std::make_shared<FakeMonitors>(log)),
      keyBlocker(std::make_shared<FakeKeyBlocker>(log)),
      keyboardLight(std::make_shared<FakeKeyboardLight>(log)),
      powerSource(std::make_shared<FakePowerSource>()), audio(std::make_shared<FakeAudio>(log)),
      gpu(std::make_shared<FakeGpu>()), sampler(std::make_shared<FakeSampler>()),
      sleep(std::make_shared<FakeSleepNotifier>()), desktop(std::make_shared<FakeDesktop>(log)),
      dialogs(std::make_shared<FakeDialogs>(log)), scheduler(std::make_shared<ManualScheduler>()),
      availability(std::make_shared<FakeAvailability>())
{
}

Platform FakePlatform::bundle() const
{
    Platform p;
    p.commands = commands;
    p.registry = registry;
    p.identity = identity;
    p.brightness = panel;
    p.switches = switches;
    p.monitors = monitors;
    p.keyBlocker = keyBlocker;
    p.keyboardLight = keyboardLight;
    p.powerSource = powerSource;
    p.audio = audio;
    p.gpu = gpu;
    p.sampler = sampler;
    p.sleep = sleep;
    p.desktop = desktop;
    p.dialogs = dialogs;
    p.scheduler = scheduler;
    p.availability = availability;
    return p;
}
