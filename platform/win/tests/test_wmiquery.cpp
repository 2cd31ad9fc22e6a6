#include "wintest.h"

#include "wmiquery.h"

using namespace varnel::win;

namespace {

// UTF-16LE with a byte-order mark, as wmic writes into a pipe.
std::string utf16WithMark(const std::string &ascii)
{
    std::string bytes = "\xFF\xFE";
    for (char c : ascii) {
        bytes += c;
        bytes += '\0';
    }
    return bytes;
}

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

WINTEST_CASE(onlyTheTwoIdentificationQueriesAreAnswered)
{
    CHECK(identificationQuery(L"wmic cpu get Name") == IdentificationQuery::ProcessorName);
    CHECK(identificationQuery(L"wmic computersystem get model") ==
          IdentificationQuery::ComputerModel);
    CHECK(!identificationQuery(L"wmic cpu get name"));
    CHECK(!identificationQuery(L"WMIC Path Win32_Battery Get BatteryStatus"));
    CHECK(!answerIdentificationQuery(L"tasklist", 30000, printing("x")));
}

WINTEST_CASE(wmicOutputInUtf16WithMarkIsDecoded)
{
    std::vector<std::wstring> asked;
    const auto text = answerIdentificationQuery(
        L"wmic cpu get Name", 30000,
        printing(utf16WithMark("Name  \r\r\nIntel(R) Core(TM) i7-8750H CPU @ 2.20GHz  \r\r\n"),
                 &asked));
    CHECK(bool(text));
    CHECK_EQ(*text, std::string("Name  \r\r\nIntel(R) Core(TM) i7-8750H CPU @ 2.20GHz  \r\r\n"));
    CHECK_EQ(asked, std::vector<std::wstring>{L"wmic cpu get Name"});
}

WINTEST_CASE(wmicOutputIn8BitTextIsKept)
{
    const std::string bytes = "Model        \r\r\nP95_96_97Ex  \r\r\n\r\r\n";
    const auto text =
        answerIdentificationQuery(L"wmic computersystem get model", 30000, printing(bytes));
    CHECK(bool(text));
    CHECK_EQ(*text, bytes);
}

WINTEST_CASE(comQueryGivesTheProcessorNameRow)
{
    const auto names = identificationValues(IdentificationQuery::ProcessorName);
    CHECK(bool(names));
    CHECK(!names->empty());
    CHECK(!names->front().empty());

    // Without wmic the same text comes from WMI: header, the name, a blank line.
    const auto text = answerIdentificationQuery(L"wmic cpu get Name", 30000, notInstalled);
    CHECK(bool(text));
    CHECK_EQ(text->substr(0, 4), std::string("Name"));
    CHECK_EQ(valueLine(*text), names->front());
    CHECK(text->size() > 6 && text->substr(text->size() - 6) == "\r\r\n\r\r\n");
}

WINTEST_CASE(comQueryGivesTheModelRow)
{
    const auto models = identificationValues(IdentificationQuery::ComputerModel);
    CHECK(bool(models));
    const auto text =
        answerIdentificationQuery(L"wmic computersystem get model", 30000, notInstalled);
    CHECK(bool(text));
    CHECK_EQ(text->substr(0, 5), std::string("Model"));
    if (!models->empty())
        CHECK_EQ(valueLine(*text), models->front());
}

WINTEST_CASE(realWmicAndComAgree)
{
    // Wine's wmic prints UTF-16LE with a mark; decoded, it names the processor WMI names.
    const auto viaWmic = answerIdentificationQuery(L"wmic cpu get Name", 30000);
    const auto viaCom = identificationValues(IdentificationQuery::ProcessorName);
    CHECK(viaWmic && viaCom && !viaCom->empty());
    CHECK_EQ(viaWmic->find('\0'), std::string::npos);
    CHECK(viaWmic->find("Name") == 0);
    CHECK(viaWmic->find(viaCom->front()) != std::string::npos);
}
