#pragma once

#include <memory>

class HelperClient;

#include "devices.h"

#include <QByteArray>
#include <QString>

// The laptop's switches without root: wireless LAN through the kernel's radio switch, which the
// active session's user may write. Camera and touchpad have no such switch here (the camera's
// needs root, the touchpad follows the desktop's own preference), so those calls change
// nothing, as a failing switch call does.
class LinuxDeviceSwitches : public DeviceSwitches {
public:
    explicit LinuxDeviceSwitches(QString rfkillPath = QStringLiteral("/dev/rfkill"),
                                 std::shared_ptr<HelperClient> helper = nullptr);
    void setSwitch(int switchId, int value) override;

private:
    QString m_rfkillPath;
    std::shared_ptr<HelperClient> m_helper; // the camera's USB switch needs root
};

namespace rfkill {

// One change-all event (the kernel's first, 8-byte layout, which every kernel accepts):
// index 0, the radio type, the operation, the soft block, hard block 0.
QByteArray changeAllEvent(quint8 type, bool blocked);
bool write(const QString &path, const QByteArray &event);

} // namespace rfkill
