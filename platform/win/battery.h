#pragma once

#include <string>
#include <vector>

namespace varnel::win {

// The battery widget's two queries ("WMIC Path Win32_Battery Get BatteryStatus" and
// "... Get EstimatedChargeRemaining") run as they stand where wmic.exe exists. Current Windows
// 11 no longer ships it; there the same text is made from WMI over COM.

// The property a battery query line asks for, or empty for any other command line.
std::wstring batteryQueryProperty(const std::wstring &commandLine);

// Whether wmic.exe is in the system's wbem folder.
bool wmicInstalled();

// The answer to a battery query from root\cimv2's Win32_Battery, laid out as wmic lays it out
// (see wmicTable). Empty when WMI cannot be asked.
std::string batteryAnswerFromWmi(const std::wstring &property);

// wmic's table of one property: the header and each value padded to a common width plus two,
// lines ending "\r\r\n", a blank line after the values. Without values, the header alone.
std::string wmicTable(const std::string &header, const std::vector<std::string> &values);

} // namespace varnel::win
