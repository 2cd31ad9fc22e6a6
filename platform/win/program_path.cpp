#include "program_path.h"

#include <windows.h>

#include <cwctype>

namespace varnel::win {

namespace {

enum class Base { System, Windows };

struct SystemTool {
    const wchar_t *name;
    Base base;
    // Where the tool lives below its folder, most usual place first.
    std::vector<const wchar_t *> places;
};

const std::vector<SystemTool> &systemTools()
{
    static const std::vector<SystemTool> tools = {
        {L"powercfg", Base::System, {L"powercfg.exe"}},
        {L"schtasks", Base::System, {L"schtasks.exe"}},
        {L"tasklist", Base::System, {L"tasklist.exe"}},
        {L"taskkill", Base::System, {L"taskkill.exe"}},
        {L"wmic", Base::System, {L"wbem\\wmic.exe", L"wmic.exe"}},
        {L"reg", Base::System, {L"reg.exe"}},
        {L"net", Base::System, {L"net.exe"}},
        {L"regsvr32", Base::System, {L"regsvr32.exe"}},
        {L"explorer", Base::Windows, {L"explorer.exe"}},
        {L"control", Base::System, {L"control.exe"}},
        {L"powershell",
         Base::System,
         {L"WindowsPowerShell\\v1.0\\powershell.exe", L"powershell.exe"}},
        {L"devcon", Base::System, {L"devcon.exe"}},
        {L"cmd", Base::System, {L"cmd.exe"}},
    };
    return tools;
}

std::wstring lower(std::wstring text)
{
    for (wchar_t &c : text)
        c = static_cast<wchar_t>(std::towlower(c));
    return text;
}

bool isSeparator(wchar_t c)
{
    return c == L'\\' || c == L'/';
}

bool fileExists(const std::wstring &path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

std::wstring joined(const std::wstring &folder, const std::wstring &name)
{
    if (folder.empty() || isSeparator(folder.back()))
        return folder + name;
    return folder + L"\\" + name;
}

std::wstring withExtension(const std::wstring &path)
{
    const size_t nameStart = path.find_last_of(L"\\/");
    const size_t dot = path.rfind(L'.');
    if (dot != std::wstring::npos && (nameStart == std::wstring::npos || dot > nameStart))
        return path;
    return path + L".exe";
}

std::wstring systemToolPath(const std::wstring &bareName, const ProgramFolders &folders)
{
    std::wstring stem = lower(bareName);
    if (stem.size() > 4 && stem.compare(stem.size() - 4, 4, L".exe") == 0)
        stem.resize(stem.size() - 4);
    for (const SystemTool &tool : systemTools()) {
        if (stem != tool.name)
            continue;
        const std::wstring &base = tool.base == Base::System ? folders.system : folders.windows;
        for (const wchar_t *place : tool.places) {
            const std::wstring candidate = joined(base, place);
            if (fileExists(candidate))
                return candidate;
        }
        // Missing from the system folder: it fails as a missing program does, and is not looked
        // for anywhere else.
        return joined(base, tool.places.front());
    }
    return std::wstring();
}

} // namespace

ProgramFolders programFolders()
{
    ProgramFolders folders;
    wchar_t buffer[MAX_PATH + 1];
    UINT length = GetSystemDirectoryW(buffer, MAX_PATH + 1);
    if (length > 0 && length <= MAX_PATH)
        folders.system.assign(buffer, length);
    length = GetWindowsDirectoryW(buffer, MAX_PATH + 1);
    if (length > 0 && length <= MAX_PATH)
        folders.windows.assign(buffer, length);
    std::wstring module(32768, L'\0');
    const DWORD size = GetModuleFileNameW(nullptr, module.data(), DWORD(module.size()));
    if (size > 0 && size < module.size()) {
        module.resize(size);
        const size_t slash = module.find_last_of(L"\\/");
        if (slash != std::wstring::npos)
            folders.install = module.substr(0, slash);
    }
    return folders;
}

std::wstring resolveProgram(const std::wstring &program, const ProgramFolders &folders)
{
    std::wstring name = program;
    if (name.size() >= 2 && name.front() == L'"' && name.back() == L'"')
        name = name.substr(1, name.size() - 2);
    if (name.empty())
        return std::wstring();
    const bool drive = name.size() >= 2 && std::iswalpha(name[0]) && name[1] == L':';
    if (drive)
        return name.size() >= 3 && isSeparator(name[2]) ? withExtension(name) : std::wstring();
    if (isSeparator(name[0]))
        return name.size() >= 2 && isSeparator(name[1]) ? withExtension(name) : std::wstring();
    if (name.find_first_of(L"\\/") == std::wstring::npos) {
        const std::wstring tool = systemToolPath(name, folders);
        if (!tool.empty())
            return tool;
    }
    if (folders.install.empty())
        return std::wstring();
    return withExtension(joined(folders.install, name));
}

ResolvedCommand resolveCommand(const std::wstring &commandLine, const ProgramFolders &folders)
{
    // The program ends at its closing quote, or else at the first blank, as the loader reads it.
    size_t end = 0;
    if (!commandLine.empty() && commandLine.front() == L'"') {
        end = commandLine.find(L'"', 1);
        end = end == std::wstring::npos ? commandLine.size() : end + 1;
    } else {
        end = commandLine.find_first_of(L" \t");
        if (end == std::wstring::npos)
            end = commandLine.size();
    }
    ResolvedCommand resolved;
    resolved.application = resolveProgram(commandLine.substr(0, end), folders);
    if (!resolved.application.empty())
        resolved.commandLine = L"\"" + resolved.application + L"\"" + commandLine.substr(end);
    return resolved;
}

} // namespace varnel::win
