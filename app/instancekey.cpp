#include "instancekey.h"

#include <QCryptographicHash>
#include <QDataStream>

QString instanceKey(const InstanceKeyInputs &in)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    // Four bytes only, not the whole word: changing this would change every key.
    hash.addData("Varnel", 4);
    hash.addData(in.applicationName.toUtf8());
    hash.addData(in.organizationName.toUtf8());
    hash.addData(in.organizationDomain.toUtf8());
    if (!(in.options & ExcludeAppVersion))
        hash.addData(in.applicationVersion.toUtf8());
    if (!(in.options & ExcludeAppPath))
        hash.addData(in.applicationFilePath.toLower().toUtf8());
    if (in.options & UserScope) {
        if (!in.userName.isEmpty())
            hash.addData(in.userName.toUtf8());
        else
            hash.addData(in.homeLocations.join(QString()).toUtf8());
    }
    return QString::fromLatin1(hash.result().toBase64())
        .replace(QLatin1Char('/'), QLatin1Char('_'));
}

QByteArray encodeConnectionMessage(const QString &blockServerName, quint8 type,
                                   quint32 instanceNumber)
{
    QByteArray message;
    QDataStream out(&message, QIODevice::WriteOnly);
    out.setVersion(QDataStream::Qt_5_6);
    out << blockServerName.toLatin1();
    out << type;
    out << instanceNumber;
    const quint16 checksum = qChecksum(message.constData(), static_cast<quint32>(message.size()));
    out << checksum;
    return message;
}

int connectionMessageSize(const QString &blockServerName)
{
    // Name length, name, type, instance number, checksum.
    return 4 + blockServerName.toLatin1().size() + 1 + 4 + 2;
}

ConnectionMessage decodeConnectionMessage(const QByteArray &data, const QString &blockServerName)
{
    ConnectionMessage result;
    if (data.size() < 2)
        return result;
    const QByteArray message = data.left(data.size() - 2);
    const QByteArray checksumBytes = data.right(2);

    QDataStream in(message);
    in.setVersion(QDataStream::Qt_5_6);
    QByteArray latin1Name;
    quint8 type = InvalidConnection;
    quint32 instanceId = 0;
    in >> latin1Name >> type >> instanceId;

    QDataStream checksumIn(checksumBytes);
    checksumIn.setVersion(QDataStream::Qt_5_6);
    quint16 received = 0;
    checksumIn >> received;

    if (in.status() != QDataStream::Ok)
        return result;
    // The name counts up to its first zero byte.
    if (QString::fromLatin1(latin1Name.constData()) != blockServerName)
        return result;
    if (received != qChecksum(message.constData(), static_cast<quint32>(message.size())))
        return result;
    result.valid = true;
    result.type = type;
    result.instanceId = instanceId;
    return result;
}
