#include "rfkillswitch.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

class TestRfkill : public QObject {
    Q_OBJECT

private slots:
    // index (4 bytes, host order), type, operation, soft block, hard block
    void switchWritesOneChangeAllEvent_data()
    {
        QTest::addColumn<int>("switchId");
        QTest::addColumn<int>("value");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("wlan off") << 2 << 0 << QByteArray("\0\0\0\0\x01\x03\x01\x00", 8);
        QTest::newRow("wlan on") << 2 << 1 << QByteArray("\0\0\0\0\x01\x03\x00\x00", 8);
        QTest::newRow("camera needs root") << 1 << 0 << QByteArray();
        QTest::newRow("touchpad follows the desktop") << 3 << 0 << QByteArray();
    }

    void switchWritesOneChangeAllEvent()
    {
        QFETCH(int, switchId);
        QFETCH(int, value);
        QFETCH(QByteArray, bytes);
        QTemporaryDir dir;
        const QString device = dir.filePath(QStringLiteral("rfkill"));
        QFile file(device);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        LinuxDeviceSwitches switches(device);
        switches.setSwitch(switchId, value);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), bytes);
    }

    void missingDeviceFailsQuietly()
    {
        QVERIFY(
            !rfkill::write(QStringLiteral("/nonexistent/rfkill"), rfkill::changeAllEvent(1, true)));
        LinuxDeviceSwitches switches(QStringLiteral("/nonexistent/rfkill"));
        switches.setSwitch(2, 1);
    }
};

QTEST_GUILESS_MAIN(TestRfkill)
#include "tst_rfkill.moc"
