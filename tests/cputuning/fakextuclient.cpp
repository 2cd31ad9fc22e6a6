// A stand-in for the tuning utility's command-line client: "-t -id N" prints the header and
// setting N's row, then waits for a line on standard input, as the client does; "-t -id N -v V"
// stores V as setting N and prints nothing. Scripted through the environment:
//   FAKE_XTU_STATE=<file>   where written values are kept ("id=value" lines), so a later read
//                           shows them; settings never written read as an 8-core laptop part
//   FAKE_XTU_COMMA=1        print decimal commas
//   FAKE_XTU_CORES=<n>      a processor with n cores: ratio queries beyond it answer "Invalid Id"
//   FAKE_XTU_SILENT=1       print nothing at all
//   FAKE_XTU_HANG=<id>      hold the query or write of that setting until the file
//                           FAKE_XTU_RELEASE names exists (two minutes at most, so that a waiting
//                           caller fails instead of hanging the run)
//   FAKE_XTU_SPLIT=<id>     print that setting's row in two writes, a moment apart
//   FAKE_XTU_LOG=<file>     append "read <id>" or "write <id> <value>" for every call

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <string>
#include <thread>

namespace {

const char kHeader[] = "\r\nID           Name                           Value[Unit] Min        "
                       "Max        Multipliers Item Count\n\r\n";

struct Setting {
    const char *name, *initial;
};

const std::map<int, Setting> kSettings = {{34, {"Core Voltage Offset", "0"}},
                                          {48, {"Turbo Boost Power Max", "45"}},
                                          {66, {"Turbo Boost Power Time Window", "28"}},
                                          {29, {"1 Active Core", "51"}},
                                          {30, {"2 Active Cores", "51"}},
                                          {31, {"3 Active Cores", "49"}},
                                          {32, {"4 Active Cores", "49"}},
                                          {42, {"5 Active Cores", "47"}},
                                          {43, {"6 Active Cores", "47"}},
                                          {96, {"7 Active Cores", "46"}},
                                          {97, {"8 Active Cores", "46"}}};
const int kCoreIds[] = {29, 30, 31, 32, 42, 43, 96, 97};

std::string env(const char *name)
{
    const char *value = std::getenv(name);
    return value ? value : "";
}

void hangIfScripted(int id)
{
    for (int i = 0; env("FAKE_XTU_HANG") == std::to_string(id) && i < 2400; ++i) {
        if (std::ifstream(env("FAKE_XTU_RELEASE")))
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
}

std::string column(const std::string &text, size_t width)
{
    return text + std::string(text.size() < width ? width - text.size() : 1, ' ');
}

// Figures as the client prints them: no trailing zeros, a comma where the system uses one.
std::string number(std::string text, int minimumDecimals = 0)
{
    std::replace(text.begin(), text.end(), ',', '.');
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.3f", std::atof(text.c_str()));
    std::string out = buffer;
    const size_t point = out.find('.');
    while (out.size() > point + 1 + minimumDecimals && out.back() == '0')
        out.pop_back();
    if (out.back() == '.')
        out.pop_back();
    if (env("FAKE_XTU_COMMA") == "1" && point < out.size())
        out[point] = ',';
    return out;
}

std::string row(int id, const std::string &value)
{
    std::string shown = value + "x", minimum = "8", maximum = "80";
    if (id == 34) {
        const int millivolts = std::abs(std::atoi(value.c_str()));
        shown = millivolts == 0 ? "0 mV" : "-" + std::to_string(millivolts) + " mV";
        minimum = "-999 mV";
        maximum = "999 mV";
    } else if (id == 48) {
        shown = number(value) + "W";
        minimum = "8W";
        maximum = number("4095.875") + "W";
    } else if (id == 66) {
        shown = number(value, 1) + " Seconds";
        minimum = number("1", 1) + " Seconds";
        maximum = number("128", 1) + " Seconds";
    }
    return column(std::to_string(id), 13) + column(kSettings.at(id).name, 31) + column(shown, 12) +
           column(minimum, 11) + column(maximum, 11) + column("N/A", 12) + column("0", 10) +
           "\n\r\n";
}

bool beyondCores(int id)
{
    const std::string cores = env("FAKE_XTU_CORES");
    const int n = cores.empty() ? 8 : std::clamp(std::atoi(cores.c_str()), 0, 8);
    return std::find(kCoreIds + n, std::end(kCoreIds), id) != std::end(kCoreIds);
}

void print(int id, const std::string &text)
{
    if (env("FAKE_XTU_SILENT") == "1")
        return;
    // A split row is cut in the middle of its name, so that neither write names the row.
    size_t cut = 0;
    if (env("FAKE_XTU_SPLIT") == std::to_string(id) && kSettings.count(id)) {
        const std::string name = kSettings.at(id).name;
        cut = text.find(name) + name.size() / 2;
        std::fwrite(text.data(), 1, cut, stdout);
        std::fflush(stdout);
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
    }
    std::fwrite(text.data() + cut, 1, text.size() - cut, stdout);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char **argv)
{
    int id = -1;
    std::optional<std::string> value; // a write
    for (int i = 1; i + 1 < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "-id")
            id = std::atoi(argv[++i]);
        else if (arg == "-v")
            value = argv[++i];
    }

    if (const std::string log = env("FAKE_XTU_LOG"); !log.empty())
        std::ofstream(log, std::ios::app)
            << (value ? "write " : "read ") << id << (value ? " " + *value : "") << '\n';

    if (kSettings.count(id) == 0 || beyondCores(id)) {
        print(id, "Invalid Id\r\n");
        return 1;
    }

    std::map<int, std::string> state;
    std::ifstream in(env("FAKE_XTU_STATE"));
    for (std::string line; std::getline(in, line);) {
        if (const auto equals = line.find('='); equals != std::string::npos)
            state[std::stoi(line.substr(0, equals))] = line.substr(equals + 1);
    }
    if (value) {
        state[id] = *value;
        if (const std::string path = env("FAKE_XTU_STATE"); !path.empty()) {
            std::ofstream out(path, std::ios::trunc);
            for (const auto &entry : state)
                out << entry.first << '=' << entry.second << '\n';
        }
        hangIfScripted(id);
        return 0;
    }

    state.emplace(id, kSettings.at(id).initial);
    print(id, kHeader + row(id, state[id]));
    hangIfScripted(id);
    // The client waits for a key press before it ends.
    std::string line;
    std::getline(std::cin, line);
    return 0;
}
