#pragma once

// Qt faces of the panel brightness and the power source: the work is in platform/win.

#include "brightness.h"
#include "devices.h"
#include "win_brightness.h"
#include "win_powersource.h"

#include <QFile>

class WinPanelBrightness : public PanelBrightness {
public:
    int read() override { return varnel::win::readPanelBrightness(); }
    void write(quint32 level) override { varnel::win::writePanelBrightness(level); }
    // The maker's WMI provider, where its own installer or ours puts it.
    bool providerInstalled() override
    {
        return QFile::exists(QStringLiteral("C://Program Files (x86)//Hotkey//CLEVOMOF.dll")) ||
               QFile::exists(QStringLiteral("C://Windows//SysWOW64//CLEVOMOF.dll"));
    }
};

class WinPowerSource : public PowerSource {
public:
    int acLineStatus() override { return varnel::win::acLineStatus(); }
};
