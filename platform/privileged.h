#pragma once

#include <QString>

// Where work that needs root goes through a separate, checked helper, whether it can act.
class PrivilegedAccess {
public:
    virtual ~PrivilegedAccess() = default;
    // Empty when the helper is there; otherwise why not, in words for a tool tip.
    virtual QString unavailableReason() const = 0;
    // Why the helper refused or failed since the last time this was asked, one reason a line;
    // empty if it did not.
    virtual QString takeRefusal() = 0;
    // The same for a power mode's processor limits.
    virtual QString takeLimitRefusal() { return QString(); }
};
