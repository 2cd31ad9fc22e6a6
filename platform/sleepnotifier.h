#pragma once

#include <QByteArray>
#include <QObject>

// Power and device messages as the Windows message loop delivers them. On Windows they are read
// out of the native MSG; elsewhere the backend emits equivalent messages itself.
class SleepNotifier : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    // Reads the message id and its code (wParam) out of a native event; false if not a message.
    virtual bool decodeNativeMessage(const QByteArray &eventType, void *message, quint32 *id,
                                     quintptr *code) = 0;

signals:
    // Messages produced by the backend itself (for example after a resume on Linux).
    void powerMessage(quint32 id, quintptr code);
};
