#pragma once

#include "instanceblock.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

// What makes two starts "the same program": hashed into the name of the instance block and of
// the local server.
struct InstanceKeyInputs {
    QString applicationName;
    QString organizationName;
    QString organizationDomain;
    QString applicationVersion;
    QString applicationFilePath;
    QString userName; // empty when the platform could not tell
    QStringList homeLocations;
    quint32 options = 1;
};

enum InstanceOption : quint32 {
    UserScope = 1,
    SystemScope = 2,
    SecondaryNotification = 4,
    ExcludeAppVersion = 8,
    ExcludeAppPath = 16,
};

QString instanceKey(const InstanceKeyInputs &in);

enum ConnectionType : quint8 {
    InvalidConnection = 0,
    NewInstance = 1,
    SecondaryInstance = 2,
    Reconnect = 3,
};

// The message a second start sends to the first: name, type, instance number, checksum.
QByteArray encodeConnectionMessage(const QString &blockServerName, quint8 type,
                                   quint32 instanceNumber);

// The length of that message for this name: a reader knows when it has all of it without a
// length header, and never buffers more.
int connectionMessageSize(const QString &blockServerName);

struct ConnectionMessage {
    bool valid = false;
    quint8 type = InvalidConnection;
    quint32 instanceId = 0;
};

// Checks a received message against the expected name and its trailing checksum.
ConnectionMessage decodeConnectionMessage(const QByteArray &data, const QString &blockServerName);
