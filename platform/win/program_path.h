#pragma once

#include <string>
#include <vector>

namespace varnel::win {

// The program runs elevated, so what it starts must never be chosen by the search path, the
// working folder or a folder a user can write to. A program named in a command line resolves
// to a full path before it is started:
// - a bare name of one of the system's own tools (powercfg, schtasks, tasklist, taskkill, wmic,
//   reg, net, regsvr32, explorer, control, powershell, devcon, cmd) into the system folder;
// - any other relative name (the shipped helpers, "Libs\AuxSwitch.exe", "Remote.exe") into the
//   install folder, the folder of this executable;
// - a full path ("C:\..." or "\\server\...") stays as it is.
// A name without an extension gets ".exe", as the loader would add.

struct ProgramFolders {
    std::wstring system;  // GetSystemDirectoryW
    std::wstring windows; // GetWindowsDirectoryW, where explorer lives
    std::wstring install; // the folder of this executable
};

// The folders of this process.
ProgramFolders programFolders();

// The full path for program (quotes around it allowed); empty when it names no place that may
// be trusted (a drive-relative or root-relative path).
std::wstring resolveProgram(const std::wstring &program, const ProgramFolders &folders);

struct ResolvedCommand {
    std::wstring application; // the program's full path; empty: not to be started
    std::wstring commandLine; // the line with its program replaced by the quoted full path
};

ResolvedCommand resolveCommand(const std::wstring &commandLine, const ProgramFolders &folders);

} // namespace varnel::win
