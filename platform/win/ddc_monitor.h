#pragma once

#include <windows.h>

#include <vector>

namespace varnel::win {

// DDC/CI through dxva2 on every physical monitor behind the display of the foreground window.

// How one physical monitor is read and written; dxva2 in the program, a script in tests.
class VcpChannel {
public:
    virtual ~VcpChannel() = default;
    virtual bool read(HANDLE monitor, BYTE code, DWORD *current, DWORD *maximum) = 0;
    virtual void write(HANDLE monitor, BYTE code, DWORD value) = 0;
};

// Read, compare, and write only what is new and within the maximum, monitor by monitor.
void setVcpOnMonitors(const std::vector<HANDLE> &monitors, VcpChannel &channel, BYTE code,
                      DWORD value);

// MonitorFromWindow(GetForegroundWindow(), MONITOR_DEFAULTTONEAREST), its physical monitors,
// then the rule above over dxva2. Silent on every failure; the physical handles are kept.
void setVcpFeature(BYTE code, DWORD value);

} // namespace varnel::win
