#include "wintest.h"

#include "program_path.h"
#include "win_commands.h"
#include "win_text.h"

#include <windows.h>

#include <cstdio>

using namespace varnel::win;

namespace {

std::wstring modulePath()
{
    wchar_t buffer[MAX_PATH + 1];
    const DWORD length = GetModuleFileNameW(nullptr, buffer, MAX_PATH + 1);
    return std::wstring(buffer, length);
}

std::wstring folderOf(const std::wstring &path)
{
    return path.substr(0, path.find_last_of(L'\\'));
}

std::wstring lowerName(const std::wstring &path)
{
    std::wstring name = path.substr(path.find_last_of(L'\\') + 1);
    CharLowerW(name.data());
    return name;
}

// Copies of this program stand in for system tools and helpers: a copy prints the path it was
// started from, adds it to the file VARNEL_STANDIN_LOG names, and ends before any case runs.
const bool kStandIn = [] {
    const std::wstring self = modulePath();
    if (lowerName(self) == L"win_program_path.exe")
        return false;
    const std::string line = toUtf8(self) + "\n";
    std::fputs(line.c_str(), stdout);
    std::fflush(stdout);
    wchar_t log[MAX_PATH + 1];
    if (GetEnvironmentVariableW(L"VARNEL_STANDIN_LOG", log, MAX_PATH + 1) > 0) {
        HANDLE file = CreateFileW(log, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, OPEN_ALWAYS, 0, nullptr);
        DWORD written = 0;
        WriteFile(file, line.data(), DWORD(line.size()), &written, nullptr);
        CloseHandle(file);
    }
    ExitProcess(0);
    return true;
}();

std::wstring uniqueName(const wchar_t *stem)
{
    return std::wstring(stem) + L"-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
           std::to_wstring(GetTickCount64());
}

std::wstring makeTempFolder(const wchar_t *stem)
{
    wchar_t dir[MAX_PATH + 1];
    GetTempPathW(MAX_PATH + 1, dir);
    const std::wstring path = std::wstring(dir) + uniqueName(stem);
    CreateDirectoryW(path.c_str(), nullptr);
    return path;
}

bool plant(const std::wstring &path)
{
    return CopyFileW(modulePath().c_str(), path.c_str(), FALSE) != FALSE;
}

void touch(const std::wstring &path)
{
    CloseHandle(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
}

std::string readLog(const std::wstring &path, int timeoutMs)
{
    const ULONGLONG deadline = GetTickCount64() + timeoutMs;
    do {
        HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, OPEN_EXISTING, 0, nullptr);
        if (file != INVALID_HANDLE_VALUE) {
            char buffer[4096];
            DWORD read = 0;
            ReadFile(file, buffer, sizeof(buffer), &read, nullptr);
            CloseHandle(file);
            if (read > 0)
                return std::string(buffer, read);
        }
        Sleep(50);
    } while (GetTickCount64() < deadline);
    return std::string();
}

} // namespace

