#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace varnel::win {

// The processor and computer-system identification queries ("wmic cpu get Name" and
// "wmic computersystem get model"). Where wmic.exe can be started its output is used, decoded
// from UTF-16LE with a byte-order mark or from 8-bit text; where it cannot (current Windows 11
// no longer ships it), the same header-plus-value text is made from WMI over COM, so the
// program's cleaning rules apply unchanged.

enum class IdentificationQuery { ProcessorName, ComputerModel };

// Which identification query a command line is, if it is one (exact spelling).
std::optional<IdentificationQuery> identificationQuery(const std::wstring &commandLine);

// The values of the query's property over every instance (Win32_Processor.Name or
// Win32_ComputerSystem.Model in root\cimv2) as UTF-8; nothing when WMI cannot be asked.
std::optional<std::vector<std::string>> identificationValues(IdentificationQuery query);

// What a run of wmic gave: whether it could start at all, and the bytes it printed.
struct WmicRun {
    bool started = false;
    std::string output;
};
using WmicRunner = std::function<WmicRun(const std::wstring &commandLine, int timeoutMs)>;

// Runs the command line when wmic.exe is installed; otherwise reports that it could not start.
WmicRun runInstalledWmic(const std::wstring &commandLine, int timeoutMs);

// The query's text as UTF-8 (header line, value lines), or nothing for any other command line.
std::optional<std::string> answerIdentificationQuery(const std::wstring &commandLine, int timeoutMs,
                                                     const WmicRunner &runWmic = runInstalledWmic);

} // namespace varnel::win
