#include "win_powersource.h"

#include <windows.h>

namespace varnel::win {

int acLineStatus()
{
    SYSTEM_POWER_STATUS status;
    if (!GetSystemPowerStatus(&status))
        return 255;
    return status.ACLineStatus;
}

} // namespace varnel::win