WINTEST_CASE(namesResolveIntoTrustedFolders)
{
    const ProgramFolders f{L"S:\\sys", L"S:\\win", L"D:\\Varnel"};
    const struct {
        const wchar_t *line;
        const wchar_t *application;
        const wchar_t *commandLine;
    } rows[] = {
        {L"powercfg -change -monitor-timeout-ac 5", L"S:\\sys\\powercfg.exe",
         L"\"S:\\sys\\powercfg.exe\" -change -monitor-timeout-ac 5"},
        {L"TaskKill.EXE /f /im ThrottleStop.exe", L"S:\\sys\\taskkill.exe",
         L"\"S:\\sys\\taskkill.exe\" /f /im ThrottleStop.exe"},
        {L"tasklist", L"S:\\sys\\tasklist.exe", L"\"S:\\sys\\tasklist.exe\""},
        {L"devcon.exe disable \"@USB\\VID_1\"", L"S:\\sys\\devcon.exe",
         L"\"S:\\sys\\devcon.exe\" disable \"@USB\\VID_1\""},
        {L"wmic cpu get Name", L"S:\\sys\\wbem\\wmic.exe", nullptr},
        {L"powershell -executionPolicy bypass", L"S:\\sys\\WindowsPowerShell\\v1.0\\powershell.exe",
         nullptr},
        {L"explorer ms-settings:sound", L"S:\\win\\explorer.exe", nullptr},
        {L"control.exe /name Microsoft.PowerOptions", L"S:\\sys\\control.exe", nullptr},
        {L"Libs\\AuxSwitch.exe", L"D:\\Varnel\\Libs\\AuxSwitch.exe",
         L"\"D:\\Varnel\\Libs\\AuxSwitch.exe\""},
        {L"updates\\Update.exe", L"D:\\Varnel\\updates\\Update.exe", nullptr},
        {L"Remote.exe", L"D:\\Varnel\\Remote.exe", nullptr},
        {L"LatencyFix", L"D:\\Varnel\\LatencyFix.exe", nullptr},
        {L"ThrottleStop//ThrottleStop.exe", L"D:\\Varnel\\ThrottleStop//ThrottleStop.exe", nullptr},
        {L"\"C:\\Program Files\\Suite\\Client.exe\" -t -id 48",
         L"C:\\Program Files\\Suite\\Client.exe",
         L"\"C:\\Program Files\\Suite\\Client.exe\" -t -id 48"},
        {L"C:/Tools/Fan/FanControl.exe", L"C:/Tools/Fan/FanControl.exe", nullptr},
        {L"\\\\server\\share\\tool.exe /x", L"\\\\server\\share\\tool.exe", nullptr},
        // Neither the current drive's root nor its current folder is a trusted place.
        {L"C:tool.exe", L"", L""},
        {L"\\tool.exe", L"", L""},
        {L"", L"", L""},
    };
    for (const auto &row : rows) {
        const ResolvedCommand resolved = resolveCommand(row.line, f);
        CHECK_EQ(resolved.application, std::wstring(row.application));
        if (row.commandLine)
            CHECK_EQ(resolved.commandLine, std::wstring(row.commandLine));
    }
    // Without a known install folder a helper is not started at all.
    CHECK_EQ(resolveProgram(L"Remote.exe", ProgramFolders{L"S:\\sys", L"S:\\win", L""}),
             std::wstring());
}

WINTEST_CASE(toolsAreTakenFromWhereTheSystemKeepsThem)
{
    const std::wstring system = makeTempFolder(L"system");
    const ProgramFolders f{system, system, L"D:\\Varnel"};
    // Older systems keep the tool beside the others, newer ones below wbem.
    touch(system + L"\\wmic.exe");
    CHECK_EQ(resolveProgram(L"wmic", f), system + L"\\wmic.exe");
    CreateDirectoryW((system + L"\\wbem").c_str(), nullptr);
    touch(system + L"\\wbem\\wmic.exe");
    CHECK_EQ(resolveProgram(L"wmic", f), system + L"\\wbem\\wmic.exe");

    const ProgramFolders real = programFolders();
    wchar_t buffer[MAX_PATH + 1];
    CHECK_EQ(real.system, std::wstring(buffer, GetSystemDirectoryW(buffer, MAX_PATH + 1)));
    CHECK_EQ(real.install, folderOf(modulePath()));
}

// Copies named like the tools, in the working folder and first on the search path, never run;
// the system's own do.
WINTEST_CASE(plantedCopiesNeverRun)
{
    const std::wstring planted = makeTempFolder(L"planted");
    for (const wchar_t *name : {L"cmd.exe", L"tasklist.exe", L"powercfg.exe", L"wmic.exe"})
        CHECK(plant(planted + L"\\" + name));
    wchar_t savedDir[MAX_PATH + 1];
    GetCurrentDirectoryW(MAX_PATH + 1, savedDir);
    std::wstring savedPath(32767, L'\0');
    savedPath.resize(GetEnvironmentVariableW(L"PATH", savedPath.data(), 32767));
    SetCurrentDirectoryW(planted.c_str());
    SetEnvironmentVariableW(L"PATH", (planted + L";" + savedPath).c_str());
    const std::string plantedUtf8 = toUtf8(planted);

    CHECK_EQ(runAndRead(L"cmd /c echo the system's own", 30000), "the system's own\r\n");
    for (const wchar_t *line : {L"tasklist", L"powercfg /list", L"wmic cpu get Name"})
        CHECK(runAndRead(line, 30000).find(plantedUtf8) == std::string::npos);

    SetCurrentDirectoryW(savedDir);
    SetEnvironmentVariableW(L"PATH", savedPath.c_str());
}

