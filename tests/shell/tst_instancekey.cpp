#include "instancekey.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QtTest>

namespace {

// CRC-16 as the framework's qChecksum defines it (ISO 3309), written out bit by bit so the
// message's trailer is checked against an independent implementation.
quint16 crc16Iso3309(const QByteArray &data)
{
    quint16 crc = 0xffff;
    for (char byte : data) {
        crc ^= static_cast<quint8>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) ? static_cast<quint16>((crc >> 1) ^ 0x8408)
                            : static_cast<quint16>(crc >> 1);
    }
    return static_cast<quint16>(~crc);
}

InstanceKeyInputs sampleInputs()
{
    InstanceKeyInputs in;
    in.applicationName = QStringLiteral("varnel");
    in.applicationFilePath = QStringLiteral("/opt/Varnel/varnel");
    in.userName = QStringLiteral("alice");
    in.homeLocations = QStringList{QStringLiteral("/home/alice")};
    in.options = UserScope;
    return in;
}

} // namespace

class TestInstanceKey : public QObject {
    Q_OBJECT

private slots:
    void keyHashesTheDocumentedBytes()
    {
        const InstanceKeyInputs in = sampleInputs();
        // Only the first four bytes of the word, then names, version, lower-cased path, user.
        QByteArray bytes =
            QByteArray("Varn") + "varnel" + "" + "" + "" + "/opt/varnel/varnel" + "alice";
        QString expected = QString::fromLatin1(
            QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toBase64());
        expected.replace(QLatin1Char('/'), QLatin1Char('_'));
        QCOMPARE(instanceKey(in), expected);
        QCOMPARE(expected.size(), 44);
    }

    void keyRules_data()
    {
        QTest::addColumn<QString>("otherPath");
        QTest::addColumn<QString>("otherUser");
        QTest::addColumn<quint32>("options");
        QTest::addColumn<bool>("same");
        QTest::newRow("path differing only in case") << "/OPT/varnel/VARNEL"
                                                     << "alice" << 1u << true;
        QTest::newRow("different path") << "/opt/other/varnel"
                                        << "alice" << 1u << false;
        QTest::newRow("different user") << "/opt/Varnel/varnel"
                                        << "bob" << 1u << false;
        QTest::newRow("different user, not user scoped") << "/opt/Varnel/varnel"
                                                         << "bob" << 0u << true;
        QTest::newRow("different path, path excluded") << "/elsewhere/varnel"
                                                       << "alice" << 17u << true;
    }

    void keyRules()
    {
        QFETCH(QString, otherPath);
        QFETCH(QString, otherUser);
        QFETCH(quint32, options);
        QFETCH(bool, same);
        InstanceKeyInputs a = sampleInputs();
        a.options = options;
        InstanceKeyInputs b = a;
        b.applicationFilePath = otherPath;
        b.userName = otherUser;
        QCOMPARE(instanceKey(a) == instanceKey(b), same);
    }

    void versionCountsUnlessExcluded()
    {
        InstanceKeyInputs a = sampleInputs();
        InstanceKeyInputs b = a;
        b.applicationVersion = QStringLiteral("1.4.4");
        QVERIFY(instanceKey(a) != instanceKey(b));
        a.options = b.options = UserScope | ExcludeAppVersion;
        QCOMPARE(instanceKey(a), instanceKey(b));
    }

    void missingUserNameFallsBackToHomeLocations()
    {
        InstanceKeyInputs a = sampleInputs();
        a.userName.clear();
        InstanceKeyInputs b = a;
        b.homeLocations = QStringList{QStringLiteral("/home/bob")};
        QVERIFY(instanceKey(a) != instanceKey(b));
        // The joined home locations stand where the name would be.
        InstanceKeyInputs named = sampleInputs();
        named.userName = QStringLiteral("/home/alice");
        QCOMPARE(instanceKey(a), instanceKey(named));
    }

    void keyNeverContainsSlash()
    {
        InstanceKeyInputs in = sampleInputs();
        for (int i = 0; i < 200; ++i) {
            in.userName = QString::number(i);
            QVERIFY(!instanceKey(in).contains(QLatin1Char('/')));
        }
    }

    void newInstanceMessageBytes()
    {
        const QByteArray message = encodeConnectionMessage(QStringLiteral("AB"), NewInstance, 0);
        const QByteArray body = QByteArray::fromHex("00000002"
                                                    "4142"
                                                    "01"
                                                    "00000000");
        QCOMPARE(message.size(), body.size() + 2);
        QCOMPARE(message.left(body.size()), body);
        const quint16 crc = crc16Iso3309(body);
        QCOMPARE(static_cast<quint8>(message.at(body.size())), static_cast<quint8>(crc >> 8));
        QCOMPARE(static_cast<quint8>(message.at(body.size() + 1)), static_cast<quint8>(crc & 0xff));
    }

    void decodeChecksNameTypeAndChecksum_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<bool>("valid");
        const QString key = QStringLiteral("key+1");
        const QByteArray good = encodeConnectionMessage(key, NewInstance, 7);
        QByteArray badChecksum = good;
        badChecksum[badChecksum.size() - 1] = char(badChecksum.at(badChecksum.size() - 1) ^ 0x5a);
        QByteArray badBody = good;
        badBody[5] = 'X';
        QTest::newRow("valid") << good << true;
        QTest::newRow("wrong checksum") << badChecksum << false;
        QTest::newRow("body changed") << badBody << false;
        QTest::newRow("other name")
            << encodeConnectionMessage(QStringLiteral("key+2"), 1, 0) << false;
        QTest::newRow("truncated") << good.left(6) << false;
        QTest::newRow("empty") << QByteArray() << false;
    }

    void decodeChecksNameTypeAndChecksum()
    {
        QFETCH(QByteArray, data);
        QFETCH(bool, valid);
        const ConnectionMessage m = decodeConnectionMessage(data, QStringLiteral("key+1"));
        QCOMPARE(m.valid, valid);
        if (valid) {
            QCOMPARE(int(m.type), int(NewInstance));
            QCOMPARE(m.instanceId, 7u);
        }
    }

    void nameIsComparedUpToItsFirstZeroByte()
    {
        QByteArray body;
        QDataStream out(&body, QIODevice::WriteOnly);
        out.setVersion(QDataStream::Qt_5_6);
        out << QByteArray("key\0tail", 8) << quint8(NewInstance) << quint32(0);
        out << qChecksum(body.constData(), uint(body.size()));
        QVERIFY(decodeConnectionMessage(body, QStringLiteral("key")).valid);
    }

    void blockLayoutIsFixed()
    {
        QCOMPARE(offsetof(InstanceBlock, primary), size_t(0));
        QCOMPARE(offsetof(InstanceBlock, secondary), size_t(4));
        QCOMPARE(offsetof(InstanceBlock, primaryPid), size_t(8));
    }
};

QTEST_GUILESS_MAIN(TestInstanceKey)
#include "tst_instancekey.moc"
