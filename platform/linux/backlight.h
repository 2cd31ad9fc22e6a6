#pragma once

#include "brightness.h"

#include <QString>

#include <functional>

// The built-in panel through /sys/class/backlight, as a percentage. The device is chosen the
// way the kernel recommends: firmware over platform over raw interfaces, then by name.
// Writes go through logind's Session.SetBrightness on the caller's session, which needs no
// root; the sysfs file is written directly only where the user may write it.
class SysfsBacklight : public PanelBrightness {
public:
    // Sets a device's raw level through the session manager; false when that is not possible.
    using SessionWriter = std::function<bool(const QString &device, quint32 raw)>;

    explicit SysfsBacklight(QString root = QStringLiteral("/sys/class/backlight"),
                            SessionWriter sessionWriter = logindSetBrightness);

    int read() override;
    void write(quint32 level) override;
    // There is no WMI provider to install on Linux.
    bool providerInstalled() override { return true; }

    // The chosen device's folder name, or empty when there is none.
    QString deviceName() const;

    static bool logindSetBrightness(const QString &device, quint32 raw);

private:
    struct Device {
        QString name;
        int raw = -1;
        int max = 0;
    };
    bool findDevice(Device *device) const;

    QString m_root;
    SessionWriter m_sessionWriter;
    // The last percentage written and the raw level it became: a device with few steps cannot
    // express every percentage, yet reading back what was written must give the same number.
    QString m_writtenDevice;
    int m_writtenRaw = -1;
    int m_writtenPercent = -1;
};

// Percent <-> raw level of a device with levels 0..max, rounded to the nearest.
int backlightPercentToRaw(int percent, int max);
int backlightRawToPercent(int raw, int max);
