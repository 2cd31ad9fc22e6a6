#pragma once

// The DDC/CI read-compare-write rule shared by every backend (plain C++, no Qt): write only
// after a successful read, never the value the monitor already has, never above its maximum.
inline bool vcpWriteWanted(bool readOk, unsigned long current, unsigned long maximum,
                           unsigned long value)
{
    return readOk && value != current && value <= maximum;
}
