#include "fixhelpers.h"

namespace fixhelpers {

void startBrightnessFix(CommandRunner &commands)
{
    commands.startShown(QStringLiteral(R"(Libs\AuxSwitch.exe)"), ShowMode::Hidden);
}

void startHeadphoneHelpers(CommandRunner &commands, ShowMode mode)
{
    commands.startShown(QStringLiteral(R"(Libs\InitHeadphone.exe)"), mode);
    commands.startShown(QStringLiteral(R"(Libs\PhoneJack.exe)"), mode);
}

void restartHeadphoneHelpers(CommandRunner &commands)
{
    commands.runAndRead(QStringLiteral(R"(taskkill /f /im "InitHeadphone.exe")"), 30000);
    commands.runAndRead(QStringLiteral(R"(taskkill /f /im "PhoneJack.exe")"), 30000);
    startHeadphoneHelpers(commands, ShowMode::Normal);
}

} // namespace fixhelpers
