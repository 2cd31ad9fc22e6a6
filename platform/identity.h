#pragma once

#include <QString>

#include <memory>

class UserIdentity {
public:
    virtual ~UserIdentity() = default;
    // The name of the user running the program; empty when it cannot be determined.
    virtual QString userName() = 0;
};

// The native identity, available before the application object exists.
std::shared_ptr<UserIdentity> nativeIdentity();
