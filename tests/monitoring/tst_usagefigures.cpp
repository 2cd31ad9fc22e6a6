#include "usagefigures.h"

#include <QtTest>

Q_DECLARE_METATYPE(QVector<InterfaceCounters>)

class UsageFiguresTest : public QObject {
    Q_OBJECT
private slots:
    void ratesAreScaledTogether_data();
    void ratesAreScaledTogether();
    void processorTimesWrapAsTheWidgetTakesThem_data();
    void processorTimesWrapAsTheWidgetTakesThem();
    void processorLoadNeedsAUsablePreviousSample();
    void processorLoadStaysWithinAPercent_data();
    void processorLoadStaysWithinAPercent();
    void onlyTheFirstBusyInterfaceOfEachTypeCounts_data();
    void onlyTheFirstBusyInterfaceOfEachTypeCounts();
    void octetRatesUseThirtyTwoBitCounters();
    void memoryUseInWholeMebibytes();
};

void UsageFiguresTest::ratesAreScaledTogether_data()
{
    QTest::addColumn<qint64>("download");
    QTest::addColumn<qint64>("upload");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << qint64(0) << qint64(0) << "0B/s|0B/s";
    QTest::newRow("1023 stays bytes") << qint64(1023) << qint64(5) << "5B/s|1023B/s";
    QTest::newRow("1024 is one kilobyte") << qint64(1024) << qint64(0) << "0KB/s|1KB/s";
    QTest::newRow("1536") << qint64(1536) << qint64(0) << "0KB/s|1.5KB/s";
    QTest::newRow("upload alone lifts both") << qint64(100) << qint64(2048) << "2KB/s|0.09KB/s";
    QTest::newRow("two decimals cut, not rounded")
        << qint64(1023) << qint64(1024) << "1KB/s|0.99KB/s";
    QTest::newRow("mixed megabytes")
        << qint64(3 * 1024 * 1024) << qint64(512 * 1024) << "0.5MB/s|3MB/s";
    QTest::newRow("gigabytes") << qint64(5) * 1024 * 1024 * 1024 << qint64(0) << "0GB/s|5GB/s";
    QTest::newRow("wrapped counter shown as computed")
        << qint64(4294967295LL) << qint64(1) << "0GB/s|3.99GB/s";
}

void UsageFiguresTest::ratesAreScaledTogether()
{
    QFETCH(qint64, download);
    QFETCH(qint64, upload);
    QFETCH(QString, text);
    QCOMPARE(formatRates(download, upload), text);
}

void UsageFiguresTest::processorTimesWrapAsTheWidgetTakesThem_data()
{
    QTest::addColumn<quint64>("now");
    QTest::addColumn<quint64>("before");
    QTest::addColumn<quint32>("delta");
    QTest::newRow("forward") << quint64(5000) << quint64(2000) << quint32(3000);
    QTest::newRow("unchanged moved by nothing") << quint64(7) << quint64(7) << quint32(0);
    QTest::newRow("backwards") << quint64(2000) << quint64(5000) << quint32(2999);
    QTest::newRow("only the low 32 bits") << (quint64(3) << 32) + 10 << quint64(1) << quint32(9);
}

void UsageFiguresTest::processorTimesWrapAsTheWidgetTakesThem()
{
    QFETCH(quint64, now);
    QFETCH(quint64, before);
    QFETCH(quint32, delta);
    QCOMPARE(timeDelta(now, before), delta);
}

void UsageFiguresTest::processorLoadNeedsAUsablePreviousSample()
{
    const quint64 base = (quint64(1) << 32) + 1000;
    QVERIFY(!isUsableSample({}));
    QVERIFY(!isUsableSample({quint64(1) << 32, 0, 0})); // low half zero
    QVERIFY(!isUsableSample({12345, 0, 0}));            // high half zero
    QVERIFY(isUsableSample({base, 0, 0}));

    // 1 s on two processors: 2e7 units, a quarter of it idle (kernel includes idle).
    const ProcessorTimes before{base, base * 2, 1000};
    const ProcessorTimes now{base + 5000000, base * 2 + 8000000, 1000 + 12000000};
    QCOMPARE(processorLoad(now, before), 75);
    // 33.33...% busy is truncated, not rounded.
    QCOMPARE(processorLoad({base + 2000000, base * 2 + 2000000, 1000 + 1000000}, before), 33);
    QCOMPARE(processorLoad({base + 1, base * 2 + 1000001, 1000 + 1000000}, before), 99);
}

