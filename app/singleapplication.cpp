#include "singleapplication.h"
#include "singleapplication_p.h"

#include "identity.h"

#include <QElapsedTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QThread>
#include <QTimer>

#include <cstdlib>

namespace {

// A connecting start has this long to send its whole message (not only its first byte), timed
// in the event loop so that silent clients cannot stall the window.
const int kMessageTimeoutMs = 100;

} // namespace

SingleApplicationPrivate::SingleApplicationPrivate(SingleApplication *q_, quint32 options_,
                                                   std::shared_ptr<UserIdentity> identity_)
    : q(q_), options(options_), identity(std::move(identity_))
{
}

SingleApplicationPrivate::~SingleApplicationPrivate()
{
    if (socket) {
        socket->close();
        delete socket;
        socket = nullptr;
    }
    if (server) {
        server->close();
        delete server;
        server = nullptr;
        if (block)
            block->release();
    }
}

void SingleApplicationPrivate::genBlockServerName()
{
    InstanceKeyInputs in;
    in.applicationName = QCoreApplication::applicationName();
    in.organizationName = QCoreApplication::organizationName();
    in.organizationDomain = QCoreApplication::organizationDomain();
    in.applicationVersion = QCoreApplication::applicationVersion();
    in.applicationFilePath = QCoreApplication::applicationFilePath();
    in.options = options;
    if (options & UserScope) {
        if (identity)
            in.userName = identity->userName();
        if (in.userName.isEmpty())
            in.homeLocations = QStandardPaths::standardLocations(QStandardPaths::HomeLocation);
    }
    blockServerName = instanceKey(in);
}

// Called once the block names this process as the primary, so no other start can be removing
// or replacing the server at the same time.
void SingleApplicationPrivate::startPrimary()
{
    const QString name = block->serverName();
    server = new QLocalServer();
    if (name.isEmpty())
        return;
    QLocalServer::removeServer(name);
    server->setSocketOptions((options & UserScope) ? QLocalServer::UserAccessOption
                                                   : QLocalServer::WorldAccessOption);
    server->listen(name);
    connect(server, &QLocalServer::newConnection, this,
            &SingleApplicationPrivate::slotConnectionEstablished);
    instanceNumber = 0;
}

void SingleApplicationPrivate::connectToPrimary(int timeout, quint8 connectionType)
{
    const QString name = block->serverName();
    if (name.isEmpty())
        return;
    if (!socket)
        socket = new QLocalSocket();
    // A primary that won at the same moment may not be listening yet: try again until the
    // time-out rather than lose the wake.
    QElapsedTimer clock;
    clock.start();
    while (socket->state() != QLocalSocket::ConnectedState) {
        if (socket->state() == QLocalSocket::UnconnectedState ||
            socket->state() == QLocalSocket::ClosingState)
            socket->connectToServer(name, QIODevice::ReadWrite);
        if (socket->state() == QLocalSocket::ConnectingState)
            socket->waitForConnected(timeout);
        if (socket->state() == QLocalSocket::ConnectedState || clock.elapsed() >= timeout)
            break;
        QThread::msleep(10);
    }
    if (socket->state() == QLocalSocket::ConnectedState) {
        socket->write(encodeConnectionMessage(blockServerName, connectionType, instanceNumber));
        socket->flush();
        socket->waitForBytesWritten(timeout);
    }
}

void SingleApplicationPrivate::slotConnectionEstablished()
{
    while (QLocalSocket *next = server->nextPendingConnection())
        watchForMessage(next);
}

// The message is read as it arrives, never waited for: a silent or slow client must not stall
// the window, nor hold up the clients behind it.
void SingleApplicationPrivate::watchForMessage(QLocalSocket *connection)
{
    const int size = connectionMessageSize(blockServerName);
    auto received = std::make_shared<QByteArray>();
    auto *deadline = new QTimer(connection);
    deadline->setSingleShot(true);

    auto drop = [connection] {
        QObject::disconnect(connection, nullptr, nullptr, nullptr);
        connection->close();
        connection->deleteLater();
    };
    auto readSome = [this, connection, size, received, deadline, drop] {
        received->append(connection->read(size - received->size()));
        if (received->size() < size)
            return;
        QObject::disconnect(connection, &QLocalSocket::readyRead, this, nullptr);
        deadline->stop();
        const ConnectionMessage message = decodeConnectionMessage(*received, blockServerName);
        if (!message.valid || message.type == InvalidConnection) {
            drop();
            return;
        }
        acceptMessage(connection, message);
    };
    connect(deadline, &QTimer::timeout, this, drop);
    connect(connection, &QLocalSocket::readyRead, this, readSome);
    deadline->start(kMessageTimeoutMs);
    readSome();
}

void SingleApplicationPrivate::acceptMessage(QLocalSocket *connection,
                                             const ConnectionMessage &message)
{
    const quint32 id = message.instanceId;
    connect(connection, &QLocalSocket::aboutToClose, this,
            [this, connection, id] { slotClientConnectionClosed(connection, id); });
    connect(connection, &QLocalSocket::readyRead, this,
            [this, connection, id] { slotDataAvailable(connection, id); });

    if (message.type == NewInstance ||
        (message.type == SecondaryInstance && (options & SecondaryNotification)))
        emit q->instanceStarted();
    if (connection->bytesAvailable() > 0)
        emit q->receivedMessage(id, connection->readAll());
}

void SingleApplicationPrivate::slotDataAvailable(QLocalSocket *dataSocket, quint32 instanceId)
{
    emit q->receivedMessage(instanceId, dataSocket->readAll());
}

void SingleApplicationPrivate::slotClientConnectionClosed(QLocalSocket *closedSocket,
                                                          quint32 instanceId)
{
    if (closedSocket->bytesAvailable() > 0)
        emit q->receivedMessage(instanceId, closedSocket->readAll());
    closedSocket->deleteLater();
}

SingleApplication::SingleApplication(int &argc, char *argv[], bool allowSecondary, quint32 options,
                                     int timeout, std::shared_ptr<UserIdentity> identity)
    : QApplication(argc, argv),
      d(new SingleApplicationPrivate(this, options, identity ? identity : nativeIdentity()))
{
    d->genBlockServerName();
    d->block = nativeInstanceBlock(d->blockServerName);

    if (d->block->claimPrimary(QCoreApplication::applicationPid())) {
        d->startPrimary();
        return;
    }
    if (allowSecondary) {
        d->instanceNumber = d->block->addSecondary();
        if (options & SecondaryNotification)
            d->connectToPrimary(timeout, SecondaryInstance);
        return;
    }

    d->connectToPrimary(timeout, NewInstance);
    delete d;
    d = nullptr;
    ::exit(EXIT_SUCCESS);
}

SingleApplication::~SingleApplication()
{
    delete d;
}

bool SingleApplication::isPrimary() const
{
    return d && d->server != nullptr;
}

quint32 SingleApplication::instanceId() const
{
    return d ? d->instanceNumber : 0;
}

QString SingleApplication::blockServerName() const
{
    return d ? d->blockServerName : QString();
}

QString SingleApplication::serverName() const
{
    return d && d->block ? d->block->serverName() : QString();
}
