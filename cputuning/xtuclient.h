#pragma once

#include <QString>
#include <QStringList>

// The tuning utility as the program addresses it: its command-line client, its background
// service, its driver installer and where it is installed.
namespace xtu {

// Passed as the program, quotes included, never through a shell.
inline const QString clientProgram =
    QStringLiteral("\"C:\\Program Files\\Varnel\\XTU\\Client\\XtuCLI.exe\"");

// The inner double quote has no closing partner; the process object splits the line.
inline const QString serviceStart =
    QStringLiteral("powershell -executionPolicy bypass \"start-service -name 'XTU3SERVICE'");
inline const QString serviceStop =
    QStringLiteral("powershell -executionPolicy bypass \"stop-service -name 'XTU3SERVICE'");

inline const QString driverInstaller =
    QStringLiteral("C:\\Program Files\\Varnel\\XTU\\IocDriver\\InstallDriver_x64.exe");

// The utility counts as installed when either file exists.
inline const QString servicePaths[] = {
    QStringLiteral("C:\\Program Files (x86)\\Intel\\Intel(R) Extreme Tuning "
                   "Utility\\Drivers\\XtuService.exe"),
    QStringLiteral(
        "C:\\Program Files (x86)\\Intel\\Intel(R) Extreme Tuning Utility\\XtuService.exe"),
};

inline const QString downloadPage =
    QStringLiteral("https://www.intel.com/content/www/us/en/download/17881/"
                   "intel-extreme-tuning-utility-intel-xtu.html");

// Setting identifiers in read order: undervolt, turbo power, turbo time, then the turbo ratio
// for 1 ... 8 active cores.
inline constexpr int kUndervoltId = 34;
inline constexpr int kTurboPowerId = 48;
inline constexpr int kTurboTimeId = 66;
inline constexpr int kCoreIds[8] = {29, 30, 31, 32, 42, 43, 96, 97};
inline constexpr int kReadOrder[11] = {34, 48, 66, 29, 30, 31, 32, 42, 43, 96, 97};

inline QStringList readArguments(int id)
{
    return {QStringLiteral("-t"), QStringLiteral("-id"), QString::number(id)};
}

inline QStringList writeArguments(int id, const QString &value)
{
    return readArguments(id) << QStringLiteral("-v") << value;
}

} // namespace xtu
