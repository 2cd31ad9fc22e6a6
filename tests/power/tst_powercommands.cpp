// The power-scheme command catalogue, row by row.
#include "powercommands.h"

#include <QtTest>

class PowerCommandsTest : public QObject {
    Q_OBJECT

private slots:
    void valuePairs_data();
    void valuePairs();
    void timeouts_data();
    void timeouts();
    void lidClose_data();
    void lidClose();
    void fanCodes_data();
    void fanCodes();
    void adaptiveBrightness_data();
    void adaptiveBrightness();
};

namespace {
const QString kDisplay = QStringLiteral("7516b95f-f776-4464-8c53-06167f40cc99 ");
const QString kLid = QStringLiteral(
    "SCHEME_CURRENT 4f971e89-eebd-4455-a8de-9e59040e7347 5ca83367-6e45-459f-a27b-476b1d01c936 ");
} // namespace

void PowerCommandsTest::valuePairs_data()
{
    QTest::addColumn<int>("field"); // 0 minimum, 1 maximum, 2 scheme brightness
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("ac");
    QTest::addColumn<QString>("dc");
    for (int v : {0, 5, 100}) {
        const QString n = QString::number(v);
        QTest::addRow("processor minimum %d", v)
            << 0 << v
            << "powercfg -setacvalueindex SCHEME_CURRENT SUB_PROCESSOR PROCTHROTTLEMIN " + n
            << "powercfg -setdcvalueindex SCHEME_CURRENT SUB_PROCESSOR PROCTHROTTLEMIN " + n;
        QTest::addRow("processor maximum %d", v)
            << 1 << v
            << "powercfg -setacvalueindex SCHEME_CURRENT SUB_PROCESSOR PROCTHROTTLEMAX " + n
            << "powercfg -setdcvalueindex SCHEME_CURRENT SUB_PROCESSOR PROCTHROTTLEMAX " + n;
        QTest::addRow("scheme brightness %d", v)
            << 2 << v
            << "powercfg -setacvalueindex SCHEME_CURRENT " + kDisplay +
                   "aded5e82-b909-4619-9949-f5d71dac0bcb " + n
            << "powercfg -setdcvalueindex SCHEME_CURRENT " + kDisplay +
                   "aded5e82-b909-4619-9949-f5d71dac0bcb " + n;
    }
}

void PowerCommandsTest::valuePairs()
{
    QFETCH(int, field);
    QFETCH(int, value);
    QFETCH(QString, ac);
    QFETCH(QString, dc);
    const powercmd::Pair pair = field == 0   ? powercmd::processorMinimum(value)
                                : field == 1 ? powercmd::processorMaximum(value)
                                             : powercmd::schemeBrightness(value);
    QCOMPARE(pair.ac, ac);
    QCOMPARE(pair.dc, dc);
}

void PowerCommandsTest::timeouts_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QStringList>("screen");
    QTest::addColumn<QStringList>("sleep");
    const int minutes[] = {0, 5, 10, 15, 20, 30, 60, 120, 300};
    for (int index = 0; index < 9; ++index) {
        const QString m = QString::number(minutes[index]);
        // Short sleep timeouts use "-x" alone, longer ones "-change -x".
        const QString sleepForm =
            index <= 3 ? QStringLiteral("powercfg -x ") : QStringLiteral("powercfg -change -x ");
        QTest::addRow("index %d", index) << index
                                         << QStringList{"powercfg -change -monitor-timeout-ac " + m,
                                                        "powercfg -change -monitor-timeout-dc " + m}
                                         << QStringList{sleepForm + "-standby-timeout-ac " + m,
                                                        sleepForm + "-standby-timeout-dc " + m};
    }
    QTest::newRow("index 3 literal")
        << 3
        << QStringList{"powercfg -change -monitor-timeout-ac 15",
                       "powercfg -change -monitor-timeout-dc 15"}
        << QStringList{"powercfg -x -standby-timeout-ac 15", "powercfg -x -standby-timeout-dc 15"};
    QTest::newRow("index 4 literal") << 4
                                     << QStringList{"powercfg -change -monitor-timeout-ac 20",
                                                    "powercfg -change -monitor-timeout-dc 20"}
                                     << QStringList{"powercfg -change -x -standby-timeout-ac 20",
                                                    "powercfg -change -x -standby-timeout-dc 20"};
    for (int index : {-1, 9})
        QTest::addRow("out of range %d", index)
            << index << QStringList{QString(), QString()} << QStringList{QString(), QString()};
}

