#include "wintest.h"

#include "systemsampler.h"

#include <windows.h>

#include <cstdio>
#include <fstream>
#include <sstream>

using namespace varnel::win;

namespace {

// A number from one of the host's own files, through Wine's Z: drive, to check against.
unsigned long long hostFigure(const std::string &path, const char *format)
{
    std::ifstream in("Z:" + path);
    std::stringstream text;
    text << in.rdbuf();
    const std::string content = text.str();
    // A format of "Key: %llu" finds its key first.
    const std::string key = format;
    const size_t space = key.find(' ');
    const size_t at = space == std::string::npos ? 0 : content.find(key.substr(0, space));
    unsigned long long value = 0;
    if (at != std::string::npos)
        std::sscanf(content.c_str() + at, format, &value);
    return value;
}

} // namespace

WINTEST_CASE(memoryTimesAndDiskMatchTheHost)
{
    uint64_t total = 0, available = 0;
    CHECK(memoryStatus(&total, &available));
    const unsigned long long hostKib = hostFigure("/proc/meminfo", "MemTotal: %llu");
    CHECK(hostKib > 0);
    CHECK_EQ(total >> 20, (hostKib * 1024) >> 20);
    CHECK(available > 0 && available <= total);

    uint64_t idle0 = 0, kernel0 = 0, user0 = 0, idle1 = 0, kernel1 = 0, user1 = 0;
    CHECK(systemTimes(&idle0, &kernel0, &user0));
    CHECK(kernel0 >= idle0);
    const DWORD start = GetTickCount();
    for (volatile uint64_t spin = 0; GetTickCount() - start < 300;)
        spin = spin + 1;
    CHECK(systemTimes(&idle1, &kernel1, &user1));
    CHECK(kernel1 >= kernel0);
    CHECK(user1 + kernel1 > user0 + kernel0);

    const uint64_t free = freeBytesForCaller();
    ULARGE_INTEGER caller{}, size{}, totalFree{};
    CHECK(GetDiskFreeSpaceExW(L"C:\\", &caller, &size, &totalFree));
    CHECK(free > 0 && free <= size.QuadPart);
    CHECK((free > caller.QuadPart ? free - caller.QuadPart : caller.QuadPart - free) <
          (64ull << 20));
}

// The busiest host interface shows up with the same received octets (low 32 bits), give or take
// the traffic of the moment; a loopback is always there.
WINTEST_CASE(interfaceTableHasTheHostsCounters)
{
    InterfaceTable table;
    CHECK(table.available());
    const std::vector<InterfaceRow> rows = table.rows();
    bool loopback = false, matched = false;
    const auto hostReceived =
        static_cast<uint32_t>(hostFigure("/sys/class/net/eth0/statistics/rx_bytes", "%llu"));
    for (const InterfaceRow &row : rows) {
        loopback = loopback || row.type == 24;
        matched = matched || (row.type == 6 && row.inOctets - hostReceived < (16u << 20));
    }
    CHECK(loopback);
    CHECK(matched || hostReceived == 0);
}
