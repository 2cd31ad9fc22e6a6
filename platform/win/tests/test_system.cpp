#include "wintest.h"

#include "battery.h"
#include "nativemessage.h"
#include "systemsampler.h"
#include "win_commands.h"
#include "win_identity.h"
#include "win_powersource.h"
#include "wmiquery.h"

#include <cstdio>
#include <fstream>
#include <iterator>

using namespace varnel::win;

namespace {

WmicRunner printing(const std::string &bytes, std::vector<std::wstring> *asked = nullptr)
{
    return [bytes, asked](const std::wstring &commandLine, int) {
        if (asked)
            asked->push_back(commandLine);
        return WmicRun{true, bytes};
    };
}

const WmicRunner notInstalled = [](const std::wstring &, int) { return WmicRun(); };

// A number from one of the host's own files, through Wine's Z: drive, to check against; a
// format of "Key: %llu" finds its key first.
unsigned long long hostFigure(const std::string &path, const std::string &format)
{
    std::ifstream in("Z:" + path);
    const std::string content{std::istreambuf_iterator<char>(in), {}};
    const size_t space = format.find(' ');
    const size_t at = space == std::string::npos ? 0 : content.find(format.substr(0, space));
    unsigned long long value = 0;
    if (at != std::string::npos)
        std::sscanf(content.c_str() + at, format.c_str(), &value);
    return value;
}

} // namespace

// Only the exact spellings are the queries; wmic's UTF-16 with a mark is decoded, 8-bit text kept.
WINTEST_CASE(identificationQueriesAnswerInWmicsLayout)
{
    CHECK(!answerIdentificationQuery(L"wmic cpu get name", 30000, printing("x")));
    std::vector<std::wstring> asked;
    const std::string utf16("\xFF\xFEN\0a\0m\0e\0\r\0\r\0\n\0", 16);
    CHECK_EQ(answerIdentificationQuery(L"wmic cpu get Name", 30000, printing(utf16, &asked))
                 .value_or("<none>"),
             std::string("Name\r\r\n"));
    CHECK_EQ(asked, std::vector<std::wstring>{L"wmic cpu get Name"});
    const std::string model = "Model        \r\r\nP95_96_97Ex  \r\r\n\r\r\n";
    CHECK_EQ(answerIdentificationQuery(L"wmic computersystem get model", 30000, printing(model))
                 .value_or("<none>"),
             model);
}

// Without wmic the same text comes from WMI: header, the value, a blank line; Wine's own wmic
// prints what WMI holds.
WINTEST_CASE(wmiAndWmicAgree)
{
    const auto names = identificationValues(IdentificationQuery::ProcessorName);
    CHECK(names && !names->empty() && !names->front().empty());
    if (!names || names->empty())
        return;
    CHECK_EQ(answerIdentificationQuery(L"wmic cpu get Name", 30000, notInstalled).value_or("-"),
             wmicTable("Name", *names));
    const auto viaWmic = answerIdentificationQuery(L"wmic cpu get Name", 30000);
    CHECK(viaWmic && viaWmic->find('\0') == std::string::npos);
    CHECK(viaWmic && viaWmic->find("Name") == 0 &&
          viaWmic->find(names->front()) != std::string::npos);

    const auto models = identificationValues(IdentificationQuery::ComputerModel);
    CHECK(bool(models));
    CHECK_EQ(answerIdentificationQuery(L"wmic computersystem get model", 30000, notInstalled)
                 .value_or("-"),
             wmicTable("Model", models.value_or(std::vector<std::string>())));
}

WINTEST_CASE(batteryQueriesAnswerInWmicsLayout)
{
    const std::pair<const wchar_t *, const wchar_t *> rows[] = {
        {L"WMIC Path Win32_Battery Get BatteryStatus", L"BatteryStatus"},
        {L"WMIC Path Win32_Battery Get EstimatedChargeRemaining", L"EstimatedChargeRemaining"},
        {L"wmic path win32_battery get batterystatus", L"BatteryStatus"},
        {L"WMIC Path Win32_Battery Get DesignCapacity", L""},
        {L"WMIC Path Win32_Battery Get BatteryStatus /value", L""},
        {L"wmic cpu get Name", L""}};
    for (const auto &[line, property] : rows)
        CHECK_EQ(batteryQueryProperty(line), std::wstring(property));

    CHECK_EQ(wmicTable("BatteryStatus", {"2"}),
             std::string("BatteryStatus  \r\r\n2              \r\r\n\r\r\n"));
    CHECK_EQ(wmicTable("EstimatedChargeRemaining", {"87", "100"}),
             std::string("EstimatedChargeRemaining  \r\r\n87                        \r\r\n"
                         "100                       \r\r\n\r\r\n"));
    // Wine's WMI has the class and no instance: the machine without a battery.
    CHECK_EQ(batteryAnswerFromWmi(L"BatteryStatus"), std::string("BatteryStatus  \r\r\n"));
    CHECK(batteryAnswerFromWmi(L"").empty());
    // wmic is found where Windows keeps it, and its line runs as it stands.
    CHECK(wmicInstalled());
    const std::string output =
        decodeCommandOutput(runAndRead(L"WMIC Path Win32_Battery Get BatteryStatus", 30000));
    CHECK(output.find_first_of("0123456789") == std::string::npos);
}

// The user as the shell names it; Wine reports mains power online.
WINTEST_CASE(userNameAndPowerSource)
{
    std::string name;
    CHECK(currentUserName(name));
    std::string echoed = decodeCommandOutput(runAndRead(L"cmd /c echo %USERNAME%", 30000));
    CHECK(!name.empty());
    CHECK_EQ(name + "\r\n", echoed);
    CHECK_EQ(acLineStatus(), 1);
}

// Posted to this thread and taken off the queue as the event loop would.
WINTEST_CASE(queuedMessagesCarryTheirIdAndCode)
{
    MSG msg{};
    PeekMessageW(&msg, nullptr, 0, 0, PM_NOREMOVE); // gives the thread its message queue
    const std::pair<UINT, WPARAM> rows[] = {
        {WM_POWERBROADCAST, PBT_APMRESUMESUSPEND},
        {0xC08E, WPARAM(0x0123456789ABCDEFull)}, // the device message, with a wide code
    };
    for (const auto &[id, code] : rows) {
        CHECK(PostThreadMessageW(GetCurrentThreadId(), id, code, 0));
        CHECK(GetMessageW(&msg, nullptr, id, id) > 0);
        NativeMessage read;
        CHECK(readNativeMessage(id == 0x218 ? "windows_generic_MSG" : "windows_dispatcher_MSG",
                                &msg, read));
        CHECK_EQ(read.id, id);
        CHECK_EQ(read.code, static_cast<std::uintptr_t>(code));
    }
    NativeMessage read;
    read.id = 7;
    CHECK(!readNativeMessage("xcb_generic_event_t", &msg, read));
    CHECK(!readNativeMessage("windows_generic_MSG", nullptr, read));
    CHECK_EQ(read.id, 7u);
}

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
    bool loopback = false, matched = false;
    const auto hostReceived =
        static_cast<uint32_t>(hostFigure("/sys/class/net/eth0/statistics/rx_bytes", "%llu"));
    for (const InterfaceRow &row : table.rows()) {
        loopback = loopback || row.type == 24;
        matched = matched || (row.type == 6 && row.inOctets - hostReceived < (16u << 20));
    }
    CHECK(loopback);
    CHECK(matched || hostReceived == 0);
}
