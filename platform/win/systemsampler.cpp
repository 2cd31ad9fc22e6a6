#include "systemsampler.h"

#include <windows.h>

#include <iphlpapi.h>

namespace varnel::win {

namespace {

uint64_t fromFileTime(const FILETIME &time)
{
    return (static_cast<uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
}

using GetIfTableCall = DWORD(WINAPI *)(PMIB_IFTABLE, PULONG, BOOL);

} // namespace

bool memoryStatus(uint64_t *totalPhysical, uint64_t *availablePhysical)
{
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof(status);
    if (!GlobalMemoryStatusEx(&status))
        return false;
    *totalPhysical = status.ullTotalPhys;
    *availablePhysical = status.ullAvailPhys;
    return true;
}

bool systemTimes(uint64_t *idle, uint64_t *kernel, uint64_t *user)
{
    FILETIME idleTime{}, kernelTime{}, userTime{};
    if (!GetSystemTimes(&idleTime, &kernelTime, &userTime))
        return false;
    *idle = fromFileTime(idleTime);
    *kernel = fromFileTime(kernelTime);
    *user = fromFileTime(userTime);
    return true;
}

uint64_t freeBytesForCaller()
{
    wchar_t windows[MAX_PATH] = {};
    const UINT length = GetWindowsDirectoryW(windows, MAX_PATH);
    if (length < 3 || length >= MAX_PATH)
        return 0;
    const wchar_t root[] = {windows[0], L':', L'\\', 0};
    ULARGE_INTEGER callerFree{}, total{}, totalFree{};
    if (!GetDiskFreeSpaceExW(root, &callerFree, &total, &totalFree))
        return 0;
    return callerFree.QuadPart;
}

InterfaceTable::InterfaceTable()
{
    HMODULE library = LoadLibraryW(L"iphlpapi.dll");
    m_library = library;
    if (library)
        m_getIfTable = reinterpret_cast<void *>(GetProcAddress(library, "GetIfTable"));
}

InterfaceTable::~InterfaceTable()
{
    if (m_library)
        FreeLibrary(static_cast<HMODULE>(m_library));
}

std::vector<InterfaceRow> InterfaceTable::rows() const
{
    std::vector<InterfaceRow> out;
    if (!m_getIfTable)
        return out;
    auto getIfTable = reinterpret_cast<GetIfTableCall>(m_getIfTable);
    ULONG size = 0;
    if (getIfTable(nullptr, &size, FALSE) != ERROR_INSUFFICIENT_BUFFER || size == 0)
        return out;
    std::vector<unsigned char> buffer(size);
    auto *table = reinterpret_cast<PMIB_IFTABLE>(buffer.data());
    if (getIfTable(table, &size, FALSE) != NO_ERROR)
        return out;
    out.reserve(table->dwNumEntries);
    for (DWORD i = 0; i < table->dwNumEntries; ++i) {
        const MIB_IFROW &row = table->table[i];
        out.push_back({row.dwType, row.dwInOctets, row.dwOutOctets});
    }
    return out;
}

} // namespace varnel::win
