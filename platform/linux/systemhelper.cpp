#include "systemhelper.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusReply>

bool systemHelperAvailable()
{
    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected() || !bus.interface())
        return false;
    const QDBusReply<QStringList> names = bus.interface()->activatableServiceNames();
    return names.isValid() && names.value().contains(QLatin1String(kSystemHelperService));
}
