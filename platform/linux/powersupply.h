#pragma once

#include "devices.h"

#include <QString>

// Mains power from /sys/class/power_supply: any online supply of type Mains or USB means 1;
// such supplies present but none online means 0 (on battery); none at all means 255.
class SysfsPowerSupply : public PowerSource {
public:
    explicit SysfsPowerSupply(QString root = QStringLiteral("/sys/class/power_supply"))
        : m_root(std::move(root))
    {
    }

    int acLineStatus() override;

private:
    QString m_root;
};