// A helper of the install folder starts from there by each way of starting, even when the
// working folder holds one of the same name; one missing there is not looked for elsewhere.
WINTEST_CASE(helpersStartFromTheInstallFolder)
{
    const std::wstring helper = uniqueName(L"helper") + L".exe";
    const std::wstring install = folderOf(modulePath());
    const std::wstring planted = makeTempFolder(L"workdir");
    CreateDirectoryW((install + L"\\Libs").c_str(), nullptr);
    CreateDirectoryW((planted + L"\\Libs").c_str(), nullptr);
    CHECK(plant(install + L"\\Libs\\" + helper));
    CHECK(plant(planted + L"\\Libs\\" + helper));
    wchar_t savedDir[MAX_PATH + 1];
    GetCurrentDirectoryW(MAX_PATH + 1, savedDir);
    SetCurrentDirectoryW(planted.c_str());

    const std::string expected = toUtf8(install + L"\\Libs\\" + helper);
    CHECK_EQ(runAndRead(L"Libs\\" + helper, 30000), expected + "\r\n");
    int way = 0;
    for (auto start : {+[](const std::wstring &l) { return startShown(l, SW_HIDE); },
                       +[](const std::wstring &l) { return startCommand(l); },
                       +[](const std::wstring &l) { return startDetached(l, {}, L""); }}) {
        const std::wstring log = planted + L"\\log-" + std::to_wstring(++way) + L".txt";
        SetEnvironmentVariableW(L"VARNEL_STANDIN_LOG", log.c_str());
        CHECK(start(L"Libs\\" + helper));
        CHECK_EQ(readLog(log, 30000), expected + "\n");
    }
    SetEnvironmentVariableW(L"VARNEL_STANDIN_LOG", nullptr);

    // One missing from the install folder is not looked for in the working folder or the path.
    const std::wstring absent = uniqueName(L"absent") + L".exe";
    CHECK(plant(planted + L"\\Libs\\" + absent));
    CHECK(plant(planted + L"\\" + absent));
    std::wstring savedPath(32767, L'\0');
    savedPath.resize(GetEnvironmentVariableW(L"PATH", savedPath.data(), 32767));
    SetEnvironmentVariableW(L"PATH", (planted + L";" + savedPath).c_str());
    CHECK_EQ(runAndRead(L"Libs\\" + absent, 30000), "");
    CHECK_EQ(runAndRead(absent, 30000), "");
    SetEnvironmentVariableW(L"PATH", savedPath.c_str());
    SetCurrentDirectoryW(savedDir);
    DeleteFileW((install + L"\\Libs\\" + helper).c_str());
    RemoveDirectoryW((install + L"\\Libs").c_str()); // only if nothing else is in it
}

// A tool put into the system folder (as a machine's maker installs devcon) is found there.
WINTEST_CASE(toolInTheSystemFolderIsFound)
{
    const std::wstring devcon = programFolders().system + L"\\devcon.exe";
    CHECK_EQ(resolveProgram(L"devcon", programFolders()), devcon);
    if (GetFileAttributesW(devcon.c_str()) != INVALID_FILE_ATTRIBUTES)
        return; // someone else's copy: leave it alone
    CHECK(plant(devcon));
    CHECK_EQ(runAndRead(L"devcon.exe status *", 30000), toUtf8(devcon) + "\r\n");
    DeleteFileW(devcon.c_str());
}
