#include "helperclient.h"

#include "systemhelper.h"

#include <QCoreApplication>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcHelper, "varnel.helper")

namespace {
// The helper waits for polkit's agent, which waits for the user to type a password.
constexpr int kCallTimeoutMs = 310 * 1000;
} // namespace

HelperClient::HelperClient(std::function<bool()> available) : m_available(std::move(available))
{
    qDBusRegisterMetaType<QList<int>>();
}

QString HelperClient::unavailableReason() const
{
    if (m_available())
        return QString();
    return QStringLiteral("Needs the system helper (varnel-helper), which is not installed.");
}

QString HelperClient::describe(const QDBusMessage &error)
{
    const QString name = error.errorName();
    if (name == QLatin1String("org.freedesktop.DBus.Error.ServiceUnknown") ||
        name == QLatin1String("org.freedesktop.DBus.Error.Spawn.ExecFailed") ||
        name == QLatin1String("org.freedesktop.DBus.Error.Spawn.ChildExited"))
        return QStringLiteral("Needs the system helper (varnel-helper), which is not installed.");
    if (name == QLatin1String("org.varnel.Helper.Error.NotAuthorized"))
        return QStringLiteral("Not allowed: ") + error.errorMessage();
    if (name == QLatin1String("org.freedesktop.DBus.Error.NoReply"))
        return QStringLiteral("The system helper did not answer.");
    return error.errorMessage();
}

void HelperClient::call(const QString &method, const QVariantList &arguments, Done done,
                        Caller caller)
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        QLatin1String(kSystemHelperService), QStringLiteral("/org/varnel/Helper"),
        QStringLiteral("org.varnel.Helper"), method);
    message.setArguments(arguments);
    auto finish = [this, method, done, caller](const QDBusMessage &reply) {
        if (reply.type() == QDBusMessage::ErrorMessage) {
            const QString why = describe(reply);
            qCDebug(lcHelper) << method << reply.errorName() << why;
            QStringList *kept = caller == Caller::Tuning            ? &m_refusals
                                : caller == Caller::ProcessorLimits ? &m_limitRefusals
                                                                    : nullptr;
            if (kept && !kept->contains(why))
                *kept << why;
        }
        done(reply);
    };
    QDBusConnection bus = QDBusConnection::systemBus();
    // A call on a bus that is not there never finishes, and a power mode would wait for it.
    if (!bus.isConnected()) {
        const QDBusMessage error = message.createErrorReply(
            QDBusError::Disconnected, QStringLiteral("The system bus is not running."));
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [finish, error] { finish(error); }, Qt::QueuedConnection);
        return;
    }
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(message, kCallTimeoutMs));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                     [watcher, finish](QDBusPendingCallWatcher *) {
                         watcher->deleteLater();
                         finish(watcher->reply());
                     });
}
