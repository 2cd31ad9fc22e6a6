#pragma once

#include <string>
#include <vector>

namespace varnel::win {

// The four ways the program runs a command. The program of each line is first resolved to a
// full path (program_path.h), the rest of the line is passed to Windows as it stands; none of
// these report why a start failed, because the program never tells the user.

// Starts commandLine, waits up to timeoutMs (negative: no limit) and returns the bytes it wrote
// to standard output. Standard input reads as empty and standard error is discarded. A command
// still running at the time-out is ended and what it wrote so far is returned. A command that
// cannot start yields an empty result.
std::string runAndRead(const std::wstring &commandLine, int timeoutMs);

// Starts commandLine without a window and does not wait. False when it could not start.
bool startCommand(const std::wstring &commandLine);

// Starts commandLine with a window show mode, as WinExec(commandLine, showMode) would, and does
// not wait. False when it could not start.
bool startShown(const std::wstring &commandLine, int showMode);

// Starts program with arguments in workingDirectory (empty: this process's) and does not wait.
bool startDetached(const std::wstring &program, const std::vector<std::wstring> &arguments,
                   const std::wstring &workingDirectory);

// One argument quoted so that CommandLineToArgvW and the C runtime read it back unchanged.
std::wstring quoteArgument(const std::wstring &argument);
// The command line startDetached runs.
std::wstring joinCommandLine(const std::wstring &program,
                             const std::vector<std::wstring> &arguments);

// Values of Windows' CP_ACP and CP_OEMCP, so callers need not include windows.h.
constexpr unsigned kAnsiCodePage = 0;
constexpr unsigned kOemCodePage = 1;

// Command output as UTF-8. Output starting with a UTF-16LE byte order mark (what wmic writes
// into a pipe) is read as UTF-16; output with a UTF-8 mark as UTF-8; anything else as 8-bit text
// in codePage, by default the console code page command-line tools write in.
std::string decodeCommandOutput(const std::string &bytes, unsigned codePage = kOemCodePage);

} // namespace varnel::win
