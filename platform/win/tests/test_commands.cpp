#include "wintest.h"

#include "program_path.h"
#include "win_commands.h"
#include "win_text.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <shellapi.h>
#include <tlhelp32.h>

using namespace varnel::win;
namespace fs = std::filesystem;

namespace {

fs::path modulePath()
{
    wchar_t buffer[MAX_PATH + 1];
    return std::wstring(buffer, GetModuleFileNameW(nullptr, buffer, MAX_PATH + 1));
}

// Copies of this program stand in for system tools and helpers: a copy prints the path it was
// started from, adds it to the file VARNEL_STANDIN_LOG names, and ends before any case runs.
const bool kStandIn = [] {
    const fs::path self = modulePath();
    if (lstrcmpiW(self.filename().c_str(), L"win_commands.exe") == 0)
        return false;
    const std::string line = self.u8string() + "\n";
    std::fputs(line.c_str(), stdout);
    std::fflush(stdout);
    if (const wchar_t *log = _wgetenv(L"VARNEL_STANDIN_LOG"))
        std::ofstream(fs::path(log), std::ios::app | std::ios::binary) << line;
    ExitProcess(0);
}();

std::wstring makeTempFolder(const wchar_t *stem)
{
    const fs::path path = fs::temp_directory_path() / wintest::unique(stem);
    fs::create_directories(path);
    return path.wstring();
}

bool plant(const std::wstring &path)
{
    return CopyFileW(modulePath().c_str(), path.c_str(), FALSE) != FALSE;
}

// Started commands finish in their own time: waits until the file they write has content.
std::string waitForFile(const std::wstring &path)
{
    for (const ULONGLONG deadline = GetTickCount64() + 30000; GetTickCount64() < deadline;) {
        std::ifstream in(fs::path(path), std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(in), {}};
        if (!text.empty())
            return text;
        Sleep(50);
    }
    return "<no file>";
}

int runningChildren(const wchar_t *image)
{
    HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    if (snapshot == INVALID_HANDLE_VALUE)
        return -1;
    int count = 0;
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof(entry);
    for (BOOL more = Process32FirstW(snapshot, &entry); more;
         more = Process32NextW(snapshot, &entry))
        count += entry.th32ParentProcessID == GetCurrentProcessId() &&
                 lstrcmpiW(entry.szExeFile, image) == 0;
    CloseHandle(snapshot);
    return count;
}

} // namespace

WINTEST_CASE(runAndReadWaitsReadsAndTimesOut)
{
    CHECK_EQ(runAndRead(L"cmd /c echo hello", 30000), "hello\r\n");
    // With no limit the command runs to its end (about a second here).
    CHECK_EQ(runAndRead(L"cmd /c ping -n 2 127.0.0.1 >nul& echo finished", -1), "finished\r\n");
    // Far more than a pipe holds (about 45 KB): a reader that only read after the end would wait
    // for ever.
    const std::string output =
        runAndRead(L"cmd /c for /l %i in (1,1,1500) do @echo line %i of a long listing", 90000);
    CHECK_EQ(std::count(output.begin(), output.end(), '\n'), 1500);
    CHECK(output.rfind("line 1500 of a long listing\r\n") == output.size() - 29);

    ULONGLONG start = GetTickCount64();
    CHECK_EQ(runAndRead(L"varnel-no-such-tool.exe /query", 30000), "");
    CHECK_EQ(runAndRead(L"", 30000), "");
    CHECK(GetTickCount64() - start < 2000);

    // Generous limits: a loaded machine makes cmd slow to start under Wine.
    start = GetTickCount64();
    CHECK_EQ(runAndRead(L"cmd /c echo early& ping -n 15 127.0.0.1 >nul& echo late", 5000),
             "early\r\n");
    const ULONGLONG elapsed = GetTickCount64() - start;
    CHECK(elapsed >= 5000 && elapsed < 8000);
    // The overrunning cmd is gone at once; its ping may run on as an orphan.
    CHECK_EQ(runningChildren(L"cmd.exe"), 0);
}

