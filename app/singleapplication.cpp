#include "singleapplication.h"
#include "singleapplication_p.h"

#include "identity.h"

#include <QLocalServer>
#include <QLocalSocket>
#include <QSharedMemory>
#include <QStandardPaths>

#include <cstdlib>

namespace {

InstanceBlock *blockOf(QSharedMemory *memory)
{
    return static_cast<InstanceBlock *>(memory->data());
}

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
    if (!memory)
        return;
    memory->lock();
    if (server) {
        server->close();
        delete server;
        server = nullptr;
        if (InstanceBlock *block = blockOf(memory)) {
            block->primary = false;
            block->primaryPid = -1;
        }
    }
    memory->unlock();
    delete memory;
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

void SingleApplicationPrivate::startPrimary(bool resetMemory)
{
    QLocalServer::removeServer(blockServerName);
    server = new QLocalServer();
    server->setSocketOptions((options & UserScope) ? QLocalServer::UserAccessOption
                                                   : QLocalServer::WorldAccessOption);
    server->listen(blockServerName);
    connect(server, &QLocalServer::newConnection, this,
            &SingleApplicationPrivate::slotConnectionEstablished);

    memory->lock();
    InstanceBlock *block = blockOf(memory);
    if (resetMemory)
        block->secondary = 0;
    block->primary = true;
    block->primaryPid = QCoreApplication::applicationPid();
    memory->unlock();
    instanceNumber = 0;
}

void SingleApplicationPrivate::connectToPrimary(int timeout, quint8 connectionType)
{
    if (!socket)
        socket = new QLocalSocket();
    if (socket->state() == QLocalSocket::ConnectedState)
        return;
    if (socket->state() == QLocalSocket::UnconnectedState ||
        socket->state() == QLocalSocket::ClosingState)
        socket->connectToServer(blockServerName, QIODevice::ReadWrite);
    if (socket->state() == QLocalSocket::ConnectingState)
        socket->waitForConnected(timeout);
    if (socket->state() == QLocalSocket::ConnectedState) {
        socket->write(encodeConnectionMessage(blockServerName, connectionType, instanceNumber));
        socket->flush();
        socket->waitForBytesWritten(timeout);
    }
}

void SingleApplicationPrivate::slotConnectionEstablished()
{
    QLocalSocket *next = server->nextPendingConnection();
    if (!next)
        return;
    ConnectionMessage message;
    if (next->waitForReadyRead(100))
        message = decodeConnectionMessage(next->readAll(), blockServerName);
    if (!message.valid || message.type == InvalidConnection) {
        next->close();
        delete next;
        return;
    }
    const quint32 id = message.instanceId;
    connect(next, &QLocalSocket::aboutToClose, this,
            [this, next, id] { slotClientConnectionClosed(next, id); });
    connect(next, &QLocalSocket::readyRead, this,
            [this, next, id] { slotDataAvailable(next, id); });

    if (message.type == NewInstance ||
        (message.type == SecondaryInstance && (options & SecondaryNotification)))
        emit q->instanceStarted();
    if (next->bytesAvailable() > 0)
        emit q->receivedMessage(id, next->readAll());
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
    d->memory = new QSharedMemory(d->blockServerName);

    if (d->memory->create(sizeof(InstanceBlock), QSharedMemory::ReadWrite)) {
        d->memory->lock();
        *blockOf(d->memory) = InstanceBlock{false, 0, -1};
        d->memory->unlock();
        d->startPrimary(true);
        return;
    }

    if (d->memory->attach(QSharedMemory::ReadWrite)) {
        d->memory->lock();
        InstanceBlock *block = blockOf(d->memory);
        // A first instance that was killed leaves its mark behind where the block outlives it.
        const bool primaryAlive = block->primary && !d->identity->primaryIsGone(block->primaryPid);
        if (!primaryAlive) {
            d->memory->unlock();
            d->startPrimary(false);
            return;
        }
        if (allowSecondary) {
            block->secondary += 1;
            d->instanceNumber = block->secondary;
            if (options & SecondaryNotification)
                d->connectToPrimary(timeout, SecondaryInstance);
            d->memory->unlock();
            return;
        }
        d->memory->unlock();
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
