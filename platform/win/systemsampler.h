#pragma once

#include <cstdint>
#include <vector>

namespace varnel::win {

// Figures for the resources widget from Windows itself.

// Total and available physical memory in bytes (GlobalMemoryStatusEx).
bool memoryStatus(uint64_t *totalPhysical, uint64_t *availablePhysical);

// Cumulative idle, kernel (idle included) and user times in 100 ns units (GetSystemTimes).
bool systemTimes(uint64_t *idle, uint64_t *kernel, uint64_t *user);

// Bytes the caller may still write on the system volume (GetDiskFreeSpaceExW on the root of the
// Windows folder's drive); 0 when it cannot be read.
uint64_t freeBytesForCaller();

struct InterfaceRow {
    uint32_t type; // IANA ifType: 6 Ethernet, 71 Wi-Fi, 24 loopback, ...
    uint32_t inOctets;
    uint32_t outOctets;
};

// GetIfTable from iphlpapi.dll, loaded at run time; rows unsorted, in the table's order. The
// table is asked for its size first and fetched into a buffer made for each call.
class InterfaceTable {
public:
    InterfaceTable();
    ~InterfaceTable();
    InterfaceTable(const InterfaceTable &) = delete;
    InterfaceTable &operator=(const InterfaceTable &) = delete;

    bool available() const { return m_getIfTable != nullptr; }
    std::vector<InterfaceRow> rows() const;

private:
    void *m_library = nullptr;
    void *m_getIfTable = nullptr;
};

} // namespace varnel::win
