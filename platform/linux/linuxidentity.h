#pragma once

#include "identity.h"

class LinuxIdentity : public UserIdentity {
public:
    QString userName() override;
};
