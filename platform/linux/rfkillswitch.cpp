#include "rfkillswitch.h"

#include "helperclient.h"

#include <QDBusConnection>
#include <QFile>
#include <QLoggingCategory>

#include <linux/rfkill.h>

#include <fcntl.h>
#include <unistd.h>

Q_LOGGING_CATEGORY(lcSwitches, "varnel.platform.switches")

namespace {
enum Switch { Camera = 1, WirelessLan = 2 };
}

namespace rfkill {

QByteArray changeAllEvent(quint8 type, bool blocked)
{
    struct rfkill_event event = {};
    event.idx = 0;
    event.type = type;
    event.op = RFKILL_OP_CHANGE_ALL;
    event.soft = blocked ? 1 : 0;
    event.hard = 0;
    return QByteArray(reinterpret_cast<const char *>(&event), RFKILL_EVENT_SIZE_V1);
}

bool write(const QString &path, const QByteArray &event)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return false;
    const ssize_t written = ::write(fd, event.constData(), static_cast<size_t>(event.size()));
    ::close(fd);
    return written == event.size();
}

} // namespace rfkill

LinuxDeviceSwitches::LinuxDeviceSwitches(QString rfkillPath, std::shared_ptr<HelperClient> helper)
    : m_rfkillPath(std::move(rfkillPath)), m_helper(std::move(helper))
{
}

void LinuxDeviceSwitches::setSwitch(int switchId, int value)
{
    switch (switchId) {
    case WirelessLan: {
        const bool ok =
            rfkill::write(m_rfkillPath, rfkill::changeAllEvent(RFKILL_TYPE_WLAN, value == 0));
        qCDebug(lcSwitches) << "wireless LAN" << value << (ok ? "switched" : "not switched");
        break;
    }
    case Camera:
        // Without a system bus there is no helper to ask, and the switch is disabled.
        if (m_helper && QDBusConnection::systemBus().isConnected())
            m_helper->call(
                QStringLiteral("SetCamera"), {value != 0},
                [this, value](const QDBusMessage &reply) {
                    answer(Camera, value,
                           reply.type() == QDBusMessage::ErrorMessage
                               ? HelperClient::describe(reply)
                               : QString());
                },
                HelperClient::Caller::Other);
        else
            qCDebug(lcSwitches) << "camera switch needs the privileged helper; unchanged";
        break;
    default:
        qCDebug(lcSwitches) << "switch" << switchId << "follows the desktop's preference";
        break;
    }
}
