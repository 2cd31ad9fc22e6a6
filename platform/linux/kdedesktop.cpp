#include "kdedesktop.h"

#include "kconfigfile.h"

#include <QDBusConnection>
#include <QDBusMessage>

namespace {

const char kProfiles[] = "/powermanagementprofilesrc";
const char kKwin[] = "/kwinrc";
const QString kShortcuts = QStringLiteral("ModifierOnlyShortcuts");
const QString kMeta = QStringLiteral("Meta");

// Tells a running service to read its configuration again; no answer is awaited, and without
// the service (or the bus) the file is read at its next start.
void askToReload(const char *service, const char *path, const char *interface, const char *method)
{
    QDBusConnection::sessionBus().send(
        QDBusMessage::createMethodCall(QLatin1String(service), QLatin1String(path),
                                       QLatin1String(interface), QLatin1String(method)));
}

void reloadPowerManagement()
{
    askToReload("org.kde.Solid.PowerManagement", "/org/kde/Solid/PowerManagement",
                "org.kde.Solid.PowerManagement", "refreshStatus");
}

QString profileGroup(bool onBattery, const char *action)
{
    return QLatin1String(onBattery ? "Battery" : "AC") + QStringLiteral("][") +
           QLatin1String(action);
}

} // namespace

KdeTimeouts::KdeTimeouts(QString configHome) : m_file(configHome + QLatin1String(kProfiles)) {}

bool KdeTimeouts::available()
{
    return plasmaSession();
}

// 0 minutes is never: the action's group goes.
bool KdeTimeouts::setScreenOff(bool onBattery, int minutes)
{
    KConfigFile file(m_file);
    const QString group = profileGroup(onBattery, "DPMSControl");
    const QString idle = QStringLiteral("idleTime");
    if (minutes > 0)
        file.setValue(group, idle, QString::number(minutes * 60)); // seconds
    else
        file.remove(group, idle);
    const bool saved = file.save();
    reloadPowerManagement();
    return saved;
}

bool KdeTimeouts::setSleepAfter(bool onBattery, int minutes)
{
    KConfigFile file(m_file);
    const QString group = profileGroup(onBattery, "SuspendSession");
    const QString idle = QStringLiteral("idleTime");
    const QString type = QStringLiteral("suspendType");
    if (minutes > 0) {
        file.setValue(group, idle, QString::number(minutes * 60 * 1000)); // milliseconds
        file.setValue(group, type, QStringLiteral("1"));                  // suspend to memory
    } else {
        file.remove(group, idle);
        file.remove(group, type);
    }
    const bool saved = file.save();
    reloadPowerManagement();
    return saved;
}

KdeMetaKeyBlocker::KdeMetaKeyBlocker(QString configHome) : m_file(configHome + QLatin1String(kKwin))
{
}

KdeMetaKeyBlocker::~KdeMetaKeyBlocker()
{
    uninstall();
}

bool KdeMetaKeyBlocker::install()
{
    KConfigFile file(m_file);
    if (!m_installed)
        m_saved = file.value(kShortcuts, kMeta);
    file.setValue(kShortcuts, kMeta, QString()); // an empty action: Meta alone does nothing
    if (!file.save())
        return false;
    m_installed = true;
    askToReload("org.kde.KWin", "/KWin", "org.kde.KWin", "reconfigure");
    return true;
}

void KdeMetaKeyBlocker::uninstall()
{
    if (!m_installed)
        return;
    KConfigFile file(m_file);
    if (m_saved)
        file.setValue(kShortcuts, kMeta, *m_saved);
    else
        file.remove(kShortcuts, kMeta);
    file.save();
    m_installed = false;
    m_saved.reset();
    askToReload("org.kde.KWin", "/KWin", "org.kde.KWin", "reconfigure");
}
