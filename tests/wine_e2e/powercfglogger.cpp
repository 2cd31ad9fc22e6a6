// A stand-in for powercfg, which Wine lacks: appends its command line, one line per call, to
// powercfg.log beside itself and succeeds.
#include <windows.h>

#include <cstdio>
#include <string>

int main(int argc, char **argv)
{
    char self[MAX_PATH];
    std::string log(self, GetModuleFileNameA(nullptr, self, MAX_PATH));
    log = log.substr(0, log.find_last_of('\\') + 1) + "powercfg.log";
    std::string line = "powercfg";
    for (int i = 1; i < argc; ++i)
        line += std::string(" ") + argv[i];
    FILE *file = std::fopen(log.c_str(), "ab");
    return file && std::fprintf(file, "%s\n", line.c_str()) > 0 && std::fclose(file) == 0 ? 0 : 1;
}
