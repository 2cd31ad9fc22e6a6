#include "win_commands.h"

#include "program_path.h"
#include "win_text.h"

#include <windows.h>

#include <cstring>

namespace varnel::win {

namespace {

class Handle {
public:
    explicit Handle(HANDLE h = nullptr) : m_h(h == INVALID_HANDLE_VALUE ? nullptr : h) {}
    ~Handle() { reset(); }
    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;

    HANDLE get() const { return m_h; }
    HANDLE *out() { return &m_h; }
    void reset()
    {
        if (m_h)
            CloseHandle(m_h);
        m_h = nullptr;
    }

private:
    HANDLE m_h;
};

// Reads whatever the pipe holds without blocking. Returns false once no writer is left.
bool drainPipe(HANDLE pipe, std::string &output)
{
    for (;;) {
        DWORD available = 0;
        if (!PeekNamedPipe(pipe, nullptr, 0, nullptr, &available, nullptr))
            return false;
        if (available == 0)
            return true;
        char buffer[16384];
        DWORD chunk = available < sizeof(buffer) ? available : sizeof(buffer);
        DWORD read = 0;
        if (!ReadFile(pipe, buffer, chunk, &read, nullptr))
            return false;
        output.append(buffer, read);
    }
}

// The program is always named by its full path: an elevated process must not run whatever a
// user put first on the search path or into the working folder.
bool launch(const std::wstring &commandLine, DWORD flags, const STARTUPINFOW &startup,
            bool inheritHandles, const wchar_t *workingDirectory, PROCESS_INFORMATION &info)
{
    const ResolvedCommand resolved = resolveCommand(commandLine, programFolders());
    if (resolved.application.empty())
        return false;
    // CreateProcessW may write into the command line it is given.
    std::wstring line = resolved.commandLine;
    STARTUPINFOW si = startup;
    return CreateProcessW(resolved.application.c_str(), line.data(), nullptr, nullptr,
                          inheritHandles, flags, nullptr, workingDirectory, &si, &info) != FALSE;
}

bool needsQuotes(const std::wstring &argument)
{
    return argument.empty() || argument.find_first_of(L" \t\n\v\"") != std::wstring::npos;
}

} // namespace

std::string runAndRead(const std::wstring &commandLine, int timeoutMs)
{
    SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    Handle readEnd;
    Handle writeEnd;
    if (!CreatePipe(readEnd.out(), writeEnd.out(), &inheritable, 0))
        return {};
    SetHandleInformation(readEnd.get(), HANDLE_FLAG_INHERIT, 0);
    Handle nul(CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                           &inheritable, OPEN_EXISTING, 0, nullptr));

    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = nul.get();
    startup.hStdOutput = writeEnd.get();
    startup.hStdError = nul.get();
    PROCESS_INFORMATION info{};
    const bool started = launch(commandLine, CREATE_NO_WINDOW, startup, true, nullptr, info);
    // Only the child may hold the write end, or the pipe would never report its end.
    writeEnd.reset();
    nul.reset();
    if (!started)
        return {};
    Handle process(info.hProcess);
    Handle thread(info.hThread);

    std::string output;
    const ULONGLONG start = GetTickCount64();
    bool open = true;
    for (;;) {
        const size_t before = output.size();
        if (open)
            open = drainPipe(readEnd.get(), output);
        if (WaitForSingleObject(process.get(), 0) == WAIT_OBJECT_0) {
            // Everything the child wrote is in the pipe by now. A grandchild may still hold the
            // write end; its later output is not waited for.
            if (open)
                drainPipe(readEnd.get(), output);
            return output;
        }
        const ULONGLONG elapsed = GetTickCount64() - start;
        if (timeoutMs >= 0 && elapsed >= static_cast<ULONGLONG>(timeoutMs))
            break;
        if (output.size() != before)
            continue;
        DWORD slice = 10;
        if (timeoutMs >= 0 && static_cast<ULONGLONG>(timeoutMs) - elapsed < slice)
            slice = static_cast<DWORD>(static_cast<ULONGLONG>(timeoutMs) - elapsed);
        WaitForSingleObject(process.get(), slice);
    }
    // As a process object going out of scope does: a command that overran is not left behind.
    TerminateProcess(process.get(), 1);
    WaitForSingleObject(process.get(), 1000);
    if (open)
        drainPipe(readEnd.get(), output);
    return output;
}

bool startCommand(const std::wstring &commandLine)
{
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION info{};
    if (!launch(commandLine, CREATE_NO_WINDOW, startup, false, nullptr, info))
        return false;
    CloseHandle(info.hThread);
    CloseHandle(info.hProcess);
    return true;
}

// What WinExec does, minus its search along the path and the working folder.
bool startShown(const std::wstring &commandLine, int showMode)
{
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = static_cast<WORD>(showMode);
    PROCESS_INFORMATION info{};
    if (!launch(commandLine, 0, startup, false, nullptr, info))
        return false;
    CloseHandle(info.hThread);
    CloseHandle(info.hProcess);
    return true;
}

bool startDetached(const std::wstring &program, const std::vector<std::wstring> &arguments,
                   const std::wstring &workingDirectory)
{
    if (program.empty())
        return false;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION info{};
    // A console program started from the window gets no console window of its own.
    const DWORD flags = (GetConsoleWindow() ? 0 : CREATE_NO_WINDOW);
    if (!launch(joinCommandLine(program, arguments), flags, startup, false,
                workingDirectory.empty() ? nullptr : workingDirectory.c_str(), info))
        return false;
    CloseHandle(info.hThread);
    CloseHandle(info.hProcess);
    return true;
}

std::wstring quoteArgument(const std::wstring &argument)
{
    if (!needsQuotes(argument))
        return argument;
    std::wstring quoted = L"\"";
    size_t backslashes = 0;
    for (wchar_t c : argument) {
        if (c == L'\\') {
            ++backslashes;
            continue;
        }
        // Backslashes count as escapes only in front of a quote.
        if (c == L'"')
            quoted.append(backslashes * 2 + 1, L'\\');
        else
            quoted.append(backslashes, L'\\');
        backslashes = 0;
        quoted += c;
    }
    // The closing quote must not be escaped by trailing backslashes.
    quoted.append(backslashes * 2, L'\\');
    quoted += L'"';
    return quoted;
}

std::wstring joinCommandLine(const std::wstring &program,
                             const std::vector<std::wstring> &arguments)
{
    // The program name ends at the next quote or blank and knows no escapes.
    std::wstring line = program;
    if (program.find_first_of(L" \t") != std::wstring::npos && program.front() != L'"')
        line = L"\"" + program + L"\"";
    for (const std::wstring &argument : arguments) {
        line += L' ';
        line += quoteArgument(argument);
    }
    return line;
}

std::string decodeCommandOutput(const std::string &bytes, unsigned codePage)
{
    if (bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == 0xFF &&
        static_cast<unsigned char>(bytes[1]) == 0xFE) {
        std::wstring wide((bytes.size() - 2) / 2, L'\0');
        std::memcpy(wide.data(), bytes.data() + 2, wide.size() * sizeof(wchar_t));
        return toUtf8(wide);
    }
    if (bytes.size() >= 3 && bytes.compare(0, 3, "\xEF\xBB\xBF") == 0)
        return bytes.substr(3);
    return toUtf8(fromCodePage(bytes, codePage));
}

} // namespace varnel::win
