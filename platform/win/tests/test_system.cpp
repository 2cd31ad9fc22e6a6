#include "wintest.h"

#include "battery.h"
#include "win_commands.h"
#include "win_identity.h"
#include "win_powersource.h"
#include "wmiquery.h"

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

WmicRun notInstalled(const std::wstring &, int)
{
    return WmicRun();
}

std::string valueLine(const std::string &text)
{
    const size_t start = text.find('\n') + 1;
    const size_t end = text.find_last_not_of(" \r\n", text.find('\n', start));
    return text.substr(start, end + 1 - start);
}

} // namespace

// Only the exact spellings are the queries; wmic's UTF-16 with a mark is decoded, 8-bit text kept.
WINTEST_CASE(identificationQueriesAnswerInWmicsLayout)
{
    CHECK(identificationQuery(L"wmic cpu get Name") == IdentificationQuery::ProcessorName);
    CHECK(identificationQuery(L"wmic computersystem get model") ==
          IdentificationQuery::ComputerModel);
    CHECK(!identificationQuery(L"wmic cpu get name"));
    CHECK(!identificationQuery(L"WMIC Path Win32_Battery Get BatteryStatus"));
    CHECK(!answerIdentificationQuery(L"tasklist", 30000, printing("x")));

    const std::string text = "Name  \r\r\nIntel(R) Core(TM) i7-8750H CPU @ 2.20GHz  \r\r\n";
    std::string utf16 = "\xFF\xFE";
    for (char c : text)
        utf16 += std::string{c, '\0'};
    std::vector<std::wstring> asked;
    CHECK_EQ(answerIdentificationQuery(L"wmic cpu get Name", 30000, printing(utf16, &asked))
                 .value_or("<none>"),
             text);
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
    const auto text = answerIdentificationQuery(L"wmic cpu get Name", 30000, notInstalled);
    CHECK(text && text->find("Name") == 0);
    CHECK_EQ(valueLine(text.value_or("")), names->front());
    CHECK(text && text->size() > 6 && text->substr(text->size() - 6) == "\r\r\n\r\r\n");
    const auto viaWmic = answerIdentificationQuery(L"wmic cpu get Name", 30000);
    CHECK(viaWmic && viaWmic->find('\0') == std::string::npos);
    CHECK(viaWmic && viaWmic->find("Name") == 0 &&
          viaWmic->find(names->front()) != std::string::npos);

    const auto models = identificationValues(IdentificationQuery::ComputerModel);
    CHECK(bool(models));
    const auto model =
        answerIdentificationQuery(L"wmic computersystem get model", 30000, notInstalled);
    CHECK(model && model->find("Model") == 0);
    if (models && !models->empty())
        CHECK_EQ(valueLine(model.value_or("")), models->front());
}

WINTEST_CASE(batteryQueriesAnswerInWmicsLayout)
{
    CHECK_EQ(batteryQueryProperty(L"WMIC Path Win32_Battery Get BatteryStatus"),
             std::wstring(L"BatteryStatus"));
    CHECK_EQ(batteryQueryProperty(L"WMIC Path Win32_Battery Get EstimatedChargeRemaining"),
             std::wstring(L"EstimatedChargeRemaining"));
    CHECK_EQ(batteryQueryProperty(L"wmic path win32_battery get batterystatus"),
             std::wstring(L"BatteryStatus"));
    for (const wchar_t *other :
         {L"WMIC Path Win32_Battery Get DesignCapacity",
          L"WMIC Path Win32_Battery Get BatteryStatus /value", L"wmic cpu get Name"})
        CHECK(batteryQueryProperty(other).empty());

    CHECK_EQ(wmicTable("BatteryStatus", {"2"}),
             std::string("BatteryStatus  \r\r\n2              \r\r\n\r\r\n"));
    CHECK_EQ(wmicTable("EstimatedChargeRemaining", {"87", "100"}),
             std::string("EstimatedChargeRemaining  \r\r\n87                        \r\r\n"
                         "100                       \r\r\n\r\r\n"));
    // Wine's WMI has the class and no instance: the machine without a battery.
    CHECK_EQ(batteryAnswerFromWmi(L"BatteryStatus"), std::string("BatteryStatus  \r\r\n"));
    CHECK_EQ(batteryAnswerFromWmi(L"EstimatedChargeRemaining"),
             std::string("EstimatedChargeRemaining  \r\r\n"));
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
    while (!echoed.empty() && (echoed.back() == '\n' || echoed.back() == '\r'))
        echoed.pop_back();
    CHECK(!name.empty());
    CHECK_EQ(name, echoed);
    CHECK_EQ(acLineStatus(), 1);
}
