// The application object and nothing else. A later start ends inside the constructor with
// status 0; the first prints "primary <pid>", then "wake" for every later start it hears of,
// and runs until it is killed.
#include "singleapplication.h"

#include <cstdio>

int main(int argc, char *argv[])
{
    SingleApplication app(argc, argv, false, 1, 100);
    std::printf("primary %lld\n", static_cast<long long>(QCoreApplication::applicationPid()));
    std::fflush(stdout);
    QObject::connect(&app, &SingleApplication::instanceStarted, [] {
        std::printf("wake\n");
        std::fflush(stdout);
    });
    return QApplication::exec();
}
