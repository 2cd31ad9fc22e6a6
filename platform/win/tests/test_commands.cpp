#include "wintest.h"

#include "win_commands.h"

#include <windows.h>

#include <shellapi.h>
#include <tlhelp32.h>

using namespace varnel::win;

namespace {

ULONGLONG now()
{
    return GetTickCount64();
}

std::wstring uniqueName(const wchar_t *stem)
{
    return std::wstring(stem) + L"-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
           std::to_wstring(GetTickCount64());
}

std::wstring tempPath(const wchar_t *stem)
{
    wchar_t dir[MAX_PATH + 1];
    GetTempPathW(MAX_PATH + 1, dir);
    return std::wstring(dir) + uniqueName(stem);
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
         more = Process32NextW(snapshot, &entry)) {
        if (entry.th32ParentProcessID == GetCurrentProcessId() &&
            lstrcmpiW(entry.szExeFile, image) == 0)
            ++count;
    }
    CloseHandle(snapshot);
    return count;
}

// Started commands finish on their own time; wait until the file they write is complete.
std::string waitForFile(const std::wstring &path, int timeoutMs = 30000)
{
    const ULONGLONG deadline = now() + timeoutMs;
    while (now() < deadline) {
        HANDLE file =
            CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        if (file != INVALID_HANDLE_VALUE) {
            char buffer[4096];
            DWORD read = 0;
            ReadFile(file, buffer, sizeof(buffer), &read, nullptr);
            CloseHandle(file);
            if (read > 0)
                return std::string(buffer, read);
        }
        Sleep(50);
    }
    return "<no file>";
}

} // namespace

WINTEST_CASE(waitAndReadReturnsTheOutput)
{
    CHECK_EQ(runAndRead(L"cmd /c echo hello", 30000), "hello\r\n");
    // With no limit the command runs to its end (about a second here).
    CHECK_EQ(runAndRead(L"cmd /c ping -n 2 127.0.0.1 >nul& echo finished", -1), "finished\r\n");
}

WINTEST_CASE(chattyCommandIsReadWhileItRuns)
{
    // Far more than a pipe holds (about 45 KB): a reader that only read after the end would wait
    // for ever.
    const std::string output =
        runAndRead(L"cmd /c for /l %i in (1,1,1500) do @echo line %i of a long listing", 90000);
    size_t lines = 0;
    for (size_t pos = output.find("\r\n"); pos != std::string::npos;
         pos = output.find("\r\n", pos + 2))
        ++lines;
    CHECK_EQ(lines, 1500u);
    CHECK(output.size() > 1500u * 20);
    CHECK(output.rfind("line 1500 of a long listing\r\n") == output.size() - 29);
}

WINTEST_CASE(missingCommandReturnsNothingAtOnce)
{
    const ULONGLONG start = now();
    CHECK_EQ(runAndRead(L"varnel-no-such-tool.exe /query", 30000), "");
    CHECK_EQ(runAndRead(L"", 30000), "");
    CHECK(now() - start < 2000);
}

WINTEST_CASE(timeOutReturnsEarlyOutputAndEndsTheCommand)
{
    // Generous limits: a loaded machine makes cmd slow to start under Wine.
    const ULONGLONG start = now();
    const std::string output =
        runAndRead(L"cmd /c echo early& ping -n 15 127.0.0.1 >nul& echo late", 5000);
    const ULONGLONG elapsed = now() - start;
    CHECK_EQ(output, "early\r\n");
    CHECK(elapsed >= 5000);
    CHECK(elapsed < 8000);
    // The overrunning cmd is gone at once; its ping may run on as an orphan.
    CHECK_EQ(runningChildren(L"cmd.exe"), 0);
}

WINTEST_CASE(startedCommandsRunWithoutWaiting)
{
    const std::wstring hidden = tempPath(L"winexec");
    CHECK(startShown(L"cmd /c echo x> " + hidden, SW_HIDE));
    CHECK_EQ(waitForFile(hidden), "x\r\n");

    const std::wstring plain = tempPath(L"start");
    CHECK(startCommand(L"cmd /c echo y> " + plain));
    CHECK_EQ(waitForFile(plain), "y\r\n");

    CHECK(!startShown(L"varnel-no-such-tool.exe", SW_SHOWNORMAL));
    CHECK(!startCommand(L"varnel-no-such-tool.exe"));
}