void UsageFiguresTest::processorLoadStaysWithinAPercent_data()
{
    QTest::addColumn<quint64>("idle");   // movement of each counter during the tick
    QTest::addColumn<quint64>("kernel"); // idle included
    QTest::addColumn<quint64>("user");
    QTest::addColumn<int>("load");
    QTest::newRow("full load: the idle counter stood still")
        << quint64(0) << quint64(4000000) << quint64(16000000) << 100;
    QTest::newRow("idle ahead of the busy counters")
        << quint64(9000000) << quint64(4000000) << quint64(1000000) << 0;
    QTest::newRow("all idle") << quint64(20000000) << quint64(20000000) << quint64(0) << 0;
    QTest::newRow("half") << quint64(10000000) << quint64(12000000) << quint64(8000000) << 50;
}

void UsageFiguresTest::processorLoadStaysWithinAPercent()
{
    QFETCH(quint64, idle);
    QFETCH(quint64, kernel);
    QFETCH(quint64, user);
    QFETCH(int, load);
    const quint64 base = (quint64(7) << 32) + 12345;
    const ProcessorTimes before{base, base * 3, base / 2};
    QCOMPARE(processorLoad({base + idle, base * 3 + kernel, base / 2 + user}, before), load);
}

void UsageFiguresTest::onlyTheFirstBusyInterfaceOfEachTypeCounts_data()
{
    QTest::addColumn<QVector<InterfaceCounters>>("table");
    QTest::addColumn<quint32>("received");
    QTest::addColumn<quint32>("sent");
    QTest::newRow("empty") << QVector<InterfaceCounters>{} << 0u << 0u;
    QTest::newRow("filter layers of one adapter")
        << QVector<InterfaceCounters>{{71, 500, 50}, {71, 500, 50}, {71, 500, 50}} << 500u << 50u;
    QTest::newRow("wifi and ethernet both count")
        << QVector<InterfaceCounters>{{6, 100, 10}, {71, 200, 20}} << 300u << 30u;
    QTest::newRow("idle first row does not claim its type")
        << QVector<InterfaceCounters>{{6, 0, 0}, {6, 700, 70}, {6, 1, 1}} << 700u << 70u;
    QTest::newRow("receiving only is busy")
        << QVector<InterfaceCounters>{{6, 700, 0}, {6, 1, 1}} << 700u << 0u;
    QTest::newRow("sums wrap at 32 bits")
        << QVector<InterfaceCounters>{{6, 0xFFFFFFF0u, 1}, {71, 0x20, 1}} << 0x10u << 2u;
}

void UsageFiguresTest::onlyTheFirstBusyInterfaceOfEachTypeCounts()
{
    QFETCH(QVector<InterfaceCounters>, table);
    QFETCH(quint32, received);
    QFETCH(quint32, sent);
    const OctetSums sums = firstBusyPerType(table);
    QCOMPARE(sums.received, received);
    QCOMPARE(sums.sent, sent);
}

void UsageFiguresTest::octetRatesUseThirtyTwoBitCounters()
{
    QCOMPARE(octetRate(3000, 1000, 1.0), qint64(2000));
    QCOMPARE(octetRate(3000, 1000, 0.5), qint64(4000));
    QCOMPARE(octetRate(3000, 1000, 1.5), qint64(1333));
    // A counter that passed 2^32 still yields the bytes in between.
    QCOMPARE(octetRate(100, 0xFFFFFF00u, 1.0), qint64(356));
    // A sum that dropped (an interface went away) reads as a huge rate for one tick.
    QCOMPARE(octetRate(1000, 3000, 1.0), qint64(4294965296LL));
}

void UsageFiguresTest::memoryUseInWholeMebibytes()
{
    QCOMPARE(memoryUsePercent(16ull << 30, 8ull << 30), 50);
    QCOMPARE(memoryUsePercent(3ull << 20, 1ull << 20), 66);
    // Fractions of a MiB are dropped before the division.
    QCOMPARE(memoryUsePercent((4ull << 20) + 1000, (1ull << 20) + 1000), 75);
    QCOMPARE(memoryUsePercent(1000, 0), -1);
}

QTEST_GUILESS_MAIN(UsageFiguresTest)
#include "tst_usagefigures.moc"