WINTEST_CASE(detachedStartPassesArgumentsAndWorkingDirectory)
{
    const std::wstring program = L"C:\\Program Files\\Suite\\update.exe";
    CHECK_EQ(joinCommandLine(program, {L"", L"-q"}),
             L"\"C:\\Program Files\\Suite\\update.exe\" \"\" -q");

    // Read back by the same rules every Windows program uses for its arguments.
    const std::vector<std::wstring> arguments(
        {L"", L"plain", L"two words", L"tab\there", L"say \"hi\"", L"trailing\\", L"space end\\",
         L"a\\\\\"b", L"\\\\server\\share\\", L"C:\\Program Files\\x\\", L"\"", L"\\"});
    int count = 0;
    wchar_t **argv = CommandLineToArgvW(joinCommandLine(program, arguments).c_str(), &count);
    std::vector<std::wstring> expected = arguments;
    expected.insert(expected.begin(), program);
    CHECK_EQ(std::vector<std::wstring>(argv, argv + count), expected);
    LocalFree(argv);

    // The working directory applies: the relative output path lands in it.
    const std::wstring dir = makeTempFolder(L"workdir");
    CHECK(startDetached(L"cmd", {L"/c", L"cd", L">", L"cwd.txt"}, dir));
    CHECK_EQ(waitForFile(dir + L"\\cwd.txt"), toUtf8(dir) + "\r\n");
    CHECK(!startDetached(L"", {}, dir));
}

WINTEST_CASE(outputDecodesToUtf8)
{
    const struct {
        std::string bytes;
        unsigned codePage;
        const char *utf8;
    } rows[] = {
        // UTF-16LE with its mark, as wmic writes into a pipe; an odd last byte is dropped.
        {std::string("\xFF\xFEN\0a\0\xE9\0\r\0\n\0\x01", 13), kOemCodePage, "Na\xC3\xA9\r\n"},
        {std::string("\xFF\xFE", 2), kOemCodePage, ""},
        {"\xEF\xBB\xBFName\r\n", kOemCodePage, "Name\r\n"},
        // 8-bit text in the code page it was written in.
        {"caf\x82", 437, "caf\xC3\xA9"},
        {"caf\xE9", 1252, "caf\xC3\xA9"},
        {"Name  \r\nCPU\r\n", kOemCodePage, "Name  \r\nCPU\r\n"},
        {"", kOemCodePage, ""},
    };
    for (const auto &row : rows)
        CHECK_EQ(decodeCommandOutput(row.bytes, row.codePage), std::string(row.utf8));
}

WINTEST_CASE(namesResolveIntoTrustedFolders)
{
    const ProgramFolders f{L"S:\\sys", L"S:\\win", L"D:\\Varnel"};
    // The command line is the program's full path in quotes and the rest as it stands.
    const struct {
        const wchar_t *line, *application, *rest;
    } rows[] = {
        {L"powercfg -change -monitor-timeout-ac 5", L"S:\\sys\\powercfg.exe",
         L" -change -monitor-timeout-ac 5"},
        {L"TaskKill.EXE /f /im ThrottleStop.exe", L"S:\\sys\\taskkill.exe",
         L" /f /im ThrottleStop.exe"},
        {L"tasklist", L"S:\\sys\\tasklist.exe", L""},
        {L"devcon.exe disable \"@USB\\VID_1\"", L"S:\\sys\\devcon.exe",
         L" disable \"@USB\\VID_1\""},
        {L"wmic cpu get Name", L"S:\\sys\\wbem\\wmic.exe", L" cpu get Name"},
        {L"powershell -executionPolicy bypass", L"S:\\sys\\WindowsPowerShell\\v1.0\\powershell.exe",
         L" -executionPolicy bypass"},
        {L"explorer ms-settings:sound", L"S:\\win\\explorer.exe", L" ms-settings:sound"},
        {L"control.exe /name Microsoft.PowerOptions", L"S:\\sys\\control.exe",
         L" /name Microsoft.PowerOptions"},
        {L"Libs\\AuxSwitch.exe", L"D:\\Varnel\\Libs\\AuxSwitch.exe", L""},
        {L"updates\\Update.exe", L"D:\\Varnel\\updates\\Update.exe", L""},
        {L"Remote.exe", L"D:\\Varnel\\Remote.exe", L""},
        {L"LatencyFix", L"D:\\Varnel\\LatencyFix.exe", L""},
        {L"ThrottleStop//ThrottleStop.exe", L"D:\\Varnel\\ThrottleStop//ThrottleStop.exe", L""},
        {L"\"C:\\Program Files\\Suite\\Client.exe\" -t -id 48",
         L"C:\\Program Files\\Suite\\Client.exe", L" -t -id 48"},
        {L"C:/Tools/Fan/FanControl.exe", L"C:/Tools/Fan/FanControl.exe", L""},
        {L"\\\\server\\share\\tool.exe /x", L"\\\\server\\share\\tool.exe", L" /x"},
        // Neither the current drive's root nor its current folder is a trusted place.
        {L"C:tool.exe", L"", nullptr},
        {L"\\tool.exe", L"", nullptr},
        {L"", L"", nullptr},
    };
    for (const auto &row : rows) {
        const ResolvedCommand resolved = resolveCommand(row.line, f);
        CHECK_EQ(resolved.application, std::wstring(row.application));
        CHECK_EQ(resolved.commandLine,
                 row.rest ? L"\"" + std::wstring(row.application) + L"\"" + row.rest
                          : std::wstring());
    }
    // Without a known install folder a helper is not started at all.
    CHECK_EQ(resolveProgram(L"Remote.exe", ProgramFolders{L"S:\\sys", L"S:\\win", L""}), L"");

    // Older systems keep wmic beside the other tools, newer ones below wbem.
    const std::wstring system = makeTempFolder(L"system");
    const ProgramFolders planted{system, system, L"D:\\Varnel"};
    CHECK(plant(system + L"\\wmic.exe"));
    CHECK_EQ(resolveProgram(L"wmic", planted), system + L"\\wmic.exe");
    CreateDirectoryW((system + L"\\wbem").c_str(), nullptr);
    CHECK(plant(system + L"\\wbem\\wmic.exe"));
    CHECK_EQ(resolveProgram(L"wmic", planted), system + L"\\wbem\\wmic.exe");
}

