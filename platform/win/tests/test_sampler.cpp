#include "wintest.h"

#include "systemsampler.h"

#include <windows.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

using namespace varnel::win;

namespace {

// The host's own files, through Wine's Z: drive, to check the figures against.
std::string hostFile(const std::string &path)
{
    std::ifstream in("Z:" + path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

uint64_t hostMemTotalBytes()
{
    const std::string meminfo = hostFile("/proc/meminfo");
    unsigned long long kib = 0;
    const size_t at = meminfo.find("MemTotal:");
    if (at == std::string::npos || std::sscanf(meminfo.c_str() + at, "MemTotal: %llu", &kib) != 1)
        return 0;
    return kib * 1024;
}

} // namespace

WINTEST_CASE(memoryMatchesTheHost)
{
    uint64_t total = 0, available = 0;
    CHECK(memoryStatus(&total, &available));
    const uint64_t host = hostMemTotalBytes();
    CHECK(host > 0);
    CHECK_EQ(total >> 20, host >> 20);
    CHECK(available > 0);
    CHECK(available <= total);
}

WINTEST_CASE(processorTimesGrowWithWork)
{
    uint64_t idle0 = 0, kernel0 = 0, user0 = 0;
    CHECK(systemTimes(&idle0, &kernel0, &user0));
    CHECK(kernel0 >= idle0);

    const DWORD start = GetTickCount();
    volatile uint64_t spin = 0;
    while (GetTickCount() - start < 300)
        spin = spin + 1;
    uint64_t idle1 = 0, kernel1 = 0, user1 = 0;
    CHECK(systemTimes(&idle1, &kernel1, &user1));
    CHECK(kernel1 >= kernel0);
    CHECK(user1 + kernel1 > user0 + kernel0);
}

WINTEST_CASE(interfaceTableHasTheHostsCounters)
{
    InterfaceTable table;
    CHECK(table.available());
    const std::vector<InterfaceRow> rows = table.rows();
    CHECK(!rows.empty());
    bool loopback = false;
    for (const InterfaceRow &row : rows)
        loopback = loopback || row.type == 24;
    CHECK(loopback);

    // The busiest host interface shows up with the same received octets (low 32 bits), give or
    // take the traffic of the moment.
    unsigned long long hostReceived = 0;
    std::sscanf(hostFile("/sys/class/net/eth0/statistics/rx_bytes").c_str(), "%llu", &hostReceived);
    if (hostReceived > 0) {
        bool matched = false;
        for (const InterfaceRow &row : rows) {
            const uint32_t host32 = static_cast<uint32_t>(hostReceived);
            const uint32_t diff = row.inOctets - host32;
            matched = matched || (row.type == 6 && diff < (16u << 20));
        }
        CHECK(matched);
    }
}

WINTEST_CASE(freeSpaceIsBelowTheVolumeSize)
{
    const uint64_t free = freeBytesForCaller();
    CHECK(free > 0);
    ULARGE_INTEGER caller{}, total{}, totalFree{};
    CHECK(GetDiskFreeSpaceExW(L"C:\\", &caller, &total, &totalFree));
    CHECK(free <= total.QuadPart);
    const uint64_t diff = free > caller.QuadPart ? free - caller.QuadPart : caller.QuadPart - free;
    CHECK(diff < (64ull << 20));
}
