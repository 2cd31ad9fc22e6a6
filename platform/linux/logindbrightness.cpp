#include "logindbrightness.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcLogindBrightness, "varnel.platform.logindbrightness")

bool logindSetBrightness(const QString &subsystem, const QString &device, quint32 raw)
{
    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected())
        return false;
    // "auto" is the session of the calling process.
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"),
        QStringLiteral("/org/freedesktop/login1/session/auto"),
        QStringLiteral("org.freedesktop.login1.Session"), QStringLiteral("SetBrightness"));
    call << subsystem << device << raw;
    const QDBusMessage reply = bus.call(call, QDBus::Block, 2000);
    if (reply.type() == QDBusMessage::ErrorMessage) {
        qCDebug(lcLogindBrightness)
            << "logind refused" << subsystem << device << ":" << reply.errorMessage();
        return false;
    }
    return true;
}
