#include "ddc_monitor.h"

#include "../vcprule.h"

#include <physicalmonitorenumerationapi.h>

// mingw's headers lack lowlevelmonitorconfigurationapi.h; libdxva2 exports these.
extern "C" {
typedef enum _MC_VCP_CODE_TYPE { MC_MOMENTARY, MC_SET_PARAMETER } MC_VCP_CODE_TYPE;
WINBOOL WINAPI GetVCPFeatureAndVCPFeatureReply(HANDLE hMonitor, BYTE bVCPCode,
                                               MC_VCP_CODE_TYPE *pvct, LPDWORD pdwCurrentValue,
                                               LPDWORD pdwMaximumValue);
WINBOOL WINAPI SetVCPFeature(HANDLE hMonitor, BYTE bVCPCode, DWORD dwNewValue);
}

namespace varnel::win {

namespace {

class Dxva2Channel : public VcpChannel {
public:
    bool read(HANDLE monitor, BYTE code, DWORD *current, DWORD *maximum) override
    {
        return GetVCPFeatureAndVCPFeatureReply(monitor, code, nullptr, current, maximum) != FALSE;
    }
    void write(HANDLE monitor, BYTE code, DWORD value) override
    {
        SetVCPFeature(monitor, code, value);
    }
};

} // namespace

void setVcpOnMonitors(const std::vector<HANDLE> &monitors, VcpChannel &channel, BYTE code,
                      DWORD value)
{
    for (HANDLE monitor : monitors) {
        DWORD current = 0;
        DWORD maximum = 0;
        const bool ok = channel.read(monitor, code, &current, &maximum);
        if (vcpWriteWanted(ok, current, maximum, value))
            channel.write(monitor, code, value);
    }
}

void setVcpFeature(BYTE code, DWORD value)
{
    HMONITOR display = MonitorFromWindow(GetForegroundWindow(), MONITOR_DEFAULTTONEAREST);
    DWORD count = 0;
    if (!display || !GetNumberOfPhysicalMonitorsFromHMONITOR(display, &count) || count == 0)
        return;
    std::vector<PHYSICAL_MONITOR> physical(count);
    if (!GetPhysicalMonitorsFromHMONITOR(display, count, physical.data()))
        return;
    std::vector<HANDLE> handles;
    for (const PHYSICAL_MONITOR &m : physical)
        handles.push_back(m.hPhysicalMonitor);
    Dxva2Channel channel;
    setVcpOnMonitors(handles, channel, code, value);
}

} // namespace varnel::win
