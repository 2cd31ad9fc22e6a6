#include "usagefigures.h"

#include <QtTest>

Q_DECLARE_METATYPE(QVector<InterfaceCounters>)

class UsageFiguresTest : public QObject {
    Q_OBJECT
private slots:

    void ratesAreScaledTogether()
    {
        const struct {
            qint64 download, upload;
            const char *text;
        } rows[] = {
            {0, 0, "0B/s|0B/s"},
            {1023, 5, "5B/s|1023B/s"},
            {1024, 0, "0KB/s|1KB/s"},
            {1536, 0, "0KB/s|1.5KB/s"},
            {100, 2048, "2KB/s|0.09KB/s"},                  // upload alone lifts both
            {1023, 1024, "1KB/s|0.99KB/s"},                 // two decimals cut, not rounded
            {3 * 1024 * 1024, 512 * 1024, "0.5MB/s|3MB/s"}, // mixed megabytes
            {qint64(5) * 1024 * 1024 * 1024, 0, "0GB/s|5GB/s"},
            {4294967295LL, 1, "0GB/s|3.99GB/s"}, // a wrapped counter shown as computed
        };
        for (const auto &row : rows)
            QCOMPARE(formatRates(row.download, row.upload), QLatin1String(row.text));
    }

    void processorTimesAndLoad()
    {
        QCOMPARE(timeDelta(5000, 2000), 3000u);
        QCOMPARE(timeDelta(7, 7), 0u);
        QCOMPARE(timeDelta(2000, 5000), 2999u); // backwards
        QCOMPARE(timeDelta((quint64(3) << 32) + 10, 1), 9u);

        const quint64 base = (quint64(1) << 32) + 1000;
        QVERIFY(!isUsableSample({}));
        QVERIFY(!isUsableSample({quint64(1) << 32, 0, 0})); // low half zero
        QVERIFY(!isUsableSample({12345, 0, 0}));            // high half zero
        QVERIFY(isUsableSample({base, 0, 0}));

        // Movements of idle, kernel (idle included) and user times over a tick, and the load.
        const ProcessorTimes before{base, base * 2, 1000};
        const struct {
            quint64 idle, kernel, user;
            int load;
        } rows[] = {
            {5000000, 8000000, 12000000, 75},  {2000000, 2000000, 1000000, 33}, // truncated
            {1, 1000001, 1000000, 99},         {0, 4000000, 16000000, 100},
            {9000000, 4000000, 1000000, 0},    {20000000, 20000000, 0, 0},
            {10000000, 12000000, 8000000, 50},
        };
        for (const auto &r : rows)
            QCOMPARE(processorLoad({base + r.idle, base * 2 + r.kernel, 1000 + r.user}, before),
                     r.load);
    }

    void onlyTheFirstBusyInterfaceOfEachTypeCounts_data()
    {
        QTest::addColumn<QVector<InterfaceCounters>>("table");
        QTest::addColumn<quint32>("received");
        QTest::addColumn<quint32>("sent");
        using Table = QVector<InterfaceCounters>;
        QTest::newRow("empty") << Table{} << 0u << 0u;
        QTest::newRow("filter layers of one adapter")
            << Table{{71, 500, 50}, {71, 500, 50}, {71, 500, 50}} << 500u << 50u;
        QTest::newRow("wifi and ethernet both count")
            << Table{{6, 100, 10}, {71, 200, 20}} << 300u << 30u;
        QTest::newRow("idle first row does not claim its type")
            << Table{{6, 0, 0}, {6, 700, 70}, {6, 1, 1}} << 700u << 70u;
        QTest::newRow("receiving only is busy") << Table{{6, 700, 0}, {6, 1, 1}} << 700u << 0u;
        QTest::newRow("sums wrap at 32 bits")
            << Table{{6, 0xFFFFFFF0u, 1}, {71, 0x20, 1}} << 0x10u << 2u;
    }

    void onlyTheFirstBusyInterfaceOfEachTypeCounts()
    {
        QFETCH(QVector<InterfaceCounters>, table);
        QFETCH(quint32, received);
        QFETCH(quint32, sent);
        const OctetSums sums = firstBusyPerType(table);
        QCOMPARE(sums.received, received);
        QCOMPARE(sums.sent, sent);
    }

    void octetRatesAndMemoryUse()
    {
        QCOMPARE(octetRate(3000, 1000, 1.0), qint64(2000));
        QCOMPARE(octetRate(3000, 1000, 0.5), qint64(4000));
        QCOMPARE(octetRate(3000, 1000, 1.5), qint64(1333));
        // A counter that passed 2^32 still yields the bytes in between.
        QCOMPARE(octetRate(100, 0xFFFFFF00u, 1.0), qint64(356));
        // A sum that dropped (an interface went away) reads as a huge rate for one tick.
        QCOMPARE(octetRate(1000, 3000, 1.0), qint64(4294965296LL));

        QCOMPARE(memoryUsePercent(16ull << 30, 8ull << 30), 50);
        QCOMPARE(memoryUsePercent(3ull << 20, 1ull << 20), 66);
        // Fractions of a MiB are dropped before the division.
        QCOMPARE(memoryUsePercent((4ull << 20) + 1000, (1ull << 20) + 1000), 75);
        QCOMPARE(memoryUsePercent(1000, 0), -1);
    }
};

QTEST_GUILESS_MAIN(UsageFiguresTest)
#include "tst_usagefigures.moc"
