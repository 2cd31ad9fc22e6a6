#include "devicecommands.h"

#include <QLoggingCategory>
#include <QProcess>
#include <QStandardPaths>

Q_LOGGING_CATEGORY(lcDeviceCommands, "varnel.platform.devicecommands")

namespace {

using Candidates = QList<QStringList>;

QStringList firstInstalledCommand(const Candidates &candidates)
{
    for (const QStringList &command : candidates) {
        const QString program = QStandardPaths::findExecutable(command.first());
        if (!program.isEmpty())
            return QStringList{program} + command.mid(1);
    }
    return {};
}

// Starts the first candidate whose program is installed; nothing when none is.
void addFirstInstalled(CommandTable &table, const QString &pattern, const Candidates &candidates)
{
    table.add(
        pattern,
        [candidates](const QRegularExpressionMatch &match) {
            const QStringList command = firstInstalledCommand(candidates);
            if (command.isEmpty())
                qCDebug(lcDeviceCommands) << "nothing installed for" << match.captured(0);
            else
                QProcess::startDetached(command.first(), command.mid(1));
            return QString();
        },
        [candidates] { return !firstInstalledCommand(candidates).isEmpty(); });
}

} // namespace

void addDeviceCommands(CommandTable &table)
{
    addFirstInstalled(table, QStringLiteral("explorer ms-settings:sound"),
                      {{"gnome-control-center", "sound"},
                       {"systemsettings", "kcm_pulseaudio"},
                       {"kcmshell5", "kcm_pulseaudio"},
                       {"pavucontrol"}});
    addFirstInstalled(table, QStringLiteral("explorer ms-settings:devices-touchpad"),
                      {{"gnome-control-center", "mouse"},
                       {"systemsettings", "kcm_touchpad"},
                       {"kcmshell5", "kcm_touchpad"}});
    addFirstInstalled(table, QStringLiteral("explorer microsoft\\.windows\\.camera:"),
                      {{"snapshot"}, {"cheese"}, {"kamoso"}, {"guvcview"}});
}
