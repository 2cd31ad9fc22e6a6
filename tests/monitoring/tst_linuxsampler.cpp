#include "linuxsampler.h"

#include <QtTest>

#include <sys/statvfs.h>

class LinuxSamplerTest : public QObject {
    Q_OBJECT
private slots:
    void fixtureMemoryAndInterfaces();
    void processorTimesFromTheFirstStatLine();
    void freeSpaceIsWhatTheUserMayUse();
    void missingTreeGivesNothingAndThisMachineGivesFigures();

private:
    QString root() const { return QFINDTESTDATA("fixtures/laptop"); }
};

void LinuxSamplerTest::fixtureMemoryAndInterfaces()
{
    LinuxSampler sampler(root() + QStringLiteral("/proc"), root() + QStringLiteral("/sys"));
    quint64 total = 0, available = 0;
    QVERIFY(sampler.memoryStatus(&total, &available));
    QCOMPARE(total, quint64(16303412) * 1024);
    QCOMPARE(available, quint64(9781884) * 1024);

    // lo, docker0 and the veth pair have no device; wlp2s0 (index 2) comes before enp3s0 (3).
    const QVector<InterfaceCounters> table = sampler.interfaceTable();
    QCOMPARE(table.size(), 2);
    QCOMPARE(table.at(0).type, 801u); // wireless: ARPHRD_IEEE80211
    QCOMPARE(table.at(0).inOctets, quint32(7000000000ull - 4294967296ull));
    QCOMPARE(table.at(0).outOctets, 300000u);
    QCOMPARE(table.at(1).type, 1u); // ARPHRD_ETHER
    QCOMPARE(table.at(1).inOctets, 1000000u);
    QCOMPARE(table.at(1).outOctets, 200000u);

    // Without MemAvailable there is no figure.
    QTemporaryDir dir;
    QFile meminfo(dir.filePath(QStringLiteral("meminfo")));
    QVERIFY(meminfo.open(QIODevice::WriteOnly));
    meminfo.write("MemTotal:       16303412 kB\nMemFree:         2044108 kB\n");
    meminfo.close();
    QVERIFY(!LinuxSampler(dir.path(), dir.path()).memoryStatus(&total, &available));
}

void LinuxSamplerTest::processorTimesFromTheFirstStatLine()
{
    // user nice system idle iowait irq softirq; 100 ticks a second = 100000 units of 100 ns.
    const struct {
        const char *stat;
        bool ok;
        quint64 idle, kernel, user;
    } rows[] = {
        {"cpu  10 2 30 400 5 6 7 8 0 0\ncpu0 1 1 1 1 1 1 1\n", true, 405, 30 + 6 + 7 + 405, 12},
        {"cpu 1 0 1 100 0 0 0\n", true, 100, 101, 1}, // an older kernel's seven fields
        {"cpu0 1 2 3 4 5 6 7\n", false, 0, 0, 0},     // a per-processor line first
        {"cpu  a b c d e f g\n", false, 0, 0, 0},
        {"", false, 0, 0, 0},
    };
    for (const auto &row : rows) {
        quint64 idle = 0, kernel = 0, user = 0;
        QCOMPARE(parseProcStat(row.stat, 100, &idle, &kernel, &user), row.ok);
        if (row.ok) {
            QCOMPARE(idle, row.idle * 100000);
            QCOMPARE(kernel, row.kernel * 100000);
            QCOMPARE(user, row.user * 100000);
        }
    }
}

void LinuxSamplerTest::freeSpaceIsWhatTheUserMayUse()
{
    QTemporaryDir dir;
    struct statvfs info {};
    QCOMPARE(statvfs(QFile::encodeName(dir.path()).constData(), &info), 0);
    LinuxSampler sampler(root(), root(), dir.path());
    const quint64 expected = quint64(info.f_bavail) * info.f_frsize;
    // Other processes write meanwhile; a few MiB either way is the same figure.
    QVERIFY(qAbs(qint64(sampler.freeBytesForUser()) - qint64(expected)) < (16ll << 20));
    QVERIFY(sampler.freeBytesForUser() <= quint64(info.f_bfree) * info.f_frsize);
}

void LinuxSamplerTest::missingTreeGivesNothingAndThisMachineGivesFigures()
{
    LinuxSampler missing(QStringLiteral("/nonexistent/proc"), QStringLiteral("/nonexistent/sys"),
                         QStringLiteral("/nonexistent"));
    quint64 a = 0, b = 0, c = 0;
    QVERIFY(!missing.memoryStatus(&a, &b));
    QVERIFY(!missing.systemTimes(&a, &b, &c));
    QVERIFY(missing.interfaceTable().isEmpty());
    QCOMPARE(missing.freeBytesForUser(), quint64(0));

    LinuxSampler live;
    QVERIFY(live.memoryStatus(&a, &b));
    QVERIFY(a > 0 && b <= a);
    QVERIFY(live.systemTimes(&a, &b, &c));
    QVERIFY(b >= a);
    QVERIFY(live.freeBytesForUser() > 0);
}

QTEST_GUILESS_MAIN(LinuxSamplerTest)
#include "tst_linuxsampler.moc"
