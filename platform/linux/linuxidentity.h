#pragma once

#include "identity.h"

class LinuxIdentity : public UserIdentity {
public:
    QString userName() override;
    // System V segments outlive a killed process, so a dead first instance must be replaceable
    // or the program would stay locked out until reboot.
    bool primaryIsGone(qint64 primaryPid) override;
};
