#pragma once

#include "instancekey.h"

#include <QObject>

#include <memory>

class QLocalServer;
class QLocalSocket;
class SingleApplication;
class UserIdentity;

class SingleApplicationPrivate : public QObject {
    Q_OBJECT

public:
    SingleApplicationPrivate(SingleApplication *q, quint32 options,
                             std::shared_ptr<UserIdentity> identity);
    ~SingleApplicationPrivate() override;

    void genBlockServerName();
    void startPrimary();
    void connectToPrimary(int timeout, quint8 connectionType);

    SingleApplication *q;
    std::unique_ptr<InstanceBlockHost> block;
    QLocalSocket *socket = nullptr;
    QLocalServer *server = nullptr;
    quint32 instanceNumber = 0;
    QString blockServerName;
    quint32 options = 0;
    std::shared_ptr<UserIdentity> identity;

private slots:
    void slotConnectionEstablished();
    void slotDataAvailable(QLocalSocket *socket, quint32 instanceId);
    void slotClientConnectionClosed(QLocalSocket *socket, quint32 instanceId);

private:
    void watchForMessage(QLocalSocket *connection);
    void acceptMessage(QLocalSocket *connection, const ConnectionMessage &message);
};
