#include "wintest.h"

#include "battery.h"
#include "win_commands.h"

using namespace varnel::win;

WINTEST_CASE(onlyTheTwoBatteryQueriesAreRecognised)
{
    CHECK_EQ(batteryQueryProperty(L"WMIC Path Win32_Battery Get BatteryStatus"),
             std::wstring(L"BatteryStatus"));
    CHECK_EQ(batteryQueryProperty(L"WMIC Path Win32_Battery Get EstimatedChargeRemaining"),
             std::wstring(L"EstimatedChargeRemaining"));
    CHECK_EQ(batteryQueryProperty(L"wmic path win32_battery get batterystatus"),
             std::wstring(L"BatteryStatus"));
    CHECK(batteryQueryProperty(L"WMIC Path Win32_Battery Get DesignCapacity").empty());
    CHECK(batteryQueryProperty(L"WMIC Path Win32_Battery Get BatteryStatus /value").empty());
    CHECK(batteryQueryProperty(L"wmic cpu get Name").empty());
}

WINTEST_CASE(tableHasWmicsLayout)
{
    CHECK_EQ(wmicTable("BatteryStatus", {"2"}),
             std::string("BatteryStatus  \r\r\n2              \r\r\n\r\r\n"));
    CHECK_EQ(wmicTable("EstimatedChargeRemaining", {"87", "100"}),
             std::string("EstimatedChargeRemaining  \r\r\n87                        \r\r\n"
                         "100                       \r\r\n\r\r\n"));
    CHECK_EQ(wmicTable("BatteryStatus", {}), std::string("BatteryStatus  \r\r\n"));
}

WINTEST_CASE(wmiAnswersWithoutABattery)
{
    // Wine's WMI has the class and no instance: the machine without a battery.
    CHECK_EQ(batteryAnswerFromWmi(L"BatteryStatus"), std::string("BatteryStatus  \r\r\n"));
    CHECK_EQ(batteryAnswerFromWmi(L"EstimatedChargeRemaining"),
             std::string("EstimatedChargeRemaining  \r\r\n"));
    CHECK(batteryAnswerFromWmi(L"").empty());
}

WINTEST_CASE(wmicIsFoundWhereWindowsKeepsIt)
{
    CHECK(wmicInstalled());
    // The command line itself runs as it stands; without a battery it prints no value row.
    const std::string output =
        decodeCommandOutput(runAndRead(L"WMIC Path Win32_Battery Get BatteryStatus", 30000));
    CHECK(output.find_first_of("0123456789") == std::string::npos);
}
