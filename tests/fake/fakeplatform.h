#pragma once

#include "fakecommands.h"
#include "fakedevices.h"
#include "fakesensors.h"
#include "manualscheduler.h"
#include "operationlog.h"
#include "platform.h"

#include <memory>

// A whole fake bundle: typed access for scripting, bundle() for the window.
struct FakePlatform {
    Platform bundle() const;

    SharedLog log = std::make_shared<OperationLog>();
    std::shared_ptr<FakeCommandRunner> commands = std::make_shared<FakeCommandRunner>(log);
    std::shared_ptr<FakeRegistry> registry = std::make_shared<FakeRegistry>(log);
    std::shared_ptr<FakePanel> panel = std::make_shared<FakePanel>(log);
    std::shared_ptr<FakeSwitches> switches = std::make_shared<FakeSwitches>(log);
    std::shared_ptr<FakeMonitors> monitors = std::make_shared<FakeMonitors>(log);
    std::shared_ptr<FakeKeyBlocker> keyBlocker = std::make_shared<FakeKeyBlocker>(log);
    std::shared_ptr<FakeKeyboardLight> keyboardLight = std::make_shared<FakeKeyboardLight>(log);
    std::shared_ptr<FakePowerSource> powerSource = std::make_shared<FakePowerSource>();
    std::shared_ptr<FakeAudio> audio = std::make_shared<FakeAudio>(log);
    std::shared_ptr<FakeGpu> gpu = std::make_shared<FakeGpu>();
    std::shared_ptr<FakeSampler> sampler = std::make_shared<FakeSampler>();
    std::shared_ptr<FakeSleepNotifier> sleep = std::make_shared<FakeSleepNotifier>();
    std::shared_ptr<FakeDesktop> desktop = std::make_shared<FakeDesktop>(log);
    std::shared_ptr<FakeDialogs> dialogs = std::make_shared<FakeDialogs>(log);
    std::shared_ptr<ManualScheduler> scheduler = std::make_shared<ManualScheduler>();
    std::shared_ptr<FakeAvailability> availability = std::make_shared<FakeAvailability>();
};