WINTEST_CASE(detachedStartUsesTheWorkingDirectory)
{
    const std::wstring dir = tempPath(L"workdir");
    CHECK(CreateDirectoryW(dir.c_str(), nullptr));
    // The relative output path lands in the working directory only if it was applied.
    CHECK(startDetached(L"cmd", {L"/c", L"cd", L">", L"cwd.txt"}, dir));
    const std::string written = waitForFile(dir + L"\\cwd.txt");
    // The temporary folder's path is plain ASCII.
    CHECK_EQ(written, std::string(dir.begin(), dir.end()) + "\r\n");

    CHECK(!startDetached(L"", {}, dir));
    CHECK(!startDetached(L"varnel-no-such-tool.exe", {L"a"}, dir));
}

WINTEST_CASE(argumentsSurviveTheCommandLine)
{
    CHECK_EQ(quoteArgument(L""), L"\"\"");
    CHECK_EQ(quoteArgument(L"/s"), L"/s");
    CHECK_EQ(joinCommandLine(L"C:\\Program Files\\Suite\\update.exe", {L"", L"-q"}),
             L"\"C:\\Program Files\\Suite\\update.exe\" \"\" -q");

    // Read back by the same rules every Windows program uses for its arguments.
    const std::wstring program = L"C:\\Program Files\\Suite\\update.exe";
    const std::vector<std::wstring> arguments = {L"",
                                                 L"plain",
                                                 L"two words",
                                                 L"tab\there",
                                                 L"say \"hi\"",
                                                 L"trailing\\",
                                                 L"space end\\",
                                                 L"a\\\\\"b",
                                                 L"\\\\server\\share\\",
                                                 L"C:\\Program Files\\x\\",
                                                 L"\"",
                                                 L"\\"};
    int count = 0;
    wchar_t **argv = CommandLineToArgvW(joinCommandLine(program, arguments).c_str(), &count);
    CHECK(argv != nullptr);
    if (!argv)
        return;
    std::vector<std::wstring> parsed(argv, argv + count);
    LocalFree(argv);
    CHECK_EQ(parsed.size(), arguments.size() + 1);
    CHECK_EQ(parsed.front(), program);
    CHECK_EQ(std::vector<std::wstring>(parsed.begin() + 1, parsed.end()), arguments);
}

WINTEST_CASE(outputDecodesToUtf8)
{
    // UTF-16LE with its mark, as wmic writes into a pipe; an odd last byte is dropped.
    CHECK_EQ(decodeCommandOutput(std::string("\xFF\xFEN\0a\0\xE9\0\r\0\n\0\x01", 13)),
             "Na\xC3\xA9\r\n");
    CHECK_EQ(decodeCommandOutput(std::string("\xFF\xFE", 2)), "");
    CHECK_EQ(decodeCommandOutput("\xEF\xBB\xBFName\r\n"), "Name\r\n");
    // 8-bit text in the code page it was written in.
    CHECK_EQ(decodeCommandOutput("caf\x82", 437), "caf\xC3\xA9");
    CHECK_EQ(decodeCommandOutput("caf\xE9", 1252), "caf\xC3\xA9");
    CHECK_EQ(decodeCommandOutput("Name  \r\nCPU\r\n"), "Name  \r\nCPU\r\n");
    CHECK_EQ(decodeCommandOutput(""), "");
}

WINTEST_CASE(wmicOutputDecodes)
{
    const std::string raw = runAndRead(L"wmic cpu get Name", 30000);
    CHECK(raw.size() > 2 && raw.compare(0, 2, "\xFF\xFE") == 0);
    const std::string text = decodeCommandOutput(raw);
    CHECK(text.find("Name") != std::string::npos);
    CHECK(text.find('\0') == std::string::npos);
}
