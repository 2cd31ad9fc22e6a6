#include "wintest.h"

#include "ddc_monitor.h"

#include <map>
#include <string>

using namespace varnel::win;

namespace {

struct Monitor {
    bool readable;
    DWORD current;
    DWORD maximum;
};

class ScriptedChannel : public VcpChannel {
public:
    std::map<HANDLE, Monitor> monitors;
    std::vector<std::string> log;

    bool read(HANDLE monitor, BYTE code, DWORD *current, DWORD *maximum) override
    {
        log.push_back("read " + name(monitor) + " " + std::to_string(code));
        const Monitor &m = monitors.at(monitor);
        *current = m.current;
        *maximum = m.maximum;
        return m.readable;
    }
    void write(HANDLE monitor, BYTE code, DWORD value) override
    {
        log.push_back("write " + name(monitor) + " " + std::to_string(code) + " " +
                      std::to_string(value));
    }
    static std::string name(HANDLE h) { return std::to_string(reinterpret_cast<uintptr_t>(h)); }
};

HANDLE handle(uintptr_t n)
{
    return reinterpret_cast<HANDLE>(n);
}

} // namespace

// Wine stubs the dxva2 calls, so the rule is checked over a scripted channel.
WINTEST_CASE(readCompareWrite)
{
    struct Row {
        Monitor monitor;
        DWORD value;
        bool written;
    };
    const Row rows[] = {
        {{true, 50, 100}, 70, true}, {{true, 70, 100}, 70, false},  {{true, 10, 80}, 80, true},
        {{true, 10, 80}, 81, false}, {{false, 10, 100}, 70, false},
    };
    for (const Row &r : rows) {
        ScriptedChannel channel;
        channel.monitors[handle(1)] = r.monitor;
        setVcpOnMonitors({handle(1)}, channel, 0x10, r.value);
        std::vector<std::string> expected = {"read 1 16"};
        if (r.written)
            expected.push_back("write 1 16 " + std::to_string(r.value));
        CHECK_EQ(channel.log, expected);
    }
}

// Each monitor on its own; Wine's real call, without a DDC/CI monitor, is quiet and returns.
WINTEST_CASE(everyPhysicalMonitorIsSet)
{
    setVcpFeature(0x10, 55);
    ScriptedChannel channel;
    channel.monitors = {
        {handle(1), {true, 20, 100}}, {handle(2), {false, 0, 0}}, {handle(3), {true, 90, 100}}};
    setVcpOnMonitors({handle(1), handle(2), handle(3)}, channel, 0x10, 60);
    CHECK_EQ(channel.log, std::vector<std::string>({"read 1 16", "write 1 16 60", "read 2 16",
                                                    "read 3 16", "write 3 16 60"}));
}
