#pragma once

#include <QByteArray>
#include <QStringList>
#include <QTcpServer>
#include <QTcpSocket>

// A one-file HTTP server on 127.0.0.1 that answers every request with the same status and body,
// and remembers the request lines it saw.
class VersionServer : public QObject {
public:
    int status = 200;
    QByteArray body;
    QStringList requests;
    bool silent = false; // take the request, never answer

    // Closes every connection still held open.
    void dropAll()
    {
        for (QTcpSocket *socket : m_server.findChildren<QTcpSocket *>())
            socket->abort();
    }

    bool listen() { return m_server.listen(QHostAddress::LocalHost, 0); }
    QString address() const
    {
        return QStringLiteral("http://127.0.0.1:%1").arg(m_server.serverPort());
    }

    VersionServer()
    {
        connect(&m_server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *socket = m_server.nextPendingConnection())
                serve(socket);
        });
    }

    // An address on this machine where nothing listens.
    static QString refusingAddress()
    {
        QTcpServer probe;
        probe.listen(QHostAddress::LocalHost, 0);
        const quint16 port = probe.serverPort();
        probe.close();
        return QStringLiteral("http://127.0.0.1:%1").arg(port);
    }

private:
    void serve(QTcpSocket *socket)
    {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
            m_pending[socket] += socket->readAll();
            if (!m_pending[socket].contains("\r\n\r\n"))
                return;
            requests << QString::fromLatin1(m_pending.take(socket).split('\r').first());
            if (silent)
                return;
            socket->write("HTTP/1.1 " + QByteArray::number(status) + " Answer\r\n" +
                          "Content-Type: text/plain\r\nContent-Length: " +
                          QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body);
            socket->disconnectFromHost();
        });
    }

    QTcpServer m_server;
    QHash<QTcpSocket *, QByteArray> m_pending;
};
