#include "touchpadpreference.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcTouchpad, "varnel.platform.touchpad")

namespace {

const char kEnabledName[] = "Enabled";
const char kModulePath[] = "/modules/touchpad";
const char kInterface[] = "org.kde.touchpad";
// The radios are refreshed from the periodic tick; a stuck daemon must not hold the window.
const int kBusTimeoutMs = 250;

} // namespace

const char TouchpadRegistry::key[] =
    "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\PrecisionTouchPad\\Status";

GnomeTouchpad::GnomeTouchpad()
    : m_sendEvents("org.gnome.desktop.peripherals.touchpad", "send-events")
{
}

std::optional<bool> GnomeTouchpad::enabled()
{
    const std::optional<QString> mode = m_sendEvents.text();
    if (!mode)
        return std::nullopt;
    return *mode != QLatin1String("disabled");
}

bool GnomeTouchpad::setEnabled(bool on)
{
    return m_sendEvents.setText(on ? QStringLiteral("enabled") : QStringLiteral("disabled"));
}

QString KdeTouchpad::runningService()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return QString();
    for (const char *name : {"org.kde.kded6", "org.kde.kded5"}) {
        const QString service = QLatin1String(name);
        if (bus.interface()->isServiceRegistered(service).value())
            return service;
    }
    return QString();
}

KdeTouchpad::KdeTouchpad(QString service) : m_service(std::move(service)) {}

std::optional<bool> KdeTouchpad::enabled()
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(m_service, QLatin1String(kModulePath),
                                       QLatin1String(kInterface), QStringLiteral("isEnabled"));
    const QDBusReply<bool> reply =
        QDBusConnection::sessionBus().call(call, QDBus::Block, kBusTimeoutMs);
    if (!reply.isValid())
        return std::nullopt;
    return reply.value();
}

bool KdeTouchpad::setEnabled(bool on)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        m_service, QLatin1String(kModulePath), QLatin1String(kInterface),
        on ? QStringLiteral("enable") : QStringLiteral("disable"));
    return QDBusConnection::sessionBus().send(call);
}

TouchpadRegistry::TouchpadRegistry(std::shared_ptr<TouchpadPreference> desktop,
                                   std::shared_ptr<Registry> fallback)
    : m_desktop(std::move(desktop)), m_fallback(std::move(fallback))
{
}

std::shared_ptr<TouchpadPreference> TouchpadRegistry::sessionPreference()
{
    const QString kde = KdeTouchpad::runningService();
    if (!kde.isEmpty())
        return std::make_shared<KdeTouchpad>(kde);
    auto gnome = std::make_shared<GnomeTouchpad>();
    if (gnome->available())
        return gnome;
    qCDebug(lcTouchpad) << "no desktop touchpad preference; kept in the user store";
    return nullptr;
}

TouchpadPreference *SessionTouchpad::found()
{
    if (!m_searched) {
        m_searched = true;
        m_preference = TouchpadRegistry::sessionPreference();
    }
    return m_preference.get();
}

std::optional<bool> SessionTouchpad::enabled()
{
    TouchpadPreference *preference = found();
    return preference ? preference->enabled() : std::nullopt;
}

bool SessionTouchpad::setEnabled(bool on)
{
    TouchpadPreference *preference = found();
    return preference && preference->setEnabled(on);
}

bool TouchpadRegistry::isSwitch(const QString &name) const
{
    return m_desktop && name.compare(QLatin1String(kEnabledName), Qt::CaseInsensitive) == 0;
}

QVariant TouchpadRegistry::value(const QString &key, const QString &name,
                                 const QVariant &defaultValue)
{
    if (isSwitch(name)) {
        if (const std::optional<bool> on = m_desktop->enabled())
            return *on ? 1 : 0;
    }
    return m_fallback->value(key, name, defaultValue);
}

void TouchpadRegistry::setValue(const QString &key, const QString &name, const QVariant &value)
{
    if (isSwitch(name) && m_desktop->setEnabled(value.toInt() != 0))
        return;
    m_fallback->setValue(key, name, value);
}

void TouchpadRegistry::remove(const QString &key, const QString &name)
{
    m_fallback->remove(key, name);
}

bool TouchpadRegistry::contains(const QString &key, const QString &name)
{
    if (isSwitch(name) && m_desktop->enabled())
        return true;
    return m_fallback->contains(key, name);
}
