#include "devicecommands.h"

#include <QLoggingCategory>
#include <QProcess>
#include <QStandardPaths>

Q_LOGGING_CATEGORY(lcDeviceCommands, "varnel.platform.devicecommands")

namespace {

using Candidates = QList<QStringList>;

// Starts the first candidate whose program is installed; nothing when none is.
CommandTable::Handler firstInstalled(const Candidates &candidates)
{
    return [candidates](const QRegularExpressionMatch &match) {
        for (const QStringList &command : candidates) {
            const QString program = QStandardPaths::findExecutable(command.first());
            if (!program.isEmpty()) {
                QProcess::startDetached(program, command.mid(1));
                return QString();
            }
        }
        qCDebug(lcDeviceCommands) << "nothing installed for" << match.captured(0);
        return QString();
    };
}

} // namespace

void addDeviceCommands(CommandTable &table)
{
    table.add(QStringLiteral("explorer ms-settings:sound"),
              firstInstalled({{"gnome-control-center", "sound"},
                              {"systemsettings", "kcm_pulseaudio"},
                              {"kcmshell5", "kcm_pulseaudio"},
                              {"pavucontrol"}}));
    table.add(QStringLiteral("explorer ms-settings:devices-touchpad"),
              firstInstalled({{"gnome-control-center", "mouse"},
                              {"systemsettings", "kcm_touchpad"},
                              {"kcmshell5", "kcm_touchpad"}}));
    table.add(QStringLiteral("explorer microsoft\\.windows\\.camera:"),
              firstInstalled({{"snapshot"}, {"cheese"}, {"kamoso"}, {"guvcview"}}));
}
