#include "fakeplatform.h"

Platform FakePlatform::bundle() const
{
    Platform p;
    p.commands = commands;
    p.registry = registry;
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