void PowerCommandsTest::timeouts()
{
    QFETCH(int, index);
    QFETCH(QStringList, screen);
    QFETCH(QStringList, sleep);
    const powercmd::Pair s = powercmd::screenOff(index);
    const powercmd::Pair z = powercmd::sleepAfter(index);
    QCOMPARE((QStringList{s.ac, s.dc}), screen);
    QCOMPARE((QStringList{z.ac, z.dc}), sleep);
}

void PowerCommandsTest::lidClose_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("ac");
    QTest::addColumn<QString>("dc");
    QTest::newRow("do nothing") << 0 << "powercfg setacvalueindex " + kLid + "0"
                                << "powercfg setdcvalueindex " + kLid + "0";
    QTest::newRow("sleep") << 1 << "powercfg setacvalueindex " + kLid + "1"
                           << "powercfg setdcvalueindex " + kLid + "1";
    QTest::newRow("shutdown is 3") << 2 << "powercfg setacvalueindex " + kLid + "3"
                                   << "powercfg setdcvalueindex " + kLid + "3";
    QTest::newRow("out of range 3") << 3 << QString() << QString();
    QTest::newRow("no selection") << -1 << QString() << QString();
}

void PowerCommandsTest::lidClose()
{
    QFETCH(int, index);
    QFETCH(QString, ac);
    QFETCH(QString, dc);
    const powercmd::Pair pair = powercmd::lidClose(index);
    QCOMPARE(pair.ac, ac);
    QCOMPARE(pair.dc, dc);
}

void PowerCommandsTest::fanCodes_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("current");
    QTest::addColumn<QString>("code");
    QTest::newRow("No Change") << 0 << "3"
                               << "none";
    QTest::newRow("EC Automatic") << 1 << "none"
                                  << "1";
    QTest::newRow("Max Speed") << 2 << "none"
                               << "2";
    QTest::newRow("Manual") << 3 << "none"
                            << "3";
    QTest::newRow("Silent") << 4 << "none"
                            << "4";
    QTest::newRow("Normal") << 5 << "none"
                            << "5";
    QTest::newRow("Extreme") << 6 << "none"
                             << "6";
    QTest::newRow("no selection keeps the code") << -1 << "5"
                                                 << "5";
    QTest::newRow("beyond the list keeps the code") << 7 << "2"
                                                    << "2";
}

void PowerCommandsTest::fanCodes()
{
    QFETCH(int, index);
    QFETCH(QString, current);
    QFETCH(QString, code);
    QCOMPARE(powercmd::fanProfileCode(index, current), code);
}

void PowerCommandsTest::adaptiveBrightness_data()
{
    QTest::addColumn<bool>("disable");
    QTest::addColumn<QString>("value");
    QTest::newRow("switched off") << true << "0";
    QTest::newRow("switched on") << false << "1";
}

void PowerCommandsTest::adaptiveBrightness()
{
    QFETCH(bool, disable);
    QFETCH(QString, value);
    const QString setting = kDisplay + "FBD9AA66-9553-4097-BA44-ED6E9D65EAB8 " + value;
    QCOMPARE(powercmd::adaptiveBrightness(disable),
             (QStringList{"powercfg -setdcvalueindex SCHEME_CURRENT " + setting,
                          "powercfg -setacvalueindex SCHEME_CURRENT " + setting,
                          "powercfg -SetActive SCHEME_CURRENT"}));
}

QTEST_GUILESS_MAIN(PowerCommandsTest)
#include "tst_powercommands.moc"
