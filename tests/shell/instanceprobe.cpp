// The application object alone: a later start exits 0 in the constructor; the first prints
// "primary <pid>", then "wake" for every later start, and runs until it is killed.
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
