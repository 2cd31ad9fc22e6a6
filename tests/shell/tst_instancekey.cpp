#include "instancekey.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QtTest>

// Name, organization, domain, version, path, user, home locations, options.
static const InstanceKeyInputs kSample{
    "varnel", {}, {}, {}, "/opt/Varnel/varnel", "alice", {"/home/alice"}, UserScope};

class TestInstanceKey : public QObject {
    Q_OBJECT

private slots:
    void keyAndMessageHaveFixedBytes()
    {
        // Only the first four bytes of the word, then names, version, lower-cased path, user.
        const QByteArray bytes("Varnvarnel/opt/varnel/varnelalice");
        QString expected = QString::fromLatin1(
            QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toBase64());
        expected.replace('/', '_');
        QCOMPARE(instanceKey(kSample), expected);
        InstanceKeyInputs in = kSample;
        for (int i = 0; i < 200; ++i) {
            in.userName = QString::number(i);
            QVERIFY(!instanceKey(in).contains('/'));
        }
        // Without a user name the home locations stand in for it.
        InstanceKeyInputs unnamed = kSample, named = kSample, elsewhere = kSample;
        unnamed.userName.clear();
        elsewhere.userName.clear();
        elsewhere.homeLocations = QStringList{QStringLiteral("/home/bob")};
        named.userName = QStringLiteral("/home/alice");
        QCOMPARE(instanceKey(unnamed), instanceKey(named));
        QVERIFY(instanceKey(unnamed) != instanceKey(elsewhere));

        // Name with its length, type, instance id, then the CRC-16 (ISO 3309) of all of that.
        QCOMPARE(encodeConnectionMessage(QStringLiteral("AB"), NewInstance, 0),
                 QByteArray::fromHex("00000002414201000000005dab"));
        QCOMPARE(offsetof(InstanceBlock, secondary), size_t(4));
        QCOMPARE(offsetof(InstanceBlock, primaryPid), size_t(8));
    }

    void keyRules_data()
    {
        QTest::addColumn<quint32>("options");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("user");
        QTest::addColumn<QString>("version");
        QTest::addColumn<bool>("same"); // as the sample's key under the same options
        const quint32 user = UserScope, noPath = UserScope | ExcludeAppPath,
                      noVersion = UserScope | ExcludeAppVersion;
        const struct {
            const char *row;
            quint32 options;
            const char *path, *user, *version;
            bool same;
        } rows[] = {
            {"path differing only in case", user, "/OPT/varnel/VARNEL", "alice", "", true},
            {"different path", user, "/opt/other/varnel", "alice", "", false},
            {"different user", user, "/opt/Varnel/varnel", "bob", "", false},
            {"different user, not user scoped", 0, "/opt/Varnel/varnel", "bob", "", true},
            {"different path, path excluded", noPath, "/elsewhere/varnel", "alice", "", true},
            {"different version", user, "/opt/Varnel/varnel", "alice", "1.4.4", false},
            {"version excluded", noVersion, "/opt/Varnel/varnel", "alice", "1.4.4", true}};
        for (const auto &r : rows)
            QTest::newRow(r.row) << r.options << QString(r.path) << QString(r.user)
                                 << QString(r.version) << r.same;
    }

    void keyRules()
    {
        QFETCH(quint32, options);
        InstanceKeyInputs a = kSample;
        a.options = options;
        InstanceKeyInputs b = a;
        QFETCH(QString, path);
        QFETCH(QString, user);
        QFETCH(QString, version);
        b.applicationFilePath = path;
        b.userName = user;
        b.applicationVersion = version;
        QTEST(instanceKey(a) == instanceKey(b), "same");
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
    }
};

QTEST_GUILESS_MAIN(TestInstanceKey)
#include "tst_instancekey.moc"
