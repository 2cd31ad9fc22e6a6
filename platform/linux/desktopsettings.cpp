#include "desktopsettings.h"

#include "gsettingskey.h"

#include <QLoggingCategory>
#include <QProcess>
#include <QStandardPaths>

Q_LOGGING_CATEGORY(lcDesktopSettings, "varnel.platform.desktopsettings")

namespace {

const char kPowerSchema[] = "org.gnome.settings-daemon.plugins.power";
const char kAmbientKey[] = "ambient-enabled";

struct Candidate {
    const char *program;
    QStringList display;
    QStringList power;
};

// GNOME first, then Plasma 6 and 5; the first that is installed wins.
const QList<Candidate> &candidates()
{
    static const QList<Candidate> list = {
        {"gnome-control-center", {QStringLiteral("display")}, {QStringLiteral("power")}},
        {"systemsettings",
         {QStringLiteral("kcm_kscreen")},
         {QStringLiteral("kcm_powerdevilprofilesconfig")}},
        {"kcmshell5",
         {QStringLiteral("kcm_kscreen")},
         {QStringLiteral("powerdevilprofilesconfig")}},
    };
    return list;
}

QStringList firstInstalled(bool display)
{
    for (const Candidate &c : candidates()) {
        const QString path = QStandardPaths::findExecutable(QLatin1String(c.program));
        if (!path.isEmpty())
            return QStringList{path} + (display ? c.display : c.power);
    }
    return {};
}

} // namespace

bool SessionDesktopSettings::setAmbientBrightness(bool enabled)
{
    GSettingsKey ambient(kPowerSchema, kAmbientKey);
    if (!ambient.available()) {
        qCDebug(lcDesktopSettings) << "no ambient-light setting on this desktop";
        return false;
    }
    return ambient.setBoolean(enabled);
}

bool SessionDesktopSettings::hasAmbientBrightness()
{
    return GSettingsKey(kPowerSchema, kAmbientKey).available();
}

QStringList SessionDesktopSettings::displayCommand()
{
    return firstInstalled(true);
}

QStringList SessionDesktopSettings::powerCommand()
{
    return firstInstalled(false);
}

bool SessionDesktopSettings::startDetached(const QStringList &command)
{
    if (command.isEmpty()) {
        qCDebug(lcDesktopSettings) << "no desktop settings program installed";
        return false;
    }
    return QProcess::startDetached(command.first(), command.mid(1));
}

bool SessionDesktopSettings::openDisplaySettings()
{
    return startDetached(displayCommand());
}

bool SessionDesktopSettings::openPowerSettings()
{
    return startDetached(powerCommand());
}
