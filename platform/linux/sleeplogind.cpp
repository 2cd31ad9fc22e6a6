#include "sleeplogind.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcSleep, "varnel.sleep")

namespace {

const char kService[] = "org.freedesktop.login1";
const char kPath[] = "/org/freedesktop/login1";
const char kManager[] = "org.freedesktop.login1.Manager";

// The message and codes the window's filter knows from Windows.
constexpr quint32 kPowerBroadcast = 0x218;
constexpr quintptr kSuspend = 4;       // PBT_APMSUSPEND
constexpr quintptr kResumeSuspend = 7; // PBT_APMRESUMESUSPEND

} // namespace

LogindSleepNotifier::LogindSleepNotifier(QObject *parent)
    : LogindSleepNotifier(QDBusConnection::systemBus(), parent)
{
}

LogindSleepNotifier::LogindSleepNotifier(const QDBusConnection &bus, QObject *parent)
    : SleepNotifier(parent), m_bus(bus)
{
    if (!m_bus.isConnected()) {
        qCDebug(lcSleep) << "no system bus: sleep and resume go unnoticed";
        return;
    }
    const bool listening =
        m_bus.connect(QLatin1String(kService), QLatin1String(kPath), QLatin1String(kManager),
                      QStringLiteral("PrepareForSleep"), this, SLOT(handlePrepareForSleep(bool)));
    if (!listening) {
        qCDebug(lcSleep) << "cannot listen for PrepareForSleep";
        return;
    }
    takeInhibitor();
}

bool LogindSleepNotifier::decodeNativeMessage(const QByteArray &, void *, quint32 *, quintptr *)
{
    // The display server's events carry no power messages here.
    return false;
}

void LogindSleepNotifier::handlePrepareForSleep(bool goingToSleep)
{
    qCDebug(lcSleep) << (goingToSleep ? "going to sleep" : "woke up");
    if (goingToSleep) {
        emit powerMessage(kPowerBroadcast, kSuspend);
        // Letting go of the lock is what allows the machine to sleep now.
        m_inhibitor = QDBusUnixFileDescriptor();
        return;
    }
    emit powerMessage(kPowerBroadcast, kResumeSuspend);
    takeInhibitor();
}

void LogindSleepNotifier::takeInhibitor()
{
    if (!m_bus.isConnected() || m_inhibitor.isValid() || m_inhibitorRequested)
        return;
    QDBusMessage call =
        QDBusMessage::createMethodCall(QLatin1String(kService), QLatin1String(kPath),
                                       QLatin1String(kManager), QStringLiteral("Inhibit"));
    call << QStringLiteral("sleep") << QStringLiteral("Varnel")
         << QStringLiteral("Re-applies the laptop's fixes after a resume")
         << QStringLiteral("delay");
    m_inhibitorRequested = true;
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *w) {
        QDBusPendingReply<QDBusUnixFileDescriptor> reply = *w;
        m_inhibitorRequested = false;
        if (reply.isError())
            qCDebug(lcSleep) << "no sleep inhibitor:" << reply.error().message();
        else
            m_inhibitor = reply.value();
        w->deleteLater();
    });
}
