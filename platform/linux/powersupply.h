#pragma once

#include "devices.h"

#include <QString>
#include <QStringList>

// Mains power from /sys/class/power_supply: any online supply of type Mains or USB means 1;
// such supplies present but none online means 0 (on battery); none at all means 255.
// The folder is listed once (the tick asks every few seconds, idle or not) and again only when a
// listed supply has gone: line supplies, USB-C ports included, are there from boot.
class SysfsPowerSupply : public PowerSource {
public:
    explicit SysfsPowerSupply(QString root = QStringLiteral("/sys/class/power_supply"))
        : m_root(std::move(root))
    {
    }

    int acLineStatus() override;

private:
    QString m_root;
    bool m_listed = false;
    QStringList m_lineSupplies;
};
