#include "instancekey.h"

#include <QCryptographicHash>
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
        InstanceKeyInputs unnamed = kSample, named = kSample;
        unnamed.userName.clear();
        named.userName = QStringLiteral("/home/alice");
        QCOMPARE(instanceKey(unnamed), instanceKey(named));
        unnamed.homeLocations = QStringList{QStringLiteral("/home/bob")};
        QVERIFY(instanceKey(unnamed) != instanceKey(named));

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
        const quint32 scoped = UserScope, noPath = UserScope | ExcludeAppPath,
                      noVersion = UserScope | ExcludeAppVersion;
        auto row = [](const char *name, quint32 options, const char *path, const char *user,
                      const char *version, bool same) {
            QTest::newRow(name) << options << QString(path) << QString(user) << QString(version)
                                << same;
        };
        row("path differing only in case", scoped, "/OPT/varnel/VARNEL", "alice", "", true);
        row("different path", scoped, "/opt/other/varnel", "alice", "", false);
        row("different user", scoped, "/opt/Varnel/varnel", "bob", "", false);
        row("different user, not user scoped", 0, "/opt/Varnel/varnel", "bob", "", true);
        row("different path, path excluded", noPath, "/elsewhere/varnel", "alice", "", true);
        row("different version", scoped, "/opt/Varnel/varnel", "alice", "1.4.4", false);
        row("version excluded", noVersion, "/opt/Varnel/varnel", "alice", "1.4.4", true);
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
        QTest::newRow("valid") << good << true;
        // The name counts up to its first zero byte.
        QTest::newRow("zero byte in the name")
            << encodeConnectionMessage(QString::fromLatin1("key+1\0tail", 10), NewInstance, 7)
            << true;
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
