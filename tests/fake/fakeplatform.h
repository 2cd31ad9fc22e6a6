#pragma once

#include "fakecommands.h"
#include "fakedevices.h"
#include "manualscheduler.h"
#include "operationlog.h"
#include "platform.h"

#include <memory>

class FakeGpu;
class FakeSampler;

// A whole fake bundle: typed access for scripting, bundle() for the window.
struct FakePlatform {
    FakePlatform();

    Platform bundle() const;

    SharedLog log;
    std::shared_ptr<FakeCommandRunner> commands;
    std::shared_ptr<FakeRegistry> registry;
    std::shared_ptr<FakeIdentity> identity;
    std::shared_ptr<FakePanel> panel;
    std::shared_ptr<FakeSwitches> switches;
    std::shared_ptr<FakeMonitors> monitors;
    std::shared_ptr<FakeKeyBlocker> keyBlocker;
    std::shared_ptr<FakeKeyboardLight> keyboardLight;
    std::shared_ptr<FakePowerSource> powerSource;
    std::shared_ptr<FakeAudio> audio;
    std::shared_ptr<FakeGpu> gpu;
    std::shared_ptr<FakeSampler> sampler;
    std::shared_ptr<FakeSleepNotifier> sleep;
    std::shared_ptr<FakeDesktop> desktop;
    std::shared_ptr<FakeDialogs> dialogs;
    std::shared_ptr<ManualScheduler> scheduler;
    std::shared_ptr<FakeAvailability> availability;
};
