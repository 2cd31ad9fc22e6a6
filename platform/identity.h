#pragma once

#include <QString>

#include <memory>

class UserIdentity {
public:
    virtual ~UserIdentity() = default;
    // The name of the user running the program; empty when it cannot be determined.
    virtual QString userName() = 0;
    // Whether a first instance recorded with this process id has died without cleaning up, so
    // that a new start may take its place. Where the platform frees the instance block with its
    // last user (Windows), this is never needed and answers false.
    virtual bool primaryIsGone(qint64 primaryPid) = 0;
};

// The native identity, available before the application object exists.
std::shared_ptr<UserIdentity> nativeIdentity();
