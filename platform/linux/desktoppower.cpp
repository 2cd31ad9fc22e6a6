#include "desktoppower.h"

#include "gsettingskey.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcDesktopPower, "varnel.platform.desktoppower")

namespace {

const char kSessionSchema[] = "org.gnome.desktop.session";
const char kIdleDelay[] = "idle-delay";
const char kPowerSchema[] = "org.gnome.settings-daemon.plugins.power";
const char kMutterSchema[] = "org.gnome.mutter";
const char kOverlayKey[] = "overlay-key";

const char kLidSubgroups[] = "4f971e89-eebd-4455-a8de-9e59040e7347 "
                             "5ca83367-6e45-459f-a27b-476b1d01c936";

bool onBattery(const QRegularExpressionMatch &match)
{
    return match.captured(1) == QLatin1String("dc");
}

} // namespace

bool GnomeTimeouts::available()
{
    return GSettingsKey(kSessionSchema, kIdleDelay).available() &&
           GSettingsKey(kPowerSchema, "sleep-inactive-ac-timeout").available();
}

bool GnomeTimeouts::setScreenOff(bool, int minutes)
{
    return GSettingsKey(kSessionSchema, kIdleDelay).setUnsigned(quint32(qMax(0, minutes)) * 60);
}

bool GnomeTimeouts::setSleepAfter(bool battery, int minutes)
{
    const QByteArray source = battery ? "battery" : "ac";
    GSettingsKey timeout(kPowerSchema, "sleep-inactive-" + source + "-timeout");
    GSettingsKey type(kPowerSchema, "sleep-inactive-" + source + "-type");
    // The daemon takes a timeout of 0 as "at once"; never sleeping is a type of its own.
    const bool typeSet =
        type.setText(minutes > 0 ? QStringLiteral("suspend") : QStringLiteral("nothing"));
    return timeout.setInteger(qMax(0, minutes) * 60) && typeSet;
}

void LogindLidSwitch::setIgnored(bool ignored)
{
    if (!ignored) {
        m_inhibitor = QDBusUnixFileDescriptor();
        return;
    }
    if (m_inhibitor.isValid())
        return;
    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected())
        return;
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
    call << QStringLiteral("handle-lid-switch") << QStringLiteral("Varnel")
         << QStringLiteral("The power mode keeps the laptop on with the lid closed")
         << QStringLiteral("block");
    const QDBusReply<QDBusUnixFileDescriptor> reply = bus.call(call, QDBus::Block, 2000);
    if (reply.isValid())
        m_inhibitor = reply.value();
    else
        qCDebug(lcDesktopPower) << "no lid inhibitor:" << reply.error().message();
}

void addDesktopPowerCommands(CommandTable &table, std::shared_ptr<DesktopTimeouts> timeouts,
                             std::shared_ptr<LidSwitch> lid)
{
    table.add(QStringLiteral("powercfg -change -monitor-timeout-(ac|dc) (\\d+)"),
              [timeouts](const QRegularExpressionMatch &match) {
                  timeouts->setScreenOff(onBattery(match), match.captured(2).toInt());
                  return QString();
              });
    // Two rows rather than an optional "-change ": each has a plain start, so other powercfg
    // lines (the panel brightness of every start) never compile it.
    for (const char *form : {"powercfg -x -standby-timeout-(ac|dc) (\\d+)",
                             "powercfg -change -x -standby-timeout-(ac|dc) (\\d+)"}) {
        table.add(QLatin1String(form), [timeouts](const QRegularExpressionMatch &match) {
            timeouts->setSleepAfter(onBattery(match), match.captured(2).toInt());
            return QString();
        });
    }
    // Both lines carry the same action; logind has one lid switch for mains and battery.
    table.add(QStringLiteral("powercfg set(ac|dc)valueindex SCHEME_CURRENT %1 (\\d)")
                  .arg(QLatin1String(kLidSubgroups)),
              [lid](const QRegularExpressionMatch &match) {
                  lid->setIgnored(match.captured(2) == QLatin1String("0"));
                  return QString();
              });
}

OverlayKeyBlocker::~OverlayKeyBlocker()
{
    uninstall();
}

bool OverlayKeyBlocker::available()
{
    return GSettingsKey(kMutterSchema, kOverlayKey).available();
}

bool OverlayKeyBlocker::install()
{
    GSettingsKey key(kMutterSchema, kOverlayKey);
    const std::optional<QString> current = key.text();
    if (!current)
        return false;
    if (!m_saved)
        m_saved = *current;
    return key.setText(QString());
}

void OverlayKeyBlocker::uninstall()
{
    if (!m_saved)
        return;
    GSettingsKey key(kMutterSchema, kOverlayKey);
    // An empty saved key was left by a run that ended without giving it back.
    if (m_saved->isEmpty())
        key.reset();
    else
        key.setText(*m_saved);
    m_saved.reset();
}
