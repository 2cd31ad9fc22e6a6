#include "wintest.h"

#include "win_powersource.h"

// Wine reports mains power online and no battery; the offline and unknown states are covered
// by the window's tests over a scripted power source.
WINTEST_CASE(wineReportsMainsOnline)
{
    CHECK_EQ(varnel::win::acLineStatus(), 1);
}
