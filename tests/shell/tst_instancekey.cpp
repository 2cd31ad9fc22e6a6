#include "instancekey.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QtTest>

namespace {

// CRC-16 (ISO 3309) written out bit by bit, to check the message's trailer independently.
quint16 crc16Iso3309(const QByteArray &data)
{
    quint16 crc = 0xffff;
    for (char byte : data) {
        crc ^= static_cast<quint8>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) ? quint16((crc >> 1) ^ 0x8408) : quint16(crc >> 1);
    }
    return quint16(~crc);
}

InstanceKeyInputs sample()
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
        // Only the first four bytes of the word, then names, version, lower-cased path, user.
        const QByteArray bytes("Varnvarnel/opt/varnel/varnelalice");
        QString expected = QString::fromLatin1(
            QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toBase64());
        expected.replace('/', '_');
        QCOMPARE(instanceKey(sample()), expected);
        InstanceKeyInputs in = sample();
        for (int i = 0; i < 200; ++i) {
            in.userName = QString::number(i);
            QVERIFY(!instanceKey(in).contains('/'));
        }
    }

    void keyRules_data()
    {
        QTest::addColumn<int>("change");
        QTest::addColumn<bool>("same");
        const std::pair<const char *, bool> rows[] = {{"path differing only in case", true},
                                                      {"different path", false},
                                                      {"different user", false},
                                                      {"different user, not user scoped", true},
                                                      {"different path, path excluded", true},
                                                      {"different version", false},
                                                      {"different version, version excluded", true},
                                                      {"no user name, different homes", false}};
        int change = 0;
        for (const auto &[row, same] : rows)
            QTest::newRow(row) << change++ << same;
    }

    void keyRules()
    {
        QFETCH(int, change);
        QFETCH(bool, same);
        InstanceKeyInputs a = sample();
        InstanceKeyInputs b = a;
        switch (change) {
        case 0:
            b.applicationFilePath = QStringLiteral("/OPT/varnel/VARNEL");
            break;
        case 1:
            b.applicationFilePath = QStringLiteral("/opt/other/varnel");
            break;
        case 3:
            a.options = b.options = 0;
            Q_FALLTHROUGH();
        case 2:
            b.userName = QStringLiteral("bob");
            break;
        case 4:
            a.options = b.options = UserScope | ExcludeAppPath;
            b.applicationFilePath = QStringLiteral("/elsewhere/varnel");
            break;
        case 6:
            a.options = b.options = UserScope | ExcludeAppVersion;
            Q_FALLTHROUGH();
        case 5:
            b.applicationVersion = QStringLiteral("1.4.4");
            break;
        case 7:
            a.userName.clear();
            b.userName.clear();
            b.homeLocations = QStringList{QStringLiteral("/home/bob")};
            break;
        }
        QCOMPARE(instanceKey(a) == instanceKey(b), same);
    }

    void missingUserNameUsesTheHomeLocations()
    {
        InstanceKeyInputs unnamed = sample(), named = sample();
        unnamed.userName.clear();
        named.userName = QStringLiteral("/home/alice");
        QCOMPARE(instanceKey(unnamed), instanceKey(named));
    }

    void newInstanceMessageBytes()
    {
        const QByteArray message = encodeConnectionMessage(QStringLiteral("AB"), NewInstance, 0);
        const QByteArray body = QByteArray::fromHex("00000002414201"
                                                    "00000000");
        const quint16 crc = crc16Iso3309(body);
        QCOMPARE(message, body + char(crc >> 8) + char(crc & 0xff));
    }

    void decodeChecksNameTypeAndChecksum_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<bool>("valid");
        const QByteArray good = encodeConnectionMessage(QStringLiteral("key+1"), NewInstance, 7);
        QByteArray badChecksum = good, badBody = good;
        badChecksum[badChecksum.size() - 1] = char(badChecksum.back() ^ 0x5a);
        badBody[5] = 'X';
        // The name counts up to its first zero byte.
        QByteArray zeroInName;
        QDataStream out(&zeroInName, QIODevice::WriteOnly);
        out.setVersion(QDataStream::Qt_5_6);
        out << QByteArray("key+1\0tail", 10) << quint8(NewInstance) << quint32(7);
        out << qChecksum(zeroInName.constData(), uint(zeroInName.size()));
        QTest::newRow("valid") << good << true;
        QTest::newRow("zero byte in the name") << zeroInName << true;
        QTest::newRow("wrong checksum") << badChecksum << false;
        QTest::newRow("body changed") << badBody << false;
        QTest::newRow("other name") << encodeConnectionMessage("key+2", 1, 0) << false;
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
        QCOMPARE(offsetof(InstanceBlock, secondary), size_t(4)); // the block's fixed layout
        QCOMPARE(offsetof(InstanceBlock, primaryPid), size_t(8));
    }
};

QTEST_GUILESS_MAIN(TestInstanceKey)
#include "tst_instancekey.moc"
