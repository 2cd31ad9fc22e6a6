#include "polkitauthority.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace {

// (sa{sv}): the subject whose rights are checked.
struct PolkitSubject {
    QString kind;
    QVariantMap details;
};

// (bba{ss}): is_authorized, is_challenge, details.
struct PolkitResult {
    bool authorized = false;
    bool challenge = false;
    QMap<QString, QString> details;
};

} // namespace

Q_DECLARE_METATYPE(PolkitSubject)
Q_DECLARE_METATYPE(PolkitResult)

namespace {

QDBusArgument &operator<<(QDBusArgument &arg, const PolkitSubject &subject)
{
    arg.beginStructure();
    arg << subject.kind << subject.details;
    arg.endStructure();
    return arg;
}

const QDBusArgument &operator>>(const QDBusArgument &arg, PolkitSubject &subject)
{
    arg.beginStructure();
    arg >> subject.kind >> subject.details;
    arg.endStructure();
    return arg;
}

QDBusArgument &operator<<(QDBusArgument &arg, const PolkitResult &result)
{
    arg.beginStructure();
    arg << result.authorized << result.challenge << result.details;
    arg.endStructure();
    return arg;
}

const QDBusArgument &operator>>(const QDBusArgument &arg, PolkitResult &result)
{
    arg.beginStructure();
    arg >> result.authorized >> result.challenge >> result.details;
    arg.endStructure();
    return arg;
}

constexpr uint kAllowUserInteraction = 1;
// Long enough for a user to type a password into the agent's dialog.
constexpr int kAnswerTimeoutMs = 5 * 60 * 1000;

} // namespace

PolkitAuthority::PolkitAuthority(QDBusConnection bus, QObject *parent)
    : QObject(parent), m_bus(std::move(bus))
{
    qDBusRegisterMetaType<PolkitSubject>();
    qDBusRegisterMetaType<PolkitResult>();
    qDBusRegisterMetaType<QMap<QString, QString>>();
}

void PolkitAuthority::check(const QString &busName, const QString &actionId,
                            std::function<void(const Outcome &)> done)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.PolicyKit1"),
                                       QStringLiteral("/org/freedesktop/PolicyKit1/Authority"),
                                       QStringLiteral("org.freedesktop.PolicyKit1.Authority"),
                                       QStringLiteral("CheckAuthorization"));
    const PolkitSubject subject{QStringLiteral("system-bus-name"),
                                {{QStringLiteral("name"), busName}}};
    call << QVariant::fromValue(subject) << actionId
         << QVariant::fromValue(QMap<QString, QString>()) << kAllowUserInteraction << QString();

    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call, kAnswerTimeoutMs), this);
    connect(
        watcher, &QDBusPendingCallWatcher::finished, this,
        [watcher, actionId, done](QDBusPendingCallWatcher *) {
            watcher->deleteLater();
            const QDBusPendingReply<PolkitResult> reply = *watcher;
            if (reply.isError()) {
                done(Outcome::refuse(
                    helpererror::notAuthorized,
                    QStringLiteral("polkit could not be asked: %1").arg(reply.error().message())));
                return;
            }
            const PolkitResult result = reply.value();
            if (result.authorized)
                done(Outcome::done());
            else if (result.challenge)
                done(Outcome::refuse(helpererror::notAuthorized,
                                     QStringLiteral("This needs an administrator's password, "
                                                    "and no authentication agent is running "
                                                    "to ask for it.")));
            else
                done(Outcome::refuse(
                    helpererror::notAuthorized,
                    QStringLiteral("permission was not given (%1).").arg(actionId)));
        });
}