// Copies named like the tools or helpers, in the working folder and first on the search path,
// never run: the system's own tools do, and the install folder's helpers by each way of starting.
WINTEST_CASE(onlyTrustedCopiesRun)
{
    const ProgramFolders real = programFolders();
    wchar_t buffer[MAX_PATH + 1];
    CHECK_EQ(real.system, std::wstring(buffer, GetSystemDirectoryW(buffer, MAX_PATH + 1)));
    CHECK_EQ(real.install, modulePath().parent_path().wstring());

    const std::wstring planted = makeTempFolder(L"planted");
    const std::wstring install = real.install;
    const std::wstring helper = L"Libs\\" + wintest::unique(L"helper") + L".exe";
    const std::wstring absent = L"Libs\\" + wintest::unique(L"absent") + L".exe";
    CreateDirectoryW((install + L"\\Libs").c_str(), nullptr);
    CreateDirectoryW((planted + L"\\Libs").c_str(), nullptr);
    for (const std::wstring name : {L"cmd.exe", L"tasklist.exe", L"powercfg.exe", L"wmic.exe",
                                    helper.c_str(), absent.c_str(), absent.c_str() + 5})
        CHECK(plant(planted + L"\\" + name));
    CHECK(plant(install + L"\\" + helper));
    const fs::path savedDir = fs::current_path();
    const std::wstring savedPath = _wgetenv(L"PATH");
    fs::current_path(planted);
    SetEnvironmentVariableW(L"PATH", (planted + L";" + savedPath).c_str());

    const std::string plantedUtf8 = toUtf8(planted);
    CHECK_EQ(runAndRead(L"cmd /c echo the system's own", 30000), "the system's own\r\n");
    for (const wchar_t *line : {L"tasklist", L"powercfg /list", L"wmic cpu get Name"})
        CHECK(runAndRead(line, 30000).find(plantedUtf8) == std::string::npos);

    const std::string expected = toUtf8(install + L"\\" + helper);
    CHECK_EQ(runAndRead(helper, 30000), expected + "\r\n");
    int way = 0;
    for (auto start : {+[](const std::wstring &l) { return startShown(l, SW_HIDE); },
                       +[](const std::wstring &l) { return startCommand(l); },
                       +[](const std::wstring &l) { return startDetached(l, {}, L""); }}) {
        const std::wstring log = planted + L"\\log-" + std::to_wstring(++way) + L".txt";
        SetEnvironmentVariableW(L"VARNEL_STANDIN_LOG", log.c_str());
        CHECK(start(helper));
        CHECK_EQ(waitForFile(log), expected + "\n");
        // One missing from the install folder is not looked for in the working folder or the path.
        CHECK(!start(absent));
        CHECK(!start(absent.substr(5)));
    }
    SetEnvironmentVariableW(L"VARNEL_STANDIN_LOG", nullptr);
    CHECK_EQ(runAndRead(absent, 30000), "");
    CHECK_EQ(runAndRead(absent.substr(5), 30000), "");

    SetEnvironmentVariableW(L"PATH", savedPath.c_str());
    fs::current_path(savedDir);
    DeleteFileW((install + L"\\" + helper).c_str());
    RemoveDirectoryW((install + L"\\Libs").c_str()); // only if nothing else is in it
}
